// The effects on frames of the tests, with LUT files.
#pragma once

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>

#include "tests/effect_list.h"
#include "tests/inputs.h"
#include "tests/yv12.h"

namespace test {

#ifndef LUMVANE_TEST_NOT_LINKED
/// Renders a BGRA frame; strides as the effect defines them. Both frames have the same size.
using Render =
    std::function<void(uint8_t* dst, int dstStride, const uint8_t* src, int srcStride, int width, int height)>;

inline Render grading(const std::u16string& path, int strength) {
  const std::shared_ptr<void> effect(Create3DLutColorAdjustEffect(path.c_str(), 0, 0), Destory3DLutColorAdjustEffect);
  return [=](uint8_t* dst, int dstStride, const uint8_t* src, int srcStride, int width, int height) {
    Lut3DColorAdjustEffectProcess(effect.get(), dst, width, height, dstStride, src, 0, 0, srcStride, strength);
  };
}
/// Creates a new effect for each frame, for `side` by `side` pixels, or for the size of the frame if `side` is 0.
inline Render clarity(int saturation, int intensity, int side = 0) {
  return [=](uint8_t* dst, int dstStride, const uint8_t* src, int srcStride, int width, int height) {
    void* const effect =
        CreateNLEPureCClarity(side == 0 ? width : side, side == 0 ? height : side, 0, saturation, intensity);
    NLEPureCClarityProcess(effect, dst, width, height, dstStride, src, 0, 0, srcStride);
    DestoryNLEPureCClarity(effect);
  };
}
inline Render whiteBalance(float temperature, float tint) {
  return [=](uint8_t* dst, int, const uint8_t* src, int, int width, int height) {
    WhiteBalanceFun(src, dst, 0.0f, 0.0f, 0.0f, temperature, tint, width, height);
  };
}
#endif

/// LUT files in their own folder: look.cube, look.3dl, tiny.cube, and the two for HDR.
class LutFolder {
 public:
  LutFolder() {
    std::string threeDl = "0 512 1023\n", tiny = "LUT_3D_SIZE 2\nDOMAIN_MAX 1e36 1e36 1e36\n";
    for (int i = 0; i < 27; ++i) threeDl += std::to_string(4000 - i * 100) + " " + std::to_string(i * 151) + ".5 1e3\n";
    // Subnormal numbers, which the domain scales back to the range of colours.
    for (int i = 1; i <= 8; ++i) tiny += "1e-38 " + std::to_string(i) + "e-39 2.00000000000000000000001e-39\n";
    const std::filesystem::path folder = path;
    std::ofstream(folder / "look.cube") << cube(5, "0.1");
    std::ofstream(folder / "look.3dl") << threeDl;
    std::ofstream(folder / "tiny.cube") << tiny;
  }

 private:
  // Numbers of all forms in header and rows: plain decimals, exponents, hexadecimal, long ones.
  static std::string cube(int size, const std::string& lift) {
    std::string text =
        "TITLE \"a title of more letters than a short string holds\"\nDOMAIN_MIN -0.125 0 0\nLUT_3D_SIZE " +
        std::to_string(size) + "\nDOMAIN_MAX 0.875 1.25 1.0\n";
    for (int i = 0; i < size * size * size; ++i) {
      const char* const blues[] = {"0x1.8p-1", "0.37251964", ".5e-1"};
      text += lift + std::to_string(i % size * 17) + ' ' + std::to_string(i / size % size) +
              (i % 3 == 0 ? "e-1 " : " ") + (i == 6 ? "0x0.8" + std::string(2000, '0') + "p0" : blues[i % 3]) + "\n";
    }
    return text;
  }
  HdrFolder hdr_{cube(4, "0.05"), cube(3, "0.2")};

 public:
  const std::u16string path = hdr_.folder();
};

/// Loads every effect, renders a frame of noise with each variant and returns all outputs concatenated.
inline Bytes renderAll(const Library& lib, const std::u16string& folder, int width, int height) {
  const Bytes noisy = noise(size_t{4} * width * height, 1);
  Bytes result;
  for (const Effect& effect : kEffects) {
    for (int variant = 0; variant < effect.variants; ++variant) {
      Yv12Frame planes(width, height), dstPlanes = planes;
      planes.fill(noisy);
      Bytes src = noisy, dst(src.size());
      void* const object = effect.create(lib, folder, variant, width, height);
      effect.render(lib, object, variant, effect.isYv12 ? dstPlanes.pixels() : Pixels{{dst.data()}, {}},
                    effect.isYv12 ? planes.pixels() : Pixels{{src.data()}, {}}, width, height);
      effect.destroy(lib, object);
      if (effect.isYv12) dst = dstPlanes.packed();
      result.insert(result.end(), dst.begin(), dst.end());
    }
  }
  return result;
}

}  // namespace test
