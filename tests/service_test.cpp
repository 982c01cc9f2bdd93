// Soak test: thousands of objects, an hour of frames, and no growth of memory.

#include <gtest/gtest.h>

#include <opencv2/core/utility.hpp>

#include "tests/effects.h"
#include "tests/resident_memory.h"

namespace {

// Sanitizers keep freed memory for a while.
#ifdef LUMVANE_SANITIZED
constexpr long kMaxGrowthKiB = 600 << 10;
#else
constexpr long kMaxGrowthKiB = 1 << 10;
#endif
constexpr int kShare = test::kStep == 1 ? 1 : 10;

// Compares the memory after all rounds with that after a tenth of them, when one-time allocations are done.
template <class Round>
void expectFlatMemory(int rounds, const Round& round) {
  for (int i = 0; i < rounds / 10; ++i) round(i);
  const long before = test::residentKiB();
  if (before == 0) GTEST_SKIP() << "no /proc/self/statm here";
  for (int i = rounds / 10; i < rounds; ++i) round(i);
  EXPECT_LE(test::residentKiB(), before + kMaxGrowthKiB);
}

TEST(Service, CreatesAndDestroysTenThousandObjectsOfEachKind) {
  const test::LutFolder folder;
  const std::u16string missing = folder.path + u"/none.cube";
  expectFlatMemory(10000 / kShare, [&](int i) {
    void* const lut =
        Create3DLutColorAdjustEffect((folder.path + (i % 2 ? u"/look.cube" : u"/look.3dl")).c_str(), i, i);
    ASSERT_NE(lut, nullptr);
    ASSERT_EQ(Create3DLutColorAdjustEffect(missing.c_str(), i, i), nullptr);
    void* const clarity = CreateNLEPureCClarity(i, i % 700, 0, i % 100, i % 100);
    void* const hdr = CreateVideoAdjustColor(folder.path.c_str(), 0, i % 2, i % 3, i % 300, i % 200);
    Destory3DLutColorAdjustEffect(lut);
    DestoryNLEPureCClarity(clarity);
    DestroyVideoAdjustColor(hdr);
  });
}

// An hour of small frames at 25 per second; one in 50 has a size that uses threads.
TEST(Service, RendersAnHourOfFrames) {
  const test::LutFolder folder;
  test::Yv12Frame small(64, 36), large(130, 100);
  const test::Bytes src = test::noise(size_t{4} * 130 * 100, 1);
  test::Bytes dst(src.size());
  void* const clarity = CreateNLEPureCClarity(64, 36, 0, 20, 60);
  void* const hdr[] = {CreateVideoAdjustColor(folder.path.c_str(), 0, 1, 0, 64, 36),
                       CreateVideoAdjustColor(folder.path.c_str(), 0, 1, 1, 130, 100)};
  const test::Render grade = test::grading(folder.path + u"/look.cube", 60);
  expectFlatMemory(90000 / kShare, [&](int i) {
    const bool threaded = i % 50 == 0;
    test::Yv12Frame& frame = threaded ? large : small;
    const int width = frame.y.width, height = frame.y.height;
    grade(dst.data(), 0, src.data(), 0, width, height);
    ASSERT_EQ(NLEPureCClarityProcess(clarity, dst.data(), width, height, 0, src.data(), 0, 0, 0), 1);
    WhiteBalanceFun(src.data(), dst.data(), 0, 0, 0, 0.1f, 0.1f, width, height);
    frame.processTo(frame, hdr[threaded]);
  });
  DestoryNLEPureCClarity(clarity);
  for (void* const handle : hdr) DestroyVideoAdjustColor(handle);
}

// Objects take up memory for what they use, not for what they could hold.
TEST(Service, UsesLittleMemoryForObjectsOfAnySize) {
  const test::LutFolder folder;
  const test::TemporaryFile cube("33.cube", test::randomCube(33));
  const auto hdr = [&](int width, int height) {
    return CreateVideoAdjustColor(folder.path.c_str(), 0, 0, 0, width, height);
  };
  Destory3DLutColorAdjustEffect(Create3DLutColorAdjustEffect((folder.path + u"/look.cube").c_str(), 0, 0));
  for (int i = 0; i < 2; ++i) DestroyVideoAdjustColor(hdr(1920, 1080));  // memory that has been freed is no excuse

  long before = test::residentKiB();
  void* const lut = Create3DLutColorAdjustEffect(cube.utf16().c_str(), 0, 0);
  EXPECT_LE(test::residentKiB() - before, kMaxGrowthKiB * 3 / 2);
  for (const auto& [width, height] : {std::pair{1920, 1080}, {7680, 4320}}) {
    before = test::residentKiB();
    void* const handle = hdr(width, height);
    EXPECT_LE(test::residentKiB() - before, kMaxGrowthKiB) << width << " x " << height;
    DestroyVideoAdjustColor(handle);
  }
  Destory3DLutColorAdjustEffect(lut);
}

}  // namespace
