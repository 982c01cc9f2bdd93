#include "clarity/clarity_pyramid.h"

#include <algorithm>
#include <bit>
#include <opencv2/imgproc.hpp>

#include "clarity/clarity_passes.h"

namespace Lumvane {
namespace {

constexpr int kMostLevels = 8;
constexpr float kCoefficient = 22.222221f;  // 1 / (2 * sigma * sigma) for sigma = 0.15
constexpr float kGain = 0.55f;

}  // namespace

int clarityLevelCount(int width, int height) {
  const auto shorterSide = static_cast<unsigned>(std::max(std::min(width, height), 1));
  return std::min(static_cast<int>(std::bit_width(shorterSide - 1)) + 1, kMostLevels);  // ceil(log2(side)) + 1
}

cv::Mat pyramidDown(const cv::Mat& input) {
  if (input.cols < 2 || input.rows < 2) return input.clone();
  cv::Mat output;
  cv::pyrDown(input, output, cv::Size(), cv::BORDER_REFLECT_101);
  return output;
}

cv::Mat pyramidUp(const cv::Mat& input, cv::Size size) {
  if (input.size() == size) return input.clone();
  cv::Mat output;
  cv::pyrUp(input, output, size, cv::BORDER_REFLECT_101);
  return output;
}

void buildClarityPyramid(const cv::Mat& value, int levels, std::vector<cv::Mat>& gaussian,
                         std::vector<cv::Mat>& detail) {
  const auto n = static_cast<size_t>(std::max(levels, 1));
  gaussian.resize(n);
  detail.resize(n);
  gaussian[0] = value;
  for (size_t i = 1; i < n; ++i) gaussian[i] = pyramidDown(gaussian[i - 1]);
  detail[n - 1] = gaussian[n - 1].clone();
  for (size_t i = 0; i + 1 < n; ++i) {
    const cv::Mat& fine = gaussian[i];
    const cv::Mat up = pyramidUp(gaussian[i + 1], fine.size());
    cv::Mat out(fine.size(), fine.type());
    const int stripes = std::max(1, 2 * cv::getNumThreads());
    cv::parallel_for_(cv::Range(0, stripes), clarityDetailPass{fine.rows, stripes, fine, up, out, kCoefficient, kGain});
    detail[i] = out;
  }
}

cv::Mat collapseClarityPyramid(const std::vector<cv::Mat>& gaussian, const std::vector<cv::Mat>& detail) {
  cv::Mat current = detail.back().clone();
  for (size_t i = detail.size() - 1; i-- > 0;) current = pyramidUp(current, gaussian[i].size()) + detail[i];
  return current;
}

}  // namespace Lumvane
