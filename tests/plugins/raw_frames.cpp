// What hosts are held against: raw BGRA frames made here, and what the library itself makes of them.
//   raw_frames clip WIDTH HEIGHT FRAMES                          writes a clip
//   raw_frames lut WIDTH HEIGHT PATH STRENGTH                    these take one from the standard input
//   raw_frames clarity WIDTH HEIGHT INTENSITY SATURATION         to the standard output,
//   raw_frames whitebalance WIDTH HEIGHT TEMPERATURE TINT        with values as in lumvane.h
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "lumvane.h"

namespace {

using Picture = std::vector<uint8_t>;
using Edit = std::function<void(const Picture& src, Picture& dst)>;

// Slopes under noise, no two channels alike, opaque on the left and of every alpha on the right.
void writeClip(int width, int height, int frames) {
  std::minstd_rand random(7);
  const auto noise = [&] { return static_cast<int>(random() >> 8 & 31); };
  for (int frame = 0; frame < frames; ++frame) {
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        const int blue = 224 * x / width + noise(), green = 224 * y / height + noise(), red = 60 * frame + noise();
        for (const int byte : {blue, green, red & 255, 2 * x < width ? 255 : static_cast<int>(random() >> 8 & 255)}) {
          std::putchar(byte);
        }
      }
    }
  }
}

Edit lutEdit(int width, int height, const char* path, int strength) {
  void* effect = Create3DLutColorAdjustEffect(std::filesystem::path(path).u16string().c_str(), width, height);
  if (!effect) std::exit(2);
  return [=](const Picture& src, Picture& dst) {  // as opaque, with the alpha put back
    Picture opaque = src;
    for (size_t i = 3; i < src.size(); i += 4) opaque[i] = 255;
    Lut3DColorAdjustEffectProcess(effect, dst.data(), width, height, 0, opaque.data(), width, height, 0, strength);
    for (size_t i = 3; i < src.size(); i += 4) dst[i] = src[i];
  };
}

Edit clarityEdit(int width, int height, int intensity, int saturation) {
  void* effect = CreateNLEPureCClarity(width, height, 0, saturation, intensity);
  return [=](const Picture& src, Picture& dst) {
    NLEPureCClarityProcess(effect, dst.data(), width, height, 0, src.data(), width, height, 0);
  };
}

Edit whiteBalanceEdit(int width, int height, float temperature, float tint) {
  return [=](const Picture& src, Picture& dst) {
    WhiteBalanceFun(src.data(), dst.data(), 0.0f, 0.0f, 0.0f, temperature, tint, width, height);
  };
}

void editFrames(size_t bytes, const Edit& edit) {
  Picture src(bytes), dst(bytes);
  while (std::fread(src.data(), 1, bytes, stdin) == bytes) {
    edit(src, dst);
    std::fwrite(dst.data(), 1, bytes, stdout);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 5) return 2;
  const std::string what = argv[1];
  const int width = std::atoi(argv[2]), height = std::atoi(argv[3]);
  const size_t bytes = size_t{4} * width * height;
  if (what == "clip") {
    writeClip(width, height, std::atoi(argv[4]));
  } else if (argc != 6) {
    return 2;
  } else if (what == "lut") {
    editFrames(bytes, lutEdit(width, height, argv[4], std::atoi(argv[5])));
  } else if (what == "clarity") {
    editFrames(bytes, clarityEdit(width, height, std::atoi(argv[4]), std::atoi(argv[5])));
  } else if (what == "whitebalance") {
    editFrames(bytes, whiteBalanceEdit(width, height, std::strtof(argv[4], nullptr), std::strtof(argv[5], nullptr)));
  } else {
    return 2;
  }
  return 0;
}
