// Prints a line for each of many frames of every effect, with a digest of its bytes: lists of two builds, of two systems
// or of two processors are to be the same, line by line. How many threads OpenCV takes is up to the environment
// (OPENCV_FOR_THREADS_NUM).

#include <cstdio>
#include <cstdlib>

#include "tests/effects.h"

namespace {

// FNV-1a of 64 bits, http://www.isthe.com/chongo/tech/comp/fnv/
uint64_t digest(const std::vector<uint8_t>& bytes) {
  uint64_t hash = 0xcbf29ce484222325;
  for (const uint8_t byte : bytes) hash = (hash ^ byte) * 0x100000001b3;
  return hash;
}

template <class... Arguments>
void report(const std::vector<uint8_t>& bytes, const char* format, Arguments... arguments) {
  std::printf(format, arguments...);
  std::printf(" %016llx\n", static_cast<unsigned long long>(digest(bytes)));
}

struct Size {
  int width, height;
};
constexpr Size kSizes[] = {{1, 1}, {3, 2}, {17, 5}, {64, 36}, {99, 101}, {101, 100}, {641, 479}, {1920, 1080}};

// Half noise, half smooth; alpha of all values, or opaque.
std::vector<uint8_t> picture(Size size, bool opaque) {
  std::vector<uint8_t> bytes = test::noise(size_t{4} * size.width * size.height, 7);
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      uint8_t* const pixel = bytes.data() + size_t{4} * (size_t{1} * y * size.width + x);
      if (y % 64 < 32) {
        for (int c = 0; c < 3; ++c) pixel[c] = static_cast<uint8_t>((x * (c + 1) + y * (3 - c)) / 4);
      }
      if (opaque) pixel[3] = 255;
    }
  }
  return bytes;
}

// A table in which the channels mix, in six decimals.
std::string cube(int size) {
  std::string text = "LUT_3D_SIZE " + std::to_string(size) + "\n";
  const int last = size - 1;
  for (int i = 0; i < size * size * size; ++i) {
    const int at[3] = {i % size, i / size % size, i / size / size};
    for (int c = 0; c < 3; ++c) {
      const int value = (at[c] * 800000 + at[(c + 1) % 3] * at[c] * 300000 / last) / last - 50000;
      char number[32];
      std::snprintf(number, sizeof number, "%s%d.%06d ", value < 0 ? "-" : "", std::abs(value) / 1000000,
                    std::abs(value) % 1000000);
      text += number;
    }
    text += "\n";
  }
  return text;
}

void reportLuts(const test::LutFolder& folder) {
  const test::TemporaryFile small("2.cube", cube(2)), usual("33.cube", cube(33)), large("65.cube", cube(65));
  const std::pair<const char*, std::u16string> luts[] = {{"odd .cube", folder.path + u"/look.cube"},
                                                         {"odd .3dl", folder.path + u"/look.3dl"},
                                                         {"tiny .cube", folder.path + u"/tiny.cube"},
                                                         {"2 points", small.utf16()},
                                                         {"33 points", usual.utf16()},
                                                         {"65 points", large.utf16()}};
  for (const auto& [name, path] : luts) {
    void* const effect = Create3DLutColorAdjustEffect(path.c_str(), 0, 0);
    for (const auto [width, height] : kSizes) {
      for (const int strength : {1, 50, 100}) {
        for (const bool opaque : {false, true}) {
          const std::vector<uint8_t> src = picture({width, height}, opaque);
          std::vector<uint8_t> dst(src.size());
          Lut3DColorAdjustEffectProcess(effect, dst.data(), width, height, 0, src.data(), width, height, 0, strength);
          report(dst, "lut, %s, %d x %d, strength %d, %s", name, width, height, strength,
                 opaque ? "opaque" : "translucent");
        }
      }
    }
    Destory3DLutColorAdjustEffect(effect);
  }
}

void reportClarity() {
  for (const auto [width, height] : kSizes) {
    for (const auto& [saturation, intensity] : {std::pair{0, 0}, {0, 100}, {-100, 37}, {100, 100}, {45, 80}}) {
      const std::vector<uint8_t> src = picture({width, height}, false);
      std::vector<uint8_t> dst(src.size());
      void* const effect = CreateNLEPureCClarity(width, height, 0, saturation, intensity);
      NLEPureCClarityProcess(effect, dst.data(), width, height, 0, src.data(), width, height, 0);
      DestoryNLEPureCClarity(effect);
      report(dst, "clarity, %d x %d, saturation %d, intensity %d", width, height, saturation, intensity);
    }
  }
}

void reportWhiteBalance() {
  for (const auto [width, height] : kSizes) {
    for (const auto& [temperature, tint] :
         {std::pair{0.0f, 0.0f}, {1.0f, -1.0f}, {-1.0f, 1.0f}, {0.3f, 0.7f}, {-5.0f, 9.0f}}) {
      const std::vector<uint8_t> src = picture({width, height}, false);
      std::vector<uint8_t> dst(src.size());
      WhiteBalanceFun(src.data(), dst.data(), 0, 0, 0, temperature, tint, width, height);
      report(dst, "white balance, %d x %d, temperature %.1f, tint %.1f", width, height, temperature, tint);
    }
  }
}

void reportHdr(const test::LutFolder& folder) {
  for (const auto [width, height] : kSizes) {
    for (int flags = 0; flags < 4; ++flags) {
      const int chroma = (width + 1) / 2, chromaRows = (height + 1) / 2;
      const size_t luma = size_t{1} * width * height, each = size_t{1} * chroma * chromaRows;
      const std::vector<uint8_t> src = picture({width, height}, false);  // more than enough
      std::vector<uint8_t> in(luma + 2 * each), out(in.size());
      for (size_t i = 0; i < in.size(); ++i) in[i] = src[i * 7 % src.size()];
      void* const effect = CreateVideoAdjustColor(folder.path.c_str(), 0, flags & 1, flags & 2, width, height);
      VideoAdjustColorProcess(effect, in.data(), in.data() + luma, in.data() + luma + each, width, chroma, chroma, 0, 0,
                              out.data(), out.data() + luma, out.data() + luma + each);
      DestroyVideoAdjustColor(effect);
      report(out, "hdr, %d x %d, %s, %s range", width, height, flags & 2 ? "PQ" : "HLG",
             flags & 1 ? "limited" : "full");
    }
  }
}

}  // namespace

int main() {
  const test::LutFolder folder;
  reportLuts(folder);
  reportClarity();
  reportWhiteBalance();
  reportHdr(folder);
}
