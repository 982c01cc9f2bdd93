#include "clarity/clarity_pyramid.h"

#include <algorithm>
#include <bit>
#include <opencv2/imgproc.hpp>

#include "base/parallel.h"

namespace Lumvane {
namespace {

constexpr int kMostLevels = 8;
constexpr int kLeastShared =
    1 << 15;  // samples of a plane below which waking another thread takes longer than the work

// Adds to a level the raised differences between it, as it was at first, and the next coarser one brought up to its
// size.
struct clarityDetailPass {
  int rows;
  int stripes;
  const cv::Mat& fine;
  const cv::Mat& coarse;
  cv::Mat& rebuilt;
  float coefficient;
  float gain;
  DetailRow* detailRow;

  void operator()(const cv::Range& range) const {
    const StripeRows band(range, rows, stripes);
    for (int y = band.first; y < band.end; ++y) {
      auto* const row = rebuilt.ptr<float>(y);
      detailRow(fine.ptr<float>(y), coarse.ptr<float>(y), coefficient, gain, row, row, static_cast<size_t>(fine.cols));
    }
  }
};

}  // namespace

StripeRows::StripeRows(const cv::Range& range, int rows, int stripes)
    : first(static_cast<int>(int64_t{range.start} * rows / stripes)),
      end(range.end >= stripes ? rows : static_cast<int>(int64_t{range.end} * rows / stripes)) {}

int clarityLevelCount(int width, int height) {
  const auto shorterSide = static_cast<unsigned>(std::max(std::min(width, height), 1));
  return std::min(static_cast<int>(std::bit_width(shorterSide - 1)) + 1, kMostLevels);  // ceil(log2(side)) + 1
}

void pyramidDown(const cv::Mat& input, cv::Mat& output) {
  if (input.cols < 2 || input.rows < 2) return input.copyTo(output);
  cv::pyrDown(input, output, cv::Size(), cv::BORDER_REFLECT_101);
}

void pyramidUp(const cv::Mat& input, cv::Size size, cv::Mat& output) {
  if (input.size() == size) return input.copyTo(output);
  cv::pyrUp(input, output, size, cv::BORDER_REFLECT_101);
}

// A row at 2 * s is made of the rows s - 1, s and s + 1 of the input, the one below it of s and s + 1. Rows are brought
// up with one more on each side, whose own results are then left out: cv::pyrUp takes them for edges of the frame.
cv::Mat pyramidUpRows(const cv::Mat& input, cv::Size size, int first, int end, cv::Mat& buffer) {
  if (input.size() == size) return input.rowRange(first, end);
  const int inputFirst = std::max(first / 2 - 1, 0), inputEnd = std::min((end - 1) / 2 + 2, input.rows);
  const int outputFirst = 2 * inputFirst, outputEnd = std::min(2 * inputEnd, size.height);
  const int rows = outputEnd - outputFirst;
  if (buffer.rows < rows || buffer.cols != size.width) buffer.create(rows, size.width, input.type());
  cv::Mat output = buffer.rowRange(0, rows);
  cv::pyrUp(input.rowRange(inputFirst, inputEnd), output, output.size(), cv::BORDER_REFLECT_101);
  return output.rowRange(first - outputFirst, end - outputFirst);
}

void buildClarityPyramid(const cv::Mat& value, int levels, ClarityPyramid& pyramid) {
  const auto n = static_cast<size_t>(std::max(levels, 1));
  for (auto* planes : {&pyramid.gaussian, &pyramid.coarse, &pyramid.rebuilt}) planes->resize(n);
  pyramid.gaussian[0] = value;
  for (size_t i = 1; i < n; ++i) pyramidDown(pyramid.gaussian[i - 1], pyramid.gaussian[i]);
}

void collapseClarityPyramid(ClarityPyramid& pyramid, DetailRow* detailRow) {
  const auto& gaussian = pyramid.gaussian;
  auto& coarse = pyramid.coarse;
  auto& rebuilt = pyramid.rebuilt;
  const size_t last = gaussian.size() - 1;
  // The coarsest level has no details.
  gaussian[last].copyTo(rebuilt[last]);
  for (size_t i = last; i-- > 1;) {
    const cv::Mat& fine = gaussian[i];
    const auto bringUp = [&](const cv::Range& which) {
      if (which.start == 0) pyramidUp(gaussian[i + 1], fine.size(), coarse[i]);
      if (which.end == 2) pyramidUp(rebuilt[i + 1], fine.size(), rebuilt[i]);
    };
    const bool shared = fine.size().area() >= kLeastShared;
    runParallel(2, bringUp, shared ? 2 : 1);
    const int stripes = shared ? std::max(1, 2 * cv::getNumThreads()) : 1;
    runParallel(
        stripes,
        clarityDetailPass{fine.rows, stripes, fine, coarse[i], rebuilt[i], kDetailCoefficient, kDetailGain, detailRow},
        stripes);
  }
}

}  // namespace Lumvane
