#include "whitebalance/white_balance_row.h"

namespace Lumvane {

WhiteBalanceGains whiteBalanceGains(float temperature, float tint) {
  const float base = tint * 0.5f + 1.0f;
  return {base - temperature, 1.0f - tint, base + temperature};
}

namespace plain {
namespace {

uint8_t scaled(uint8_t byte, float gain) {
  const float product = static_cast<float>(byte) * gain;
  if (!(product > 0.0f)) return 0;  // NaN too
  return product < 255.0f ? static_cast<uint8_t>(product) : 255;
}

}  // namespace

void whiteBalanceRow(const WhiteBalanceGains& gains, const uint8_t* src, uint8_t* dst, size_t pixels) {
  for (size_t i = 0; i < pixels; ++i, src += 4, dst += 4) {
    dst[0] = scaled(src[0], gains.blue);
    dst[1] = scaled(src[1], gains.green);
    dst[2] = scaled(src[2], gains.red);
    dst[3] = src[3];
  }
}

}  // namespace plain
}  // namespace Lumvane
