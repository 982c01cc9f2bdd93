// Compares frames and tables with their digests in tests/record.txt. They must be the same in every build, with each
// vector instruction set and with the plain forms, on one thread and on three.
//
//   lumvane_record_test RECORD     compares
//   lumvane_record_test --print    prints the list, for an intended change of bytes

#include <cstring>
#include <functional>
#include <iostream>
#include <map>
#include <opencv2/core/utility.hpp>
#include <sstream>

#include "hdr/hdr_shared.h"
#include "hdr/yv12_conversions.h"
#include "lut/blend_table.h"
#include "lut/cube_lut.h"
#include "tests/effects.h"
#include "tests/targets.h"
#include "tests/yv12.h"

namespace {

using test::Bytes;
using test::Frame;
using test::Plane;
using test::Render;
using test::Values;
using test::Yv12Frame;

// FNV-1a on 64-bit words (http://www.isthe.com/chongo/tech/comp/fnv/); the shift after each product brings its upper
// bits down.
uint64_t digest(const void* data, size_t size) {
  uint64_t hash = 0xcbf29ce484222325 + size;
  for (size_t i = 0; i < size; i += 8) {
    uint64_t word = 0;
    std::memcpy(&word, static_cast<const uint8_t*>(data) + i, std::min<size_t>(8, size - i));
    hash = (hash ^ word) * 0x100000001b3;
    hash ^= hash >> 29;
  }
  return hash;
}

// Receives the name and the digest of each line.
using Report = std::function<void(const std::string& name, uint64_t digest)>;

template <class... Words>
std::string words(const Words&... all) {
  std::ostringstream text;
  ((text << all), ...);
  return text.str();
}

constexpr bool kAllColours = test::kStep == 1;
constexpr int kSide = 4096;  // of a frame with one pixel for every colour

// Every colour once; one pixel in four is translucent.
const Bytes& allColours() {
  static const Bytes bytes = test::everyColour([](uint32_t i) { return i % 4 == 0 ? i / 4 * 31 : 255u; });
  return bytes;
}

// Half noise, half smooth; all values of alpha.
const Bytes& picture(int width, int height) {
  static std::map<std::pair<int, int>, Bytes> made;
  Bytes& bytes = made[{width, height}];
  if (!bytes.empty()) return bytes;
  bytes = test::noise(size_t{4} * width * height, 7);
  for (int y = 0; y < height; ++y) {
    if (y % 64 >= 32) continue;
    for (int x = 0; x < width; ++x) {
      uint8_t* const pixel = bytes.data() + size_t{4} * (size_t{1} * y * width + x);
      for (int c = 0; c < 3; ++c) pixel[c] = static_cast<uint8_t>((x * (c + 1) + y * (3 - c)) / 4);
    }
  }
  return bytes;
}

struct Size {
  int width, height;
};
// Around 10000 pixels, the limit for threads, and with fewer rows than bands.
const std::vector<Size> kSizes = {{1, 1},     {3, 2},    {17, 5},   {99, 101},  {100, 100},
                                  {101, 100}, {1301, 8}, {4000, 3}, {10007, 1}, {641, 479}};
constexpr int kWidest = 70;  // a little more than four of the widest vectors

void add(Bytes& all, const Bytes& more) { all.insert(all.end(), more.begin(), more.end()); }

Bytes rendered(int width, int height, const Bytes& pixels, const Render& render) {
  Bytes dst(pixels.size());
  render(dst.data(), 0, pixels.data(), 0, width, height);
  return dst;
}

void reportBytes(const Report& report, const std::string& name, const Bytes& bytes) {
  report(name, digest(bytes.data(), bytes.size()));
}

// Reports all widths in one digest, then frames of each size: separate, in place, and with these paddings in bytes of
// source and destination; negative ones mean bottom-up rows.
void reportFrames(const Report& report, const std::string& name, const std::vector<Size>& sizes, const Render& render,
                  const std::vector<std::pair<int, int>>& paddings) {
  Bytes widths;
  for (int width = 1; width <= kWidest; ++width) add(widths, rendered(width, 2, picture(width, 2), render));
  reportBytes(report, name + ", widths", widths);
  for (const auto [width, height] : sizes) {
    const Bytes& pixels = picture(width, height);
    const std::string where = words(name, ", ", width, " x ", height);
    reportBytes(report, where, rendered(width, height, pixels, render));
    Bytes inPlace = pixels;
    render(inPlace.data(), 0, inPlace.data(), 0, width, height);
    reportBytes(report, where + ", in place", inPlace);
    for (const auto& [srcPadding, dstPadding] : paddings) {
      const auto stride = [width = width](int padding) {
        return padding == 0 ? 0 : (padding < 0 ? -4 : 4) * width + padding;
      };
      Frame src(width, height, stride(srcPadding)), dst(width, height, stride(dstPadding));
      src.fill(pixels);
      render(dst.data(), dst.stride, src.data(), src.stride, width, height);
      reportBytes(report, words(where, ", padded by ", srcPadding, " and ", dstPadding), dst.packed());
    }
  }
}

// ---- LUT grading

void reportLut(const Report& report, const std::string& lut, const std::u16string& path, bool inDetail) {
  const std::string name = "lut " + lut;
  for (const int strength : {50, 100}) {
    if (!kAllColours || (strength == 50 && !inDetail)) continue;
    reportBytes(report, words(name, ", all colours, strength ", strength),
                rendered(kSide, kSide, allColours(), test::grading(path, strength)));
  }
  for (const int strength : {1, 99, 100}) {
    if (!inDetail) break;
    reportFrames(report, words(name, ", strength ", strength), kSizes, test::grading(path, strength),
                 {{12, 0}, {0, 5}, {-4, 7}, {-1, -64}});
  }
  Bytes all;
  for (int strength = -1; strength <= 102 && inDetail; ++strength) {
    add(all, rendered(64, 33, picture(64, 33), test::grading(path, strength)));
  }
  if (inDetail) reportBytes(report, name + ", every strength", all);
  // Overlapping frames, the destination one row above the source; small, because parallel bands would race.
  Bytes both = picture(40, 31);
  test::grading(path, 30)(both.data(), 0, &both[160], 0, 40, 30);
  reportBytes(report, name + ", a row apart", both);
}

// Grading to one byte per pixel, which no export uses.
void reportPlanes(const Report& report) {
  const auto lut = std::make_unique<Lumvane::CubeLut>();
  std::istringstream text(test::randomCube(17));
  lut->readCube(text);
  lut->alphaMode = true;
  for (const auto [width, height] : kSizes) {
    for (const int padding : {0, 3}) {
      Plane dst(width, height, padding);
      lut->apply(dst.data(), padding == 0 ? 0 : dst.stride, picture(width, height).data(), width, height, 0);
      reportBytes(report, words("lut to a plane, ", width, " x ", height, ", padded by ", padding), dst.packed());
    }
  }
}

void reportLuts(const Report& report) {
  const test::LutFolder folder;
  for (const char* name : {"look.cube", "look.3dl", "tiny.cube"}) {
    reportLut(report, name, (std::filesystem::path(folder.path) / name).u16string(), false);
  }
  for (const auto& [name, text, inDetail] : {std::tuple{"of 2 points, wild", test::randomCube(2, Values::kWild), false},
                                             {"of 33 points", test::randomCube(33), true},
                                             {"of 57 points, halves", test::randomCube(57, Values::kHalves), false},
                                             {"of 65 points, wild", test::randomCube(65, Values::kWild), false}}) {
    reportLut(report, name, test::TemporaryFile("lut.cube", text).utf16(), inDetail);
  }
  reportPlanes(report);

  const auto table = Lumvane::acquireTable();
  const auto* const planes = reinterpret_cast<const uint8_t*>(table.get());
  for (size_t plane = 0; plane < 19; ++plane) {
    report(words("blend table, plane ", plane), digest(planes + plane * 65536, 65536));
  }
  Bytes mix;
  for (const auto& rows : table->mix) {
    for (const auto& row : rows) add(mix, Bytes(row, row + 256));
  }
  reportBytes(report, "blend table, mix", mix);
  report("blend table, last plane", digest(table->screen255, 65536));
}

// ---- Clarity

void reportClarity(const Report& report) {
  for (const int saturation : {-100, 0, 37, 100}) {
    reportFrames(report, words("clarity, saturation ", saturation), {{101, 100}}, test::clarity(saturation, 0, 64), {});
    if (!kAllColours) continue;
    reportBytes(report, words("clarity, saturation ", saturation, ", all colours"),
                rendered(kSide, kSide, allColours(), test::clarity(saturation, 0, 64)));
  }
  // Sides around those that add a level, and widths around those of vectors and of the chunks of a row.
  std::vector<Size> sizes = {{640, 363}, {1920, 1080}, {1, 50},   {50, 1},   {2, 9},
                             {333, 65},  {65, 333},    {511, 70}, {513, 70}, {1025, 12}};
  for (const int side : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 47, 63, 64, 65, 66, 129}) {
    sizes.push_back({side, side});
  }
  for (const auto& [side, saturation, intensity] : {std::tuple{0, 20, 70}, {65, -60, 100}, {7, 1000, 1000}}) {
    reportFrames(report, words("clarity of side ", side, ", saturation ", saturation, ", intensity ", intensity), sizes,
                 test::clarity(saturation, intensity, side), {{12, 5}});
  }
  Bytes all;
  for (int intensity = 0; intensity <= 100; ++intensity) {
    add(all, rendered(70, 66, picture(70, 66), test::clarity(intensity - 50, intensity)));
  }
  reportBytes(report, "clarity, every intensity", all);
}

// ---- White balance

void reportWhiteBalance(const Report& report) {
  Bytes everyByte;
  for (int i = 0; i < 1024; ++i) everyByte.push_back(static_cast<uint8_t>(i / 4));
  for (const float tint : {-2.0f, -0.31f, 0.0f, 0.17f, 1.0f, 3e9f, INFINITY, NAN}) {
    Bytes all;
    for (int i = -300; i < 300; ++i) {
      add(all, rendered(256, 1, everyByte, test::whiteBalance(static_cast<float>(i) / 128.0f + 0.001f, tint)));
    }
    for (const float odd : {1e-40f, 1e30f, -1e30f, INFINITY, -INFINITY, NAN}) {
      add(all, rendered(256, 1, everyByte, test::whiteBalance(odd, tint)));
    }
    reportBytes(report, words("white balance, every byte, tint ", tint), all);
  }
  // Frames from 16 MiB on are written past the caches, from a position that depends on the alignment.
  const Size large = {2053, 2050};
  reportFrames(report, "white balance", {{101, 100}, large}, test::whiteBalance(0.3f, -0.1f), {});
  const Bytes& pixels = picture(large.width, large.height);
  for (const size_t start : {1, 4, 60}) {
    Bytes dst(pixels.size() + start);
    test::whiteBalance(0.3f, -0.1f)(&dst[start], 0, pixels.data(), 0, large.width, large.height);
    reportBytes(report, words("white balance from byte ", start), dst);
  }
}

// ---- HDR

Yv12Frame converted(const std::u16string& folder, int flags, Yv12Frame src, int dstPadding, bool inPlace = false) {
  const int width = src.y.width, height = src.y.height;
  void* const effect = CreateVideoAdjustColor(folder.c_str(), 0, flags & 1, flags & 2, width, height);
  Yv12Frame dst(width, height, dstPadding);
  EXPECT_TRUE(src.processTo(inPlace ? src : dst, effect, flags));
  DestroyVideoAdjustColor(effect);
  return inPlace ? src : dst;
}

// Blocks of 16 by 16 pixels with one chroma value and each luma once: all colours, but for the edges of the blocks.
Yv12Frame allYv12Colours() {
  Yv12Frame frame(kSide, kSide);
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) frame.y.row(y)[x] = static_cast<uint8_t>(y % 16 * 16 + x % 16);
    for (int x = 0; x < kSide / 2; ++x) {
      if (y % 2 == 0)
        frame.v.row(y / 2)[x] = static_cast<uint8_t>(y / 16), frame.u.row(y / 2)[x] = static_cast<uint8_t>(x / 8);
    }
  }
  return frame;
}

void reportHdrFrames(const Report& report, const std::u16string& folder) {
  for (int flags = 0; flags < 4; ++flags) {
    const std::string name = words("hdr, ", flags & 2 ? "PQ, " : "HLG, ", flags & 1 ? "limited" : "full", " range");
    if (kAllColours) {
      static Yv12Frame colours = allYv12Colours();
      reportBytes(report, name + ", all colours", converted(folder, flags, colours, 0).packed());
    }
    Bytes widths;
    for (int width = 1; width <= 2 * kWidest; ++width) {
      Yv12Frame src(width, 3);
      src.fill(test::harshNoise(size_t{6} * width + 12, static_cast<unsigned>(width)));
      add(widths, converted(folder, flags, src, 0).packed());
    }
    reportBytes(report, name + ", widths", widths);
    for (const auto [width, height] : kSizes) {
      const Bytes noise = test::harshNoise(size_t{2} * width * height + 8, static_cast<unsigned>(width));
      for (const int padding : {0, 3, -1}) {
        Yv12Frame src(width, height, padding);
        src.fill(noise);
        const auto where = words(name, ", ", width, " x ", height, ", padded by ", padding);
        reportBytes(report, where, converted(folder, flags, src, padding).packed());
        reportBytes(report, where + ", in place", converted(folder, flags, src, padding, true).packed());
      }
    }
  }
}

// The caches that the first object of a process computes. A PQ file that ends in its header leaves the tables of the HLG
// file with the size of the PQ file.
void reportHdr(const Report& report) {
  const std::string endsInHeader = "LUT_3D_SIZE 9\nDOMAIN_MIN 0\n";
  for (const auto& [name, hlg, pq, frames] :
       {std::tuple{"65 and 33 points", test::randomCube(65), test::randomCube(33), true},
        {"52 points, halves, and 17, wild", test::randomCube(52, Values::kHalves), test::randomCube(17, Values::kWild),
         false},
        {"2 points, wild, and a header of 9", test::randomCube(2, Values::kWild), endsInHeader, false}}) {
    if (!kAllColours && !frames) continue;
    Lumvane::dropHdrData();
    const test::HdrFolder folder(hlg, pq);
    DestroyVideoAdjustColor(CreateVideoAdjustColor(folder.folder().c_str(), 0, 0, 0, 1, 1));
    for (const bool isPq : {false, true}) {
      const auto& cache = Lumvane::hdrTransferData(isPq).cache;
      report(words("hdr, ", name, ", cache of ", isPq ? "PQ" : "HLG"), digest(cache.data(), 3 * cache.size()));
    }
    if (frames) reportHdrFrames(report, folder.folder());
  }
  Lumvane::dropHdrData();
  if (!kAllColours) return;
  // Converts BGRA pixels to planes directly, because few colours pass through the LUTs.
  for (const bool limited : {false, true}) {
    Yv12Frame dst(kSide, kSide);
    (limited ? imageRGBAToYV12BT709_Limited : imageRGBAToYV12BT709_Full)(allColours().data(), 4 * kSide, dst.y.data(),
                                                                         dst.y.step(), dst.v.data(), dst.v.step(),
                                                                         dst.u.data(), dst.u.step(), kSide, kSide);
    reportBytes(report, words("all colours to planes, ", limited ? "limited" : "full", " range"), dst.packed());
  }
}

void reportAll(const Report& report) {
  reportLuts(report);
  reportClarity(report);
  reportWhiteBalance(report);
  reportHdr(report);
}

std::string recordFile;

std::map<std::string, uint64_t> readRecord() {
  std::map<std::string, uint64_t> record;
  std::ifstream file(recordFile);
  for (std::string line; std::getline(file, line);) {
    if (line.ends_with('\r')) line.pop_back();
    if (!line.starts_with('#')) record[line.substr(17)] = std::stoull(line, nullptr, 16);
  }
  return record;
}

class Record : public testing::TestWithParam<std::tuple<int64_t, int>> {};

TEST_P(Record, Holds) {
  const auto [target, threads] = GetParam();
  std::map<std::string, uint64_t> record = readRecord();
  ASSERT_FALSE(record.empty()) << "no record in '" << recordFile << "'";
  test::useTarget(target);
  cv::setNumThreads(threads);
  reportAll([&](const std::string& name, uint64_t found) {
    EXPECT_EQ(record.count(name), 1u) << name << " is not in the record, or occurs twice";
    EXPECT_EQ(record[name], found) << name;
    record.erase(name);
  });
  test::useTarget(0);
  for (const auto& [name, unused] : record)
    EXPECT_FALSE(kAllColours) << name << " is in the record, but was not produced";
}

// Where colours are sampled, only the newest instructions (first) and the plain forms (last).
std::vector<int64_t> targets() {
  const std::vector<int64_t> all = hwy::SupportedAndGeneratedTargets();
  return kAllColours ? all : std::vector{all.front(), all.back()};
}

INSTANTIATE_TEST_SUITE_P(, Record, testing::Combine(testing::ValuesIn(targets()), testing::Values(1, 3)),
                         [](const auto& info) {
                           return words(hwy::TargetName(std::get<0>(info.param)), "_", std::get<1>(info.param));
                         });

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (argc > 1) recordFile = argv[1];
  if (recordFile != "--print") return RUN_ALL_TESTS();
  reportAll([](const std::string& name, uint64_t found) {
    std::printf("%016llx %s\n", static_cast<unsigned long long>(found), name.c_str());
  });
  return 0;
}
