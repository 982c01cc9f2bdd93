#include <OpenColorIO/OpenColorIO.h>

#include "bench/peer.h"

namespace bench {
namespace {

namespace ocio = OCIO_NAMESPACE;

ocio::ConstCPUProcessorRcPtr load(const std::filesystem::path& lut) {
  const ocio::FileTransformRcPtr transform = ocio::FileTransform::Create();
  transform->setSrc(lut.string().c_str());
  transform->setInterpolation(ocio::INTERP_TETRAHEDRAL);
  return ocio::Config::CreateRaw()->getProcessor(transform)->getOptimizedCPUProcessor(
      ocio::BIT_DEPTH_UINT8, ocio::BIT_DEPTH_UINT8, ocio::OPTIMIZATION_DEFAULT);
}

class Processor : public Peer {
 public:
  Processor(const std::filesystem::path& lut, const Picture& src) : processor_(load(lut)), src_(src), dst_(src) {}
  void run() override {
    ocio::PackedImageDesc dst = image(dst_);
    processor_->apply(image(src_), dst);
  }
  Picture output() const override { return dst_; }
  std::string name() const override {
    return "OpenColorIO " + openColorIoVersion() + " CPU processor, tetrahedral, BGRA 8 bits, OPTIMIZATION_DEFAULT";
  }

 private:
  static ocio::PackedImageDesc image(Picture& picture) {
    return {picture.planes[0].data(), picture.width,    picture.height,   ocio::CHANNEL_ORDERING_BGRA,
            ocio::BIT_DEPTH_UINT8,    ocio::AutoStride, ocio::AutoStride, ocio::AutoStride};
  }

  ocio::ConstCPUProcessorRcPtr processor_;
  Picture src_, dst_;
};

}  // namespace

std::unique_ptr<Peer> openColorIo(const std::filesystem::path& lut, const Picture& src) {
  return std::make_unique<Processor>(lut, src);
}

std::string openColorIoVersion() { return ocio::GetVersion(); }

void openColorIoLoad(const std::filesystem::path& lut) { load(lut); }

void openColorIoClearCache() { ocio::ClearAllCaches(); }

}  // namespace bench
