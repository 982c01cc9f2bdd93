#include "bench/effects.h"
#include "bench/peer.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "clarity/clarity_rows.h"

namespace bench {
namespace {

namespace plain = Lumvane::plain;

// As the effect has them.
constexpr int kLevels = 8;
constexpr float kCoefficient = 22.222221f;
constexpr float kGain = 0.55f;
constexpr float kPercent = 0.01f;
constexpr float kSaturationSpan = 0.15f;

cv::Mat up(const cv::Mat& coarse, cv::Size size) {
  cv::Mat out;
  cv::pyrUp(coarse, out, size, cv::BORDER_REFLECT_101);
  return out;
}

// The details of `fine`, raised, on top of `base`.
cv::Mat details(const cv::Mat& fine, const cv::Mat& coarse, const cv::Mat& base) {
  const cv::Mat brought = up(coarse, fine.size());
  cv::Mat out(fine.size(), fine.type());
  for (int y = 0; y < fine.rows; ++y) {
    plain::detailRow(fine.ptr<float>(y), brought.ptr<float>(y), kCoefficient, kGain, base.ptr<float>(y),
                     out.ptr<float>(y), static_cast<size_t>(fine.cols));
  }
  return out;
}

cv::Mat enhanced(const cv::Mat& value) {
  std::vector<cv::Mat> gaussian = {value};
  for (int i = 1; i < kLevels; ++i) {
    cv::Mat coarse;
    cv::pyrDown(gaussian.back(), coarse, cv::Size(), cv::BORDER_REFLECT_101);
    gaussian.push_back(coarse);
  }
  cv::Mat current = gaussian.back();
  for (int i = kLevels - 1; i-- > 0;) {
    current = details(gaussian[i], gaussian[i + 1], up(current, gaussian[i].size()));
  }
  return current;
}

void clampToUnit(cv::Mat& plane) {
  cv::min(plane, 1.0, plane);
  cv::max(plane, 0.0, plane);
}

class PlainClarity : public Peer {
 public:
  explicit PlainClarity(const Picture& src) : src_(src), dst_(src) {}

  void run() override {
    const int width = src_.width, height = src_.height;
    const auto pixels = static_cast<size_t>(width);
    const uint8_t* src = src_.planes[0].data();
    uint8_t* dst = dst_.planes[0].data();
    cv::Mat planes[3];
    for (cv::Mat& plane : planes) plane.create(height, width, CV_32FC1);
    const float factor = kSaturation * kPercent * kSaturationSpan + 1.0f;
    for (int y = 0; y < height; ++y) {
      plain::analysisRow(src + 4 * pixels * y, factor, planes[0].ptr<float>(y), planes[1].ptr<float>(y),
                         planes[2].ptr<float>(y), pixels);
    }
    cv::Mat raised = enhanced(planes[2]);
    clampToUnit(raised);
    const float amount = kIntensity * kPercent;
    cv::Mat blended;
    cv::addWeighted(planes[2], 1.0f - amount, raised, amount, 0.0, blended, -1);
    clampToUnit(blended);
    for (int y = 0; y < height; ++y) {
      plain::synthesisRow(planes[0].ptr<float>(y), planes[1].ptr<float>(y), blended.ptr<float>(y), src + 4 * pixels * y,
                          dst + 4 * pixels * y, pixels);
    }
  }
  Picture output() const override { return dst_; }
  std::string name() const override { return "plain form, same bytes"; }

 private:
  Picture src_, dst_;
};

}  // namespace

std::unique_ptr<Peer> plainClarity(const Picture& src) { return std::make_unique<PlainClarity>(src); }

}  // namespace bench
