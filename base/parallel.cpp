#include "base/parallel.h"

#include "base/default_float_mode.h"

namespace Lumvane {
namespace {

// The body is called through a pointer, so that no compiler takes its arithmetic out of the life of the mode.
class InDefaultFloatMode : public cv::ParallelLoopBody {
 public:
  explicit InDefaultFloatMode(const cv::ParallelLoopBody& body) : body_(body) {}
  void operator()(const cv::Range& range) const override {
    const DefaultFloatMode floatMode;
    body_(range);
  }

 private:
  const cv::ParallelLoopBody& body_;
};

}  // namespace

void runParallel(int count, const cv::ParallelLoopBody& body, double pieces) {
  cv::parallel_for_(cv::Range(0, count), InDefaultFloatMode(body), pieces);
}

}  // namespace Lumvane
