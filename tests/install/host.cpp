// One frame through a LUT file, at full strength: silver.cube leaves no colour but a warm grey.
#include <lumvane.h>

#include <filesystem>
#include <memory>

int main(int, char** arguments) {
  const std::unique_ptr<void, decltype(&Destory3DLutColorAdjustEffect)> effect(
      Create3DLutColorAdjustEffect(std::filesystem::path(arguments[1]).u16string().c_str(), 1, 1),
      &Destory3DLutColorAdjustEffect);
  const uint8_t src[4] = {40, 120, 200, 255};
  uint8_t dst[4] = {};
  Lut3DColorAdjustEffectProcess(effect.get(), dst, 1, 1, 0, src, 1, 1, 0, 100);
  return dst[0] < dst[1] && dst[1] < dst[2] && dst[3] == 255 ? 0 : 1;
}
