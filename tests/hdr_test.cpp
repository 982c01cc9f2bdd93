// The HDR LUT files are loaded once a process: ctest runs each of these tests in a process of its own. Run all at once,
// they take the shared data back to its start in between.

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <new>

#include "apply/byte_conversions.h"
#include "apply/parallel_hdr_lut.h"
#include "hdr/hdr_load.h"
#include "hdr/hdr_shared.h"
#include "hdr/yv12_conversions.h"
#include "lumvane.h"
#include "lut/interpolation_tables.h"
#include "tests/inputs.h"
#include "tests/reference_grading.h"

namespace Lumvane {
namespace {

namespace fs = std::filesystem;

// Independent of the library's: low 8 bits of what is truncated, by way of a remainder.
uint8_t reference8(float v) {
  const double sum = static_cast<double>(v) + 0.5;
  if (sum > 255.0) return 255;
  const auto whole = static_cast<int64_t>(std::trunc(sum));
  return static_cast<uint8_t>((whole % 256 + 256) % 256);
}

// A table in both forms: as the text of a .cube file, and for the reference.
struct Look {
  std::string text;
  reference::Lut lut;

  // Values somewhat beyond 0 to 1, that tell red, green and blue apart.
  explicit Look(int size, int seed, int rows = INT_MAX) {
    text = "LUT_3D_SIZE " + std::to_string(size) + "\n";
    lut.size = size;
    lut.points.resize(static_cast<size_t>(size * size * size * 3));
    std::mt19937 random(static_cast<unsigned>(seed));
    for (int row = 0; row < size * size * size && row < rows; ++row) {
      for (int c = 0; c < 3; ++c) {
        const std::string value = std::to_string(static_cast<double>(random() % 1200) / 1000.0 - 0.1);
        text += value + (c < 2 ? " " : "\n");
        lut.points[static_cast<size_t>(row * 3 + c)] = std::strtof(value.c_str(), nullptr) * 255.0f;
      }
    }
  }
};

class Directory {
 public:
  Directory(const std::string& hlg, const std::string& pq) : marker_("marker", "") {
    const fs::path folder = fs::path(marker_.utf16()).parent_path();
    path = folder.u16string();
    if (!hlg.empty()) std::ofstream(folder / "HDR_HLG.cube") << hlg;
    if (!pq.empty()) std::ofstream(folder / "HDR_PQ.cube") << pq;
  }
  std::u16string path;

 private:
  test::TemporaryFile marker_;
};

struct Object {
  VideoAdjustColor* handle;
  Object(const std::u16string& directory, int limited, int pq, int width, int height)
      : handle(
            static_cast<VideoAdjustColor*>(CreateVideoAdjustColor(directory.c_str(), 99, limited, pq, width, height))) {
  }
  ~Object() { DestroyVideoAdjustColor(handle); }
};

struct Planes {
  int width, height, strides[3];
  std::vector<uint8_t> bytes[3];

  Planes(int w, int h, int padding)
      : width(w), height(h), strides{w + padding, (w + 1) / 2 + padding, (w + 1) / 2 + 5} {
    for (int i = 0; i < 3; ++i) bytes[i].assign(static_cast<size_t>(strides[i]) * rows(i) + 16, 0xA5);
  }
  int rows(int plane) const { return plane == 0 ? height : (height + 1) / 2; }
  int columns(int plane) const { return plane == 0 ? width : (width + 1) / 2; }
  void fillWithNoise(unsigned seed) {
    std::mt19937 random(seed);
    for (int i = 0; i < 3; ++i) {
      for (int y = 0; y < rows(i); ++y) {
        for (int x = 0; x < columns(i); ++x)
          bytes[i][static_cast<size_t>(y * strides[i] + x)] = static_cast<uint8_t>(random());
      }
    }
  }
  bool process(VideoAdjustColor* object, Planes& dst, int reserved) {
    return VideoAdjustColorProcess(object, bytes[0].data(), bytes[1].data(), bytes[2].data(), strides[0], strides[1],
                                   strides[2], reserved, -reserved, dst.bytes[0].data(), dst.bytes[1].data(),
                                   dst.bytes[2].data());
  }
};

// A frame through the whole pipeline; without a table it is black.
Planes expectedFrame(Planes& src, const reference::Lut* lut, bool limited, int padding) {
  const int stride = src.width * 4;
  std::vector<uint8_t> rgba(static_cast<size_t>(stride * src.height));
  (limited ? imageYV12ToRGBBT2020_Limited : imageYV12ToRGBBT2020_FULL)(
      src.bytes[0].data(), src.strides[0], src.bytes[1].data(), src.strides[1], src.bytes[2].data(), src.strides[2],
      rgba.data(), stride, src.width, src.height);
  for (size_t i = 0; i < rgba.size(); i += 4) {
    std::array<uint8_t, 3> colour = {};
    if (lut != nullptr) {
      const auto out = reference::lookup(*lut, rgba[i + 2], rgba[i + 1], rgba[i]);
      for (size_t c = 0; c < 3; ++c) colour[c] = reference8(out[c]);
    }
    for (size_t c = 0; c < 3; ++c) rgba[i + c] = colour[2 - c];
  }
  Planes dst(src.width, src.height, padding);
  (limited ? imageRGBAToYV12BT709_Limited : imageRGBAToYV12BT709_Full)(
      rgba.data(), stride, dst.bytes[0].data(), dst.strides[0], dst.bytes[1].data(), dst.strides[1],
      dst.bytes[2].data(), dst.strides[2], src.width, src.height);
  return dst;
}

// Frames of either pass give the same bytes for every flag, with padding, and whatever the reserved arguments hold.
void expectFrames(const std::u16string& directory, const reference::Lut* hlg, const reference::Lut* pq) {
  for (const auto& [width, height] : {std::pair{99, 101}, {100, 100}, {2501, 4}, {10001, 1}, {321, 143}, {1, 1}}) {
    for (const int flags : {0, 1, 2, 3}) {
      const int limited = flags & 1 ? -4 : 0, usePq = flags & 2 ? 7 : 0;
      const Object object(directory, limited, usePq, width, height);
      Planes src(width, height, 3), dst(width, height, 3);
      src.fillWithNoise(static_cast<unsigned>(width + flags));
      const auto where = testing::Message() << width << " x " << height << ", flags " << flags;
      ASSERT_NE(object.handle, nullptr) << where;
      EXPECT_TRUE(src.process(object.handle, dst, flags * 12345)) << where;
      const Planes expected = expectedFrame(src, usePq != 0 ? pq : hlg, limited != 0, 3);
      src.process(object.handle, src, 0);  // in place: all of it is read before anything is written
      for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(dst.bytes[i] == expected.bytes[i]) << where << ", plane " << i;
        EXPECT_TRUE(src.bytes[i] == expected.bytes[i]) << where << ", plane " << i << ", in place";
      }
      // Which pass ran: the one for small frames leaves byte 3 alone.
      EXPECT_EQ(object.handle->rgbaOut[3], width * height >= 10000 ? 255 : 0) << where;
    }
  }
}

bool isZero(const HdrCache& cache) {
  static const HdrCache zeros(kCacheEntries);
  return cache.size() == kCacheEntries && std::memcmp(cache.data(), zeros.data(), kCacheEntries * 3) == 0;
}

class Hdr : public testing::Test {
 protected:
  void SetUp() override { dropHdrData(); }
};

TEST_F(Hdr, MapsThroughFilesOfDifferentSizes) {
  const Look hlg(17, 1), pq(33, 2);
  const Directory directory(hlg.text, pq.text);
  const Object first(directory.path, 1, 0, 8, 8);
  EXPECT_EQ(first.handle->latticeSize, 33);
  EXPECT_EQ(first.handle->cell[255], 32);
  EXPECT_EQ(first.handle->fraction[0], 0.0f);
  EXPECT_EQ(hdrTransferData(false).latticeSize, 17);
  EXPECT_EQ(hdrTransferData(true).latticeSize, 33);
  // This object's own tables are those of the other file.
  Planes src(8, 8, 0), dst(8, 8, 0);
  src.fillWithNoise(5);
  src.process(first.handle, dst, 0);
  EXPECT_EQ(dst.bytes[0], expectedFrame(src, &hlg.lut, true, 0).bytes[0]);
  expectFrames(directory.path, &hlg.lut, &pq.lut);
}

TEST_F(Hdr, LoadsOnceAProcess) {
  const Look hlg(5, 3), pq(9, 4), other(7, 5);
  EXPECT_EQ(CreateVideoAdjustColor(nullptr, 0, 0, 0, 8, 8), nullptr);
  EXPECT_FALSE(hdrDataLoaded());
  const Directory directory(hlg.text, pq.text), otherDirectory(other.text, other.text);
  DestroyVideoAdjustColor(CreateVideoAdjustColor(directory.path.c_str(), 0, 0, 0, 8, 8));
  DestroyVideoAdjustColor(nullptr);
  const Object second(otherDirectory.path, 0, 0, 8, 8);
  EXPECT_EQ(second.handle->latticeSize, 0);
  expectFrames(otherDirectory.path, &hlg.lut, &pq.lut);
}

TEST_F(Hdr, StaysBlackAfterADirectoryWithoutFiles) {
  const Look look(5, 6);
  const Directory empty("", ""), good(look.text, look.text);
  const Object first(empty.path, 0, 0, 8, 8);
  ASSERT_NE(first.handle, nullptr);
  expectFrames(good.path, nullptr, nullptr);
}

TEST_F(Hdr, RefusesFramesThatDoNotFit) {
  const Look look(2, 9);
  const Directory directory(look.text, look.text);
  for (const auto& [width, height] : {std::pair{-1, 5},
                                      {5, -1},
                                      {-3, -3},
                                      {32768, 16384},
                                      {65536, 65536},
                                      {INT_MAX, INT_MAX},
                                      {INT_MIN, INT_MIN},
                                      {1 << 29, 1}}) {
    EXPECT_THROW(CreateVideoAdjustColor(directory.path.c_str(), 0, 0, 0, width, height), std::bad_alloc)
        << width << " x " << height;
  }
  EXPECT_FALSE(hdrDataLoaded());
  for (const auto& [width, height] : {std::pair{0, 7}, {7, 0}, {INT_MAX, 0}}) {
    const Object empty(directory.path, 0, 0, width, height);
    EXPECT_TRUE(
        VideoAdjustColorProcess(empty.handle, nullptr, nullptr, nullptr, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr));
  }
  expectFrames(directory.path, &look.lut, &look.lut);
}

// What a faulty PQ file leaves behind, after a good HLG file of 5 points.
struct Fault {
  const char* name;
  std::string pq;
  int size;  // shared, as the frames see it
  bool cacheZero;
};
void PrintTo(const Fault& fault, std::ostream* out) { *out << fault.name; }
class HdrFault : public testing::TestWithParam<Fault> {
 protected:
  void SetUp() override { dropHdrData(); }
};

TEST_P(HdrFault, LeavesWhatWasReadSoFar) {
  const Look hlg(5, 10);
  const Directory directory(hlg.text, GetParam().pq);
  const Object object(directory.path, 1, 1, 40, 30);
  ASSERT_NE(object.handle, nullptr);
  EXPECT_EQ(hdrTransferData(true).latticeSize, GetParam().size);
  EXPECT_EQ(isZero(hdrTransferData(true).cache), GetParam().cacheZero);
  EXPECT_FALSE(isZero(hdrTransferData(false).cache));
  // Index tables are only made for a header without a fault; a file that is not there leaves the result of the other.
  EXPECT_EQ(object.handle->cell[255], GetParam().cacheZero ? 4 : GetParam().size - 1);
  EXPECT_EQ(object.handle->loadOk, GetParam().pq.empty());
  const Look shortLook(4, 11, 9);
  const Look* seen = GetParam().cacheZero ? nullptr : &shortLook;
  expectFrames(directory.path, &hlg.lut, seen != nullptr ? &seen->lut : nullptr);
}

INSTANTIATE_TEST_SUITE_P(Pq, HdrFault,
                         testing::Values(Fault{"Missing", "", 0, true},
                                         Fault{"FirstLineOpen", "LUT_3D_SIZE 4", 0, true},
                                         Fault{"SizeRefusedAtOnce", "LUT_3D_SIZE 66\n0 0 0\n", 66, true},
                                         Fault{"SizeBeyondTheHeader", "TITLE t\nLUT_3D_SIZE 300\n", 5, true},
                                         Fault{"SizeBeyondTheHeaderAlone", "LUT_3D_SIZE 300\n", 0, true},
                                         Fault{"NoSize", "TITLE t\n0 0 0\n", 5, true},
                                         Fault{"BlankLine", "   \n0 0 0\n", 5, true},
                                         Fault{"RowsAlone", "0 0 0\n", 0, true},
                                         Fault{"DomainInverted", "LUT_3D_SIZE 4\nDOMAIN_MIN 1 1 1\n0 0 0\n", 4, true},
                                         Fault{"DomainShort", "LUT_3D_SIZE 4\nDOMAIN_MIN 1\n0 0 0\n", 4, true},
                                         Fault{"EndsInTheHeader", "LUT_3D_SIZE 65\n", 65, true},
                                         Fault{"EndsAmongTheRows", Look(4, 11, 9).text, 4, false}),
                         [](const auto& info) { return info.param.name; });

TEST_F(Hdr, KeepsNoSizeWithoutAnyFileThatHasOne) {
  const Directory directory("TITLE t\n", "0 0 0\n");
  const Object object(directory.path, 1, 0, 40, 30);
  EXPECT_EQ(object.handle->latticeSize, 0);
  EXPECT_FALSE(object.handle->loadOk);
  expectFrames(directory.path, nullptr, nullptr);
}

TEST_F(Hdr, MapsPqWithoutAnHlgFile) {
  const Look pq(9, 13);
  for (const std::string hlg : {"", "LUT_3D_SIZE 3\n0 0 0\n"}) {
    dropHdrData();
    const Directory directory(hlg, pq.text);
    const Object object(directory.path, 1, 1, 40, 30);
    EXPECT_TRUE(object.handle->loadOk);
    EXPECT_TRUE(isZero(hdrTransferData(false).cache));
    expectFrames(directory.path, nullptr, &pq.lut);
  }
}

// A refused HLG size stays with the object, so that a PQ file without a size is refused for it too.
TEST_F(Hdr, InheritsARefusedSizeToo) {
  const Directory directory("LUT_3D_SIZE 100\n0 0 0\n", "TITLE t\n0 0 0\n");
  const Object object(directory.path, 1, 0, 40, 30);
  EXPECT_EQ(hdrTransferData(false).latticeSize, 100);
  EXPECT_EQ(hdrTransferData(true).latticeSize, 100);
  expectFrames(directory.path, nullptr, nullptr);
}

class HdrEveryColour : public testing::TestWithParam<int> {};

// The cache against the reference, and a frame of all colours through cache and lattice.
TEST_P(HdrEveryColour, IsTheSameFromCacheAndLattice) {
  const int size = GetParam();
  dropHdrData();
  allocateHdrData();
  const HdrTransferData shared = hdrTransferData(false);
  VideoAdjustColor object;
  object.latticeSize = size;
  fillInterpolationTables(size, object.fraction, object.cell);
  reference::Lut lut;
  lut.size = size;
  lut.points.resize(static_cast<size_t>(size * size * size * 3));
  std::mt19937 random(static_cast<unsigned>(size));
  for (int x = 0; x < size; ++x) {
    for (int y = 0; y < size; ++y) {
      for (int z = 0; z < size * 3; ++z) {
        const float value = static_cast<float>(random() % 90000) / 100.0f - 300.0f;
        lut.at(x, y, z / 3, z % 3) = shared.lattice[x][y][z] = value;
      }
    }
  }
  fillHdrCache(object, 0);

  constexpr int kHeight = 4096 / test::kStep;
  cv::Mat src(kHeight, 4096, CV_8UC4), cached(kHeight, 4096, CV_8UC4), direct(kHeight, 4096, CV_8UC4);
  size_t differences = 0;
  for (uint32_t n = 0; n < 4096 * kHeight; ++n) {
    const uint32_t i = n * test::kStep;
    const auto r = static_cast<uint8_t>(i >> 16), g = static_cast<uint8_t>(i >> 8), b = static_cast<uint8_t>(i);
    const auto out = reference::lookup(lut, r, g, b);
    for (size_t c = 0; c < 3; ++c) differences += shared.cache[i].component[c] != reference8(out[c]);
    src.at<cv::Vec4b>(static_cast<int>(n / 4096), static_cast<int>(n % 4096)) = {b, g, r, static_cast<uint8_t>(i * 5)};
  }
  EXPECT_EQ(differences, 0u);

  const HdrCache noCache;
  for (const bool withCache : {true, false}) {
    parallelCubeLut_ worker;
    worker.dst = withCache ? &cached : &direct;
    worker.src = &src;
    worker.bands = 8;
    worker.latticeSize = size;
    worker.fraction = object.fraction;
    worker.cell = object.cell;
    worker.lattice = shared.lattice;
    worker.cache = withCache ? &shared.cache : &noCache;
    cv::parallel_for_(cv::Range(0, 8), worker);
  }
  EXPECT_EQ(std::memcmp(cached.data, direct.data, size_t{4} * 4096 * kHeight), 0);
  constexpr uint32_t kColour = (200 * 4096 + 77) * test::kStep;
  const auto pixel = cached.at<cv::Vec4b>(200, 77);
  const RGB8 entry = shared.cache[kColour];
  EXPECT_EQ(pixel,
            cv::Vec4b(entry.component[2], entry.component[1], entry.component[0], static_cast<uint8_t>(kColour * 5)));
}

INSTANTIATE_TEST_SUITE_P(Size, HdrEveryColour, testing::Values(2, 17, 33, 65));

TEST(TruncToByte, RoundsHalvesUpAndWrapsBelowZero) {
  const std::pair<float, int> cases[] = {{10.0f, 10},   {10.4f, 10},        {10.5f, 11},     {11.0f, 11},
                                         {255.0f, 255}, {300.0f, 255},      {-0.2f, 0},      {-1.4f, 0},
                                         {-1.5f, 255},  {-2.5f, 254},       {-257.5f, 255},  {1e30f, 255},
                                         {-1e30f, 0},   {std::nanf(""), 0}, {INFINITY, 255}, {-INFINITY, 0}};
  for (const auto& [value, byte] : cases) {
    EXPECT_EQ(truncToByte(value), byte) << value;
  }
}

}  // namespace
}  // namespace Lumvane
