#include "clarity/clarity_pyramid.h"

#include <algorithm>
#include <bit>

#include "base/band_rows.h"
#include "base/parallel.h"

namespace Lumvane {
namespace {

constexpr int kMaxLevels = 8;
constexpr int kTaps = 5;
// Samples of a plane; smaller planes are not worth waking another thread for.
constexpr int64_t kMinSharedSamples = 1 << 15;

int stripesOf(cv::Size size, const ClarityPyramid::Scratch& scratch) {
  return int64_t{size.width} * size.height >= kMinSharedSamples ? static_cast<int>(scratch.size()) : 1;
}

void downRows(const clarityAnalysisPass& input, const BandRows& rows, cv::Mat& output, float* scratch,
              const PyramidKernels& kernels) {
  const cv::Size size = input.src.size();
  const auto sums = [&](int y) { return scratch + static_cast<ptrdiff_t>(y % kTaps) * output.cols; };
  float* const buffer = scratch + static_cast<ptrdiff_t>(kTaps) * output.cols;
  int next = std::max(2 * rows.first - 2, 0);
  for (int y = rows.first; y < rows.end; ++y) {
    for (; next <= std::min(2 * y + 2, size.height - 1); ++next) {
      kernels.downAcross(input.row(next, buffer), size.width, sums(next));
    }
    const float* taps[kTaps];
    for (int i = 0; i < kTaps; ++i) taps[i] = sums(reflected(2 * y + i - 2, size.height));
    kernels.downAlong(taps, output.cols, output.ptr<float>(y));
  }
}

// Rebuilds a level: the next coarser level, rebuilt and upsampled, plus the raised differences.
struct clarityDetailPass {
  int rows;
  int stripes;
  const cv::Mat& fine;
  const cv::Mat& coarse;   // of the Gaussian pyramid
  const cv::Mat& rebuilt;  // the same, rebuilt
  cv::Mat& out;
  float coefficient;
  float gain;
  ClarityPyramid::Scratch& scratch;
  const PyramidKernels& kernels;
  DetailRow* detailRow;

  void operator()(const cv::Range& range) const {
    const BandRows band = stripeRows(range, rows, stripes);
    const auto width = static_cast<size_t>(fine.cols);
    float* const room = scratchRows(scratch[static_cast<size_t>(range.start)], 8 * width);
    PyramidUp surroundings(coarse, fine.size(), room, kernels), base(rebuilt, fine.size(), room + 3 * width, kernels);
    for (int y = band.first; y < band.end; ++y) {
      surroundings.moveTo(y);
      base.moveTo(y);
      detailRow(fine.ptr<float>(y), surroundings.samples(0, width, room + 6 * width), coefficient, gain,
                base.samples(0, width, room + 7 * width), out.ptr<float>(y), width);
    }
  }
};

}  // namespace

float* scratchRows(std::vector<float>& memory, size_t samples) {
  if (memory.size() < samples) memory.resize(samples);
  return memory.data();
}

int clarityLevelCount(int width, int height) {
  const auto shorterSide = static_cast<unsigned>(std::max(std::min(width, height), 1));
  return std::min(static_cast<int>(std::bit_width(shorterSide - 1)) + 1, kMaxLevels);  // ceil(log2(side)) + 1
}

void pyramidDown(const clarityAnalysisPass& input, cv::Mat& output, int stripes, ClarityPyramid::Scratch& scratch,
                 const PyramidKernels& kernels) {
  const cv::Size size = input.src.size();
  if (size.width < 2 || size.height < 2) {
    output.create(size, CV_32FC1);
    for (int y = 0; y < size.height; ++y) {
      auto* const row = output.ptr<float>(y);
      const float* const from = input.row(y, row);
      if (from != row) std::copy_n(from, size.width, row);
    }
    return;
  }
  output.create((size.height + 1) / 2, (size.width + 1) / 2, CV_32FC1);
  const size_t samples = kTaps * static_cast<size_t>(output.cols) + static_cast<size_t>(size.width);
  runParallel(
      stripes,
      [&](const cv::Range& range) {
        float* const room = scratchRows(scratch[static_cast<size_t>(range.start)], samples);
        downRows(input, stripeRows(range, output.rows, stripes), output, room, kernels);
      },
      stripes);
}

// Row 2 * s is computed from the rows s - 1, s and s + 1 of the input, row 2 * s + 1 from s and s + 1.
void PyramidUp::moveTo(int y) {
  y_ = y;
  if (isCopy()) return;
  const int first = std::max(y % 2 == 0 ? y / 2 - 1 : y / 2, 0), last = std::min(y / 2 + 1, input_.rows - 1);
  for (next_ = std::max(next_, first); next_ <= last; ++next_) {
    kernels_.upAcross(input_.ptr<float>(next_), input_.cols, across(next_), size_.width);
  }
}

const float* PyramidUp::samples(int x, size_t count, float* buffer) const {
  if (isCopy()) return input_.ptr<float>(y_, x);
  const int row = y_ / 2, last = input_.rows - 1;
  const float* const below = across(std::min(row + 1, last)) + x;
  if (y_ % 2 != 0) {
    kernels_.upAlongOdd(across(row) + x, below, buffer, count);
  } else {
    const int above = row > 0 ? row - 1 : std::min(1, last);
    kernels_.upAlongEven(across(above) + x, across(row) + x, below, buffer, count);
  }
  return buffer;
}

void buildClarityPyramid(const clarityAnalysisPass& value, int levels, int stripes, ClarityPyramid& pyramid,
                         const PyramidKernels& kernels) {
  const auto n = static_cast<size_t>(std::max(levels, 1));
  for (auto* planes : {&pyramid.gaussian, &pyramid.rebuilt}) planes->resize(n);
  auto& gaussian = pyramid.gaussian;
  if (n > 1) pyramidDown(value, gaussian[1], stripes, pyramid.scratch, kernels);
  for (size_t i = 2; i < n; ++i) {
    const cv::Mat& fine = gaussian[i - 1];
    pyramidDown({fine}, gaussian[i], stripesOf(fine.size(), pyramid.scratch), pyramid.scratch, kernels);
  }
}

void collapseClarityPyramid(ClarityPyramid& pyramid, const PyramidKernels& kernels, DetailRow* detailRow) {
  const auto& gaussian = pyramid.gaussian;
  for (size_t i = gaussian.size() - 1; i-- > 1;) {
    const cv::Mat& fine = gaussian[i];
    cv::Mat& rebuilt = pyramid.rebuilt[i];
    rebuilt.create(fine.size(), CV_32FC1);
    const int stripes = stripesOf(fine.size(), pyramid.scratch);
    runParallel(stripes,
                clarityDetailPass{fine.rows, stripes, fine, gaussian[i + 1], pyramid.rebuiltLevel(i + 1), rebuilt,
                                  kDetailCoefficient, kDetailGain, pyramid.scratch, kernels, detailRow},
                stripes);
  }
}

}  // namespace Lumvane
