#include "effect.h"
#include "lumvane.h"

namespace plugins {

const Description kDescription = {
    "Lumvane White Balance",
    "Shifts the colours between blue and red, and between green and magenta",
    2,
    {{"temperature", "0 to 1 is cold to warm, the library's -1 to 1; 0.5 changes nothing", false, 0.5},
     {"tint", "0 to 1 is green to magenta, the library's -1 to 1; 0.5 changes nothing", false, 0.5}}};

namespace {

float toSigned(double number) { return static_cast<float>(number * 2.0 - 1.0); }

class WhiteBalanceEffect : public Effect {
 public:
  bool render(const Values& values, const Frame& frame) override {
    return WhiteBalanceFun(frame.src, frame.dst, 0.0f, 0.0f, 0.0f, toSigned(values.numbers[0]),
                           toSigned(values.numbers[1]), frame.width, frame.height);
  }
};

}  // namespace

std::unique_ptr<Effect> makeEffect() { return std::make_unique<WhiteBalanceEffect>(); }

}  // namespace plugins
