// All effects at once, as a host sees them: through the functions of lumvane.h alone.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "lumvane.h"
#include "tests/inputs.h"
#include "tests/yv12.h"

namespace test {

/// The functions of lumvane.h under their own names, linked or looked up.
struct Library {
#define LUMVANE_EXPORT(name) decltype(&::name) name = nullptr;
#include "cmake/exports.inc"
#undef LUMVANE_EXPORT
};

#ifndef LUMVANE_TEST_NOT_LINKED
inline const Library kLinked = {
#define LUMVANE_EXPORT(name) ::name,
#include "cmake/exports.inc"
#undef LUMVANE_EXPORT
};
#endif

/// LUT files in a folder of their own: look.cube, look.3dl, tiny.cube, and the two for HDR.
class LutFolder {
 public:
  LutFolder() : look_("look.cube", cube(5, "0.1")) {
    const std::filesystem::path folder = std::filesystem::path(look_.utf16()).parent_path();
    path = folder.u16string();
    std::ofstream(folder / "look.3dl") << threeDl();
    std::ofstream(folder / "tiny.cube") << tinyCube();
    std::ofstream(folder / "HDR_HLG.cube") << cube(4, "0.05");
    std::ofstream(folder / "HDR_PQ.cube") << cube(3, "0.2");
  }
  std::u16string path;

 private:
  // All the ways in which numbers are read: header and rows, plain decimals, exponents, hexadecimal ones, long ones.
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
  static std::string threeDl() {
    std::string text = "0 512 1023\n";
    for (int i = 0; i < 27; ++i) text += std::to_string(4000 - i * 100) + " " + std::to_string(i * 151) + ".5 1e3\n";
    return text;
  }

  // Numbers too small for a normal float, that the domain brings back to the range of colours.
  static std::string tinyCube() {
    std::string text = "LUT_3D_SIZE 2\nDOMAIN_MAX 1e36 1e36 1e36\n";
    for (int i = 1; i <= 8; ++i) text += "1e-38 " + std::to_string(i) + "e-39 2.00000000000000000000001e-39\n";
    return text;
  }

  TemporaryFile look_;
};

/// What every effect makes of a frame of noise, loads included, one behind the other. What a null handle
/// refuses is left out, and so is HDR without its function.
inline Bytes renderAll(const Library& lib, const std::u16string& folder, int width, int height) {
  const Bytes src = noise(size_t{4} * width * height, 1);
  Bytes result;
  const auto take = [&](const Bytes& frame) { result.insert(result.end(), frame.begin(), frame.end()); };
  for (const char16_t* name : {u"/look.cube", u"/look.3dl", u"/tiny.cube"}) {
    void* const lut = lib.Create3DLutColorAdjustEffect((folder + name).c_str(), width, height);
    for (const int strength : {40, 100}) {
      Bytes dst(src.size());
      lib.Lut3DColorAdjustEffectProcess(lut, dst.data(), width, height, 0, src.data(), width, height, 0, strength);
      if (lut != nullptr) take(dst);
    }
    lib.Destory3DLutColorAdjustEffect(lut);
  }
  Bytes dst(src.size());
  void* const clarity = lib.CreateNLEPureCClarity(width, height, 0, 30, 90);
  if (lib.NLEPureCClarityProcess(clarity, dst.data(), width, height, 0, src.data(), width, height, 0) == 1) take(dst);
  lib.DestoryNLEPureCClarity(clarity);
  lib.WhiteBalanceFun(src.data(), dst.data(), 0.0f, 0.0f, 0.0f, 0.21f, -0.13f, width, height);
  take(dst);
  for (int flags = 0; flags < 4 && lib.CreateVideoAdjustColor != nullptr; ++flags) {
    void* const hdr = lib.CreateVideoAdjustColor(folder.c_str(), 0, flags & 1, flags & 2, width, height);
    Yv12Frame frame(width, height);
    frame.fill(src);
    frame.processTo(frame, hdr, 0, lib.VideoAdjustColorProcess);
    take(frame.packed());
    lib.DestroyVideoAdjustColor(hdr);
  }
  return result;
}

}  // namespace test
