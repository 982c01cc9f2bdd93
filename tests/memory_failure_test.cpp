// Every allocation of every export fails in turn: what is thrown passes out of the call, no handle or frame comes of it
// that is not whole, nothing is lost, and the next call does its work.

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <opencv2/core.hpp>

#include "hdr/hdr_shared.h"
#include "lumvane.h"
#include "tests/effects.h"
#include "tests/failing_allocator.h"

#ifdef LUMVANE_SANITIZED
// What Call::mayLose tells of.
extern "C" const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() { return "leak:cv::fastMalloc\n"; }
#endif

namespace {

using test::Bytes;
using test::Failing;

// All that the calls work on, made before anything fails.
struct Frames {
  static constexpr int kWidth = 130, kHeight = 100;  // spread over threads
  test::LutFolder folder;
  std::u16string cube = folder.path + u"/look.cube", threeDl = folder.path + u"/look.3dl";
  Bytes src = test::noise(size_t{4} * kWidth * kHeight, 1), dst = Bytes(src.size());
  test::Yv12Frame planes = test::Yv12Frame(kWidth, kHeight), dstPlanes = planes;

  void clear() {
    planes.fill(src);
    std::fill(dst.begin(), dst.end(), uint8_t{0});
    std::fill(dstPlanes.y.bytes.begin(), dstPlanes.y.bytes.end(), uint8_t{0});
  }
  Bytes written() {
    Bytes all = dstPlanes.packed();
    all.insert(all.end(), dst.begin(), dst.end());
    return all;
  }
};
Frames& frames() {
  static Frames instance;
  return instance;
}

// An effect: its create call, a frame, its end.
struct Effect {
  void* (*create)(Frames&);
  bool (*render)(Frames&, void* handle);  ///< false for a frame refused
  void (*destroy)(void* handle);
};
bool grade(Frames& f, void* handle) {
  Lut3DColorAdjustEffectProcess(handle, f.dst.data(), f.kWidth, f.kHeight, 0, f.src.data(), 0, 0, 0, 60);
  return true;
}
const Effect kCube = {[](Frames& f) { return Create3DLutColorAdjustEffect(f.cube.c_str(), 0, 0); }, grade,
                      Destory3DLutColorAdjustEffect};
const Effect kThreeDl = {[](Frames& f) { return Create3DLutColorAdjustEffect(f.threeDl.c_str(), 0, 0); }, grade,
                         Destory3DLutColorAdjustEffect};
const Effect kClarity = {[](Frames& f) { return CreateNLEPureCClarity(f.kWidth, f.kHeight, 0, 20, 70); },
                         [](Frames& f, void* handle) {
                           return NLEPureCClarityProcess(handle, f.dst.data(), f.kWidth, f.kHeight, 0, f.src.data(), 0,
                                                         0, 0) == 1;
                         },
                         DestoryNLEPureCClarity};
const Effect kWhiteBalance = {[](Frames& f) -> void* { return &f; },
                              [](Frames& f, void*) {
                                return WhiteBalanceFun(f.src.data(), f.dst.data(), 0, 0, 0, 0.2f, 0.1f, f.kWidth,
                                                       f.kHeight);
                              },
                              [](void*) {}};
const Effect kHdr = {
    [](Frames& f) { return CreateVideoAdjustColor(f.folder.path.c_str(), 0, 1, 1, f.kWidth, f.kHeight); },
    [](Frames& f, void* handle) { return f.planes.processTo(f.dstPlanes, handle); }, DestroyVideoAdjustColor};

struct Call {
  const char* name;
  Effect effect;
  enum { kCreate, kFirstCreate, kFrame } fails;
  bool mayLose = false;  ///< OpenCV loses the pixels of a matrix for whose header there is no memory
};
void PrintTo(const Call& call, std::ostream* out) { *out << call.name; }
const Call kCalls[] = {{"CubeLoad", kCube, Call::kCreate},
                       {"ThreeDlLoad", kThreeDl, Call::kCreate},
                       {"LutFrame", kCube, Call::kFrame},
                       {"ClarityCreate", kClarity, Call::kCreate},
                       {"ClarityFrame", kClarity, Call::kFrame, true},
                       {"WhiteBalance", kWhiteBalance, Call::kFrame},
                       {"HdrFirstCreate", kHdr, Call::kFirstCreate},
                       {"HdrLaterCreate", kHdr, Call::kCreate},
                       {"HdrFrame", kHdr, Call::kFrame}};

enum class Outcome { kDone, kRefused, kThrew };

// A create and a frame, of which the one at stake meets an allocation that fails, or none for 0.
Outcome attempt(const Call& call, long which, Failing failing, long& failures) {
  Frames& f = frames();
  const Effect& effect = call.effect;
  f.clear();
  void* handle = call.fails == Call::kFrame ? effect.create(f) : nullptr;
  Outcome outcome = Outcome::kThrew;
  test::startFailing(which, failing);
  try {
    const bool done = call.fails == Call::kFrame ? effect.render(f, handle) : (handle = effect.create(f)) != nullptr;
    outcome = done ? Outcome::kDone : Outcome::kRefused;
  } catch (const std::bad_alloc&) {
  } catch (const cv::Exception&) {
  }
  failures = test::stopFailing();
  if (outcome == Outcome::kDone && call.fails != Call::kFrame) effect.render(f, handle);
  effect.destroy(handle);
  return outcome;
}

// The whole row of failures: how many allocations there were.
long failEach(const Call& call, Failing failing, const Bytes& expected) {
  long failures = 0;
  // The 8450 rows of the HDR lattices are one place in the code: only some of them fail.
  constexpr long kEveryOne = 100, kLatticeRows = 8450;
  for (long which = 1;; which += which < kEveryOne || which > kLatticeRows ? 1 : 83) {
    if (call.fails == Call::kFirstCreate) Lumvane::dropHdrData();
    const Outcome outcome = attempt(call, which, failing, failures);
    EXPECT_NE(outcome, Outcome::kRefused) << "allocation " << which;
    // A failure that was got over is welcome.
    EXPECT_TRUE(outcome != Outcome::kDone || frames().written() == expected) << "allocation " << which;
    if (failures == 0) return which - 1;
    if (which % 16 != 0 && which < kLatticeRows) continue;  // the end of the row is such a call, too
    long none;
    EXPECT_EQ(attempt(call, 0, failing, none), Outcome::kDone) << "behind allocation " << which;
    EXPECT_TRUE(frames().written() == expected) << "behind allocation " << which;
  }
}

class MemoryFailure : public testing::TestWithParam<Call> {};

TEST_P(MemoryFailure, PassesOutOfTheCall) {
  const Call& call = GetParam();
  cv::setNumThreads(2);
  // The pool of threads is OpenCV's own; it is there before anything fails.
  cv::parallel_for_(cv::Range(0, 64), [](const cv::Range&) {});
  long none;
  attempt(call, 0, Failing::kOnce, none);
  const Bytes expected = frames().written();
  failEach(call, Failing::kFromThenOn, expected);
  failEach(call, Failing::kOnce, expected);
  const long live = test::liveBlocks();
  const long allocations = failEach(call, Failing::kOnce, expected);
  EXPECT_LE(test::liveBlocks(), live + (call.mayLose ? allocations : 0));
  std::cout << allocations << " allocations\n";
}

// Seen where this test has a process of its own: later frames find the table.
TEST(SharedTable, IsBuiltByTheNextFrameWhenMemoryWasShort) {
  Frames& f = frames();
  void* const handle = kCube.create(f);
  test::startFailing(1, Failing::kOnce);
  bool threw = false;
  try {
    grade(f, handle);
  } catch (const std::bad_alloc&) {
    threw = true;
  }
  EXPECT_EQ(test::stopFailing() != 0, threw);
  grade(f, handle);
  const Bytes first = f.dst;
  grade(f, handle);
  EXPECT_TRUE(f.dst == first);
  EXPECT_NE(f.dst, f.src);
  kCube.destroy(handle);
}

INSTANTIATE_TEST_SUITE_P(In, MemoryFailure, testing::ValuesIn(kCalls),
                         [](const auto& info) { return info.param.name; });

}  // namespace
