// The HDR LUT files are loaded once per process. ctest runs each test in its own process; tests that share one drop the
// loaded data in between.

#include <gtest/gtest.h>

#include <climits>
#include <new>

#include "hdr/hdr_shared.h"
#include "hdr/video_adjust_color.h"
#include "tests/yv12.h"

namespace Lumvane {
namespace {

using test::Bytes;
using test::HdrFolder;
using test::randomCube;
using test::Yv12Frame;

struct Object {
  VideoAdjustColor* handle;
  Object(const std::u16string& folder, int limited, int pq, int width, int height)
      : handle(static_cast<VideoAdjustColor*>(CreateVideoAdjustColor(folder.c_str(), 99, limited, pq, width, height))) {
  }
  ~Object() { DestroyVideoAdjustColor(handle); }
};

// Converts a frame of 100 pixels by `rows`, which counts as large from 100 rows on.
Bytes frameOf(const HdrFolder& folder, bool pq, int rows, int reserved = 0) {
  const Object object(folder.folder(), 0, pq, 100, rows);
  Yv12Frame src(100, rows), dst(100, rows);
  src.y.fillWithNoise(1), src.v.fillWithNoise(2), src.u.fillWithNoise(3);
  EXPECT_TRUE(src.processTo(dst, object.handle, reserved));
  for (int frame = 1; frame < 5; ++frame) {  // the first two go through the cache, the next two through the lattice
    Yv12Frame again(100, rows);
    src.processTo(again, object.handle, reserved);
    EXPECT_EQ(again.packed(), dst.packed()) << frame;
  }
  Yv12Frame inPlace = src;
  EXPECT_TRUE(inPlace.processTo(inPlace, object.handle));
  EXPECT_EQ(inPlace.packed(), dst.packed());
  // The small-frame path leaves byte 3 unchanged.
  EXPECT_EQ(object.handle->rgbaOut[3], rows >= 100 ? 255 : 0);
  return dst.packed();
}

// Checks both paths, pixel by pixel. The last row of the small frame is not compared: in the large one it depends on the
// chroma below.
void expectFrames(const HdrFolder& folder, bool pq, bool black) {
  const Bytes small = frameOf(folder, pq, 98), large = frameOf(folder, pq, 100, 12345);
  EXPECT_TRUE(std::equal(small.begin(), small.begin() + 9700, large.begin())) << "luma";
  EXPECT_EQ(std::count(large.begin(), large.begin() + 10000, 0) == 10000, black);
  EXPECT_EQ(std::count(small.begin(), small.begin() + 9800, 0) == 9800, black);
}

class Hdr : public testing::Test {
 protected:
  void SetUp() override { dropHdrData(); }
  void TearDown() override { dropHdrData(); }
};

TEST_F(Hdr, LoadsOncePerProcess) {
  EXPECT_EQ(CreateVideoAdjustColor(nullptr, 0, 0, 0, 8, 8), nullptr);
  EXPECT_FALSE(hdrDataLoaded());
  DestroyVideoAdjustColor(nullptr);
  const HdrFolder folder(randomCube(17), randomCube(33)), other(randomCube(7), randomCube(7));
  const Object first(folder.folder(), 1, 0, 8, 8), second(other.folder(), 0, 0, 8, 8);
  EXPECT_EQ(first.handle->latticeSize, 33) << "of the last file read";
  EXPECT_EQ(first.handle->cell[255], 32);
  EXPECT_EQ(second.handle->latticeSize, 0);
  EXPECT_EQ(hdrTransferData(false).latticeSize, 17);
  EXPECT_EQ(hdrTransferData(true).latticeSize, 33);
  for (const bool pq : {false, true}) expectFrames(other, pq, false);
  EXPECT_NE(frameOf(other, false, 100), frameOf(other, true, 100));
  EXPECT_NE(frameOf(other, false, 98), frameOf(other, true, 98));
}

TEST_F(Hdr, RefusesSizesOutOfRange) {
  const HdrFolder folder(randomCube(2), randomCube(2));
  for (const auto& [width, height] : {std::pair{-1, 5},
                                      {5, -1},
                                      {-3, -3},
                                      {32768, 16384},
                                      {65536, 65536},
                                      {INT_MAX, INT_MAX},
                                      {INT_MIN, INT_MIN},
                                      {1 << 29, 1}}) {
    EXPECT_THROW(CreateVideoAdjustColor(folder.folder().c_str(), 0, 0, 0, width, height), std::bad_alloc)
        << width << " x " << height;
  }
  EXPECT_FALSE(hdrDataLoaded());
  for (const auto& [width, height] : {std::pair{0, 7}, {7, 0}, {INT_MAX, 0}}) {
    const Object empty(folder.folder(), 0, 0, width, height);
    EXPECT_TRUE(
        VideoAdjustColorProcess(empty.handle, nullptr, nullptr, nullptr, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr));
  }
  expectFrames(folder, false, false);
}

// The state after loading a pair of files of which one is bad or missing.
struct Pair {
  const char* name;
  std::string hlg, pq;
  int hlgSize, pqSize;  // shared, used by the frames
  bool hlgBlack, pqBlack, loadOk;
  int lastCell;  // of the object's own tables, which are filled only after a valid header
};
void PrintTo(const Pair& pair, std::ostream* out) { *out << pair.name; }
class HdrPair : public testing::TestWithParam<Pair> {};

TEST_P(HdrPair, KeepsWhatWasRead) {
  const Pair& pair = GetParam();
  dropHdrData();
  const HdrFolder folder(pair.hlg, pair.pq);
  const Object object(folder.folder(), 1, 1, 40, 30);
  ASSERT_NE(object.handle, nullptr);
  EXPECT_EQ(hdrTransferData(false).latticeSize, pair.hlgSize);
  EXPECT_EQ(hdrTransferData(true).latticeSize, pair.pqSize);
  EXPECT_EQ(object.handle->cell[255], pair.lastCell);
  EXPECT_EQ(object.handle->loadOk, pair.loadOk);
  expectFrames(folder, false, pair.hlgBlack);
  expectFrames(folder, true, pair.pqBlack);
  dropHdrData();
}

const std::string kGood = randomCube(5), kShort = randomCube(4).substr(0, 500);
INSTANTIATE_TEST_SUITE_P(
    Of, HdrPair,
    testing::Values(
        Pair{"GoodOnes", kGood, randomCube(9), 5, 9, false, false, true, 8},
        Pair{"NoFiles", "", "", 0, 0, true, true, false, 0}, Pair{"NoHlg", "", kGood, 0, 5, true, false, true, 4},
        Pair{"SizeRefusedAtOnce", kGood, "LUT_3D_SIZE 66\n0 0 0\n", 5, 66, false, true, false, 4},
        Pair{"SizeBeyondTheHeader", kGood, "TITLE t\nLUT_3D_SIZE 300\n", 5, 5, false, true, false, 4},
        Pair{"NoSize", kGood, "TITLE t\n0 0 0\n", 5, 5, false, true, false, 4},
        Pair{"NoHeader", kGood, "0 0 0\n", 5, 0, false, true, false, 4},
        Pair{"NoSizes", "TITLE t\n", "0 0 0\n", 0, 0, true, true, false, 0},
        Pair{"BlankLine", kGood, "   \n0 0 0\n", 5, 5, false, true, false, 4},
        Pair{"DomainInverted", kGood, "LUT_3D_SIZE 4\nDOMAIN_MIN 1 1 1\n0 0 0\n", 5, 4, false, true, false, 4},
        Pair{"EndsInTheHeader", kGood, "LUT_3D_SIZE 65\n", 5, 65, false, true, false, 4},
        Pair{"EndsAmongTheRows", kGood, kShort, 5, 4, false, false, false, 3},
        // A refused size stays with the object, so a file without a size is refused as well.
        Pair{"SizeInherited", "LUT_3D_SIZE 100\n0 0 0\n", "TITLE t\n0 0 0\n", 100, 100, true, true, false, 0}),
    [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace Lumvane
