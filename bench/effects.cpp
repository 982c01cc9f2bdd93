#include "bench/effects.h"

#include <memory>
#include <stdexcept>

#include "lumvane.h"

namespace bench {

Effect lutEffect(const std::filesystem::path& file, const Size& size, int strength) {
  const std::shared_ptr<void> lut(Create3DLutColorAdjustEffect(file.u16string().c_str(), size.width, size.height),
                                  Destory3DLutColorAdjustEffect);
  if (!lut) throw std::runtime_error("cannot load " + file.string());
  return [lut, strength](const Picture& src, Picture& dst) {
    Lut3DColorAdjustEffectProcess(lut.get(), dst.planes[0].data(), dst.width, dst.height, 0, src.planes[0].data(),
                                  src.width, src.height, 0, strength);
  };
}

Effect clarityEffect(const Size& size) {
  const std::shared_ptr<void> clarity(CreateNLEPureCClarity(size.width, size.height, 0, kSaturation, kIntensity),
                                      DestoryNLEPureCClarity);
  return [clarity](const Picture& src, Picture& dst) {
    NLEPureCClarityProcess(clarity.get(), dst.planes[0].data(), dst.width, dst.height, 0, src.planes[0].data(), 0, 0,
                           0);
  };
}

Effect whiteBalanceEffect(const Size& size) {
  return [size](const Picture& src, Picture& dst) {
    WhiteBalanceFun(src.planes[0].data(), dst.planes[0].data(), 0, 0, 0, 0.2f, -0.05f, size.width, size.height);
  };
}

Effect hdrEffect(const std::filesystem::path& luts, const Size& size) {
  const std::shared_ptr<void> hdr(CreateVideoAdjustColor(luts.u16string().c_str(), 0, 1, 0, size.width, size.height),
                                  DestroyVideoAdjustColor);
  return [hdr](const Picture& src, Picture& dst) {
    // Pictures have planes in the order Y, Cb, Cr, YV12 in the order Y, Cr, Cb.
    const auto& from = src.planes;
    auto& to = dst.planes;
    const int chroma = (src.width + 1) / 2;
    VideoAdjustColorProcess(hdr.get(), from[0].data(), from[2].data(), from[1].data(), src.width, chroma, chroma, 0, 0,
                            to[0].data(), to[2].data(), to[1].data());
  };
}

Side frames(const Effect& effect, const Picture& src, Picture& dst, int threads) {
  return frames([effect, &src, &dst] { effect(src, dst); }, threads);
}

}  // namespace bench
