#include "clarity/nle_pure_c_clarity.h"

namespace Lumvane {
namespace {

constexpr int kDefaultPercentage = 100;

NLEFilterValue wholeNumber(int value) {
  NLEFilterValue record;
  record.number = static_cast<uint32_t>(value);
  return record;
}

size_t rowStep(int stride, int width) {
  return stride > 0 ? static_cast<size_t>(stride) : static_cast<size_t>(width) * 4;
}

}  // namespace

int NLEPureCClarity::Init(int frameWidth, int frameHeight, int /*reserved*/, int saturation, int intensity) {
  if (frameWidth != width || frameHeight != height) {
    levels = clarityLevelCount(frameWidth, frameHeight);
    width = frameWidth;
    height = frameHeight;
  }
  SetParameter("saturation", wholeNumber(saturation));
  SetParameter("intensity", wholeNumber(intensity));
  return 0;
}

int NLEPureCClarity::Process(const NLEFrameDesc& /*blank*/, const NLEFrameDesc& src, const NLEFrameDesc& dst,
                             int frameWidth, int frameHeight, int dstStride) {
  if (src.data == nullptr || dst.data == nullptr) return 1;
  if (frameWidth <= 0 || frameHeight <= 0) return 1;
  const size_t srcStep = rowStep(src.stride, frameWidth);
  const size_t dstStep = rowStep(dstStride, frameWidth);
  const size_t rowBytes = rowStep(0, frameWidth);
  if (srcStep < rowBytes || dstStep < rowBytes) return 1;
  const cv::Mat srcMat(frameHeight, frameWidth, CV_8UC4, src.data, srcStep);
  cv::Mat dstMat(frameHeight, frameWidth, CV_8UC4, dst.data, dstStep);
  return clarityPipeline(*this, srcMat, dstMat, percentage("saturation"), percentage("intensity"));
}

int NLEPureCClarity::percentage(const char* name) const {
  NLEFilterValue value;
  return GetParameter(name, value) ? static_cast<int32_t>(value.number) : kDefaultPercentage;
}

}  // namespace Lumvane
