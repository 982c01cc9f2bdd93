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

using Bytes = std::vector<uint8_t>;
using test::Failing;

// All that the calls work on, made before anything fails.
struct World {
  static constexpr int kWidth = 130, kHeight = 100;  // spread over threads
  static constexpr int kPixels = kWidth * kHeight;

  test::LutFolder folder;
  std::u16string cube = folder.path + u"/look.cube", threeDl = folder.path + u"/look.3dl";
  Bytes src = test::noise(size_t{4} * kPixels, 1), dst = Bytes(src.size());
  void* handle = nullptr;

  void grade() { Lut3DColorAdjustEffectProcess(handle, dst.data(), kWidth, kHeight, 0, src.data(), 0, 0, 0, 60); }
  bool clarify() { return NLEPureCClarityProcess(handle, dst.data(), kWidth, kHeight, 0, src.data(), 0, 0, 0) == 1; }
  void createHdr() { handle = CreateVideoAdjustColor(folder.path.c_str(), 0, 1, 1, kWidth, kHeight); }
  void convert() {
    const uint8_t* const y = src.data();
    uint8_t* const out = dst.data();
    VideoAdjustColorProcess(handle, y, y + kPixels, y + kPixels * 5 / 4, kWidth, kWidth / 2, kWidth / 2, 0, 0, out,
                            out + kPixels, out + kPixels * 5 / 4);
  }
};
World& world() {
  static World instance;
  return instance;
}

struct Call {
  const char* name;
  void (*prepare)(World&);
  bool (*run)(World&);   ///< what fails; false for a null handle or a frame refused
  void (*show)(World&);  ///< leaves in dst what came of it
  void (*clean)(World&);
  bool mayLose = false;  ///< OpenCV loses the pixels of a matrix for whose header there is no memory
};
void PrintTo(const Call& call, std::ostream* out) { *out << call.name; }

constexpr auto kNothing = [](World&) {};
constexpr auto kEndLut = [](World& w) { Destory3DLutColorAdjustEffect(w.handle); };
constexpr auto kEndClarity = [](World& w) { DestoryNLEPureCClarity(w.handle); };
constexpr auto kEndHdr = [](World& w) { DestroyVideoAdjustColor(w.handle); };
constexpr auto kCreateHdr = [](World& w) {
  w.createHdr();
  return w.handle != nullptr;
};

const Call kCalls[] = {
    {"CubeLoad", kNothing,
     [](World& w) { return (w.handle = Create3DLutColorAdjustEffect(w.cube.c_str(), 0, 0)) != nullptr; },
     [](World& w) { w.grade(); }, kEndLut},
    {"ThreeDlLoad", kNothing,
     [](World& w) { return (w.handle = Create3DLutColorAdjustEffect(w.threeDl.c_str(), 0, 0)) != nullptr; },
     [](World& w) { w.grade(); }, kEndLut},
    {"LutFrame", [](World& w) { w.handle = Create3DLutColorAdjustEffect(w.cube.c_str(), 0, 0); },
     [](World& w) {
       w.grade();
       return true;
     },
     kNothing, kEndLut},
    {"ClarityCreate", kNothing,
     [](World& w) { return (w.handle = CreateNLEPureCClarity(130, 100, 0, 20, 70)) != nullptr; },
     [](World& w) { w.clarify(); }, kEndClarity},
    {"ClarityFrame", [](World& w) { w.handle = CreateNLEPureCClarity(130, 100, 0, 20, 70); },
     [](World& w) { return w.clarify(); }, kNothing, kEndClarity, true},
    {"WhiteBalance", kNothing,
     [](World& w) { return WhiteBalanceFun(w.src.data(), w.dst.data(), 0, 0, 0, 0.2f, 0.1f, w.kWidth, w.kHeight); },
     kNothing, kNothing},
    {"HdrFirstCreate", [](World&) { Lumvane::dropHdrData(); }, kCreateHdr, [](World& w) { w.convert(); }, kEndHdr},
    {"HdrLaterCreate", [](World& w) { w.createHdr(), kEndHdr(w), w.handle = nullptr; }, kCreateHdr,
     [](World& w) { w.convert(); }, kEndHdr},
    {"HdrFrame", [](World& w) { w.createHdr(); },
     [](World& w) {
       w.convert();
       return true;
     },
     kNothing, kEndHdr},
};

enum class Outcome { kDone, kRefused, kThrew };

// One call with an allocation that fails, or with none for 0. What it gave is left in dst.
Outcome attempt(const Call& call, long which, Failing failing, long& failures) {
  World& w = world();
  w.handle = nullptr;
  call.prepare(w);
  std::fill(w.dst.begin(), w.dst.end(), uint8_t{0});
  Outcome outcome = Outcome::kThrew;
  test::startFailing(which, failing);
  try {
    outcome = call.run(w) ? Outcome::kDone : Outcome::kRefused;
  } catch (const std::bad_alloc&) {
  } catch (const cv::Exception&) {
  }
  failures = test::stopFailing();
  if (outcome == Outcome::kDone) call.show(w);
  call.clean(w);
  return outcome;
}

// The whole row of failures: how many allocations there were.
long failEach(const Call& call, Failing failing, const Bytes& expected) {
  World& w = world();
  long failures = 0;
  // The 8450 rows of the HDR lattices are one place in the code: only some of them fail.
  constexpr long kEveryOne = 100, kLatticeRows = 8450;
  for (long which = 1;; which += which < kEveryOne || which > kLatticeRows ? 1 : 83) {
    const Outcome outcome = attempt(call, which, failing, failures);
    EXPECT_NE(outcome, Outcome::kRefused) << "allocation " << which;
    // A failure that was got over is welcome.
    EXPECT_TRUE(outcome != Outcome::kDone || w.dst == expected) << "allocation " << which;
    if (failures == 0) return which - 1;
    if (which % 16 != 0) continue;  // the end of the row is such a call, too
    long none;
    EXPECT_EQ(attempt(call, 0, failing, none), Outcome::kDone) << "behind allocation " << which;
    EXPECT_TRUE(w.dst == expected) << "behind allocation " << which;
  }
}

class MemoryFailure : public testing::TestWithParam<Call> {};

TEST_P(MemoryFailure, PassesOutOfTheCall) {
  const Call& call = GetParam();
  cv::setNumThreads(2);
  // The pool of threads is OpenCV's own; it is there before anything fails.
  cv::parallel_for_(cv::Range(0, 64), [](const cv::Range&) {});
  const Bytes expected = [&] {
    long none;
    attempt(call, 0, Failing::kOnce, none);
    return world().dst;
  }();
  failEach(call, Failing::kFromThenOn, expected);
  failEach(call, Failing::kOnce, expected);
  const long live = test::liveBlocks();
  const long allocations = failEach(call, Failing::kOnce, expected);
  EXPECT_LE(test::liveBlocks(), live + (call.mayLose ? allocations : 0));
  std::cout << allocations << " allocations\n";
}

// Seen where this test has a process of its own: later frames find the table.
TEST(SharedTable, IsBuiltByTheNextFrameWhenMemoryWasShort) {
  World& w = world();
  w.handle = Create3DLutColorAdjustEffect(w.cube.c_str(), 0, 0);
  test::startFailing(1, Failing::kOnce);
  bool threw = false;
  try {
    w.grade();
  } catch (const std::bad_alloc&) {
    threw = true;
  }
  EXPECT_EQ(test::stopFailing() != 0, threw);
  w.grade();
  const Bytes first = w.dst;
  w.grade();
  EXPECT_TRUE(w.dst == first);
  EXPECT_NE(w.dst, w.src);
  Destory3DLutColorAdjustEffect(w.handle);
}

INSTANTIATE_TEST_SUITE_P(In, MemoryFailure, testing::ValuesIn(kCalls),
                         [](const auto& info) { return info.param.name; });

}  // namespace
