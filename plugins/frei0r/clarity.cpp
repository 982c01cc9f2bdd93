#include <cmath>

#include "effect.h"
#include "lumvane.h"

namespace plugins {

const Description kDescription = {
    "Lumvane Clarity",
    "Raises the local contrast at many scales, and scales the saturation",
    2,
    {{"intensity", "0 to 1 is 0 to 100 percent of raised contrast; 0 changes nothing", false, 0.0},
     {"saturation", "0 to 1 is -100 to 100 percent; 0.5 changes nothing", false, 0.5}}};

namespace {

using ClarityHandle = std::unique_ptr<void, decltype(&DestoryNLEPureCClarity)>;

class ClarityEffect : public Effect {
 public:
  bool render(const Values& values, const Frame& frame) override {
    const auto intensity = static_cast<int32_t>(std::lround(values.numbers[0] * 100.0));
    const auto saturation = static_cast<int32_t>(std::lround(values.numbers[1] * 200.0)) - 100;
    if (!handle_ || intensity != intensity_ || saturation != saturation_) {
      handle_.reset(CreateNLEPureCClarity(frame.width, frame.height, 0, saturation, intensity));
      intensity_ = intensity;
      saturation_ = saturation;
    }
    return NLEPureCClarityProcess(handle_.get(), frame.dst, frame.width, frame.height, 0, frame.src, frame.width,
                                  frame.height, 0) != 0;
  }

 private:
  int32_t intensity_ = 0, saturation_ = 0;
  ClarityHandle handle_{nullptr, &DestoryNLEPureCClarity};
};

}  // namespace

std::unique_ptr<Effect> makeEffect() { return std::make_unique<ClarityEffect>(); }

}  // namespace plugins
