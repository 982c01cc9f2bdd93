#include <opencv2/core.hpp>

#include "base/default_float_mode.h"
#include "lumvane.h"
#include "whitebalance/white_balance_kernel.h"

bool WhiteBalanceFun(const uint8_t* src, uint8_t* dst, float /*reserved1*/, float /*reserved2*/, float /*reserved3*/,
                     float temperature, float tint, int32_t width, int32_t height) {
  if (width <= 0 || height <= 0) return true;
  const cv::Mat srcMat(height, width, CV_8UC4, const_cast<uint8_t*>(src));
  cv::Mat dstMat(height, width, CV_8UC4, dst);
  const Lumvane::DefaultFloatMode floatMode;
  const Lumvane::WhiteBalanceGains gains = Lumvane::whiteBalanceGains(temperature, tint);
  // Rows are packed, so the frame is one long row.
  Lumvane::whiteBalanceKernels().row(gains, srcMat.ptr(), dstMat.ptr(), srcMat.total());
  return true;
}
