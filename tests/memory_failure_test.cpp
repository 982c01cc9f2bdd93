// Makes each allocation of each export fail in turn: the exception reaches the caller, no incomplete handle or frame is
// returned, nothing leaks, and the next call works.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <new>
#include <opencv2/core.hpp>

#include "hdr/hdr_shared.h"
#include "lumvane.h"
#include "tests/effects.h"
#include "tests/failing_allocator.h"

#ifdef LUMVANE_SANITIZED
// See Call::mayLeak.
extern "C" const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() { return "leak:cv::fastMalloc\n"; }
#endif

namespace {

using test::Bytes;
using test::Failing;

// The data for all calls, allocated before anything fails.
struct Frames {
  static constexpr int kWidth = 130, kHeight = 100;  // large enough for several threads
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

// The calls of an effect.
struct Effect {
  void* (*create)(Frames&);
  bool (*render)(Frames&, void* handle);  ///< false for a rejected frame
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
  bool mayLeak = false;  ///< OpenCV leaks the pixels of a matrix if it cannot allocate the header
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

// Creates an effect and renders a frame. Allocation `which` of the call under test fails, or none if it is 0.
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

// Makes each allocation of the call fail in turn. Returns their number.
long failEach(const Call& call, Failing failing, const Bytes& expected) {
  long failures = 0;
  for (long which = 1;; ++which) {
    if (call.fails == Call::kFirstCreate) Lumvane::dropHdrData();
    const Outcome outcome = attempt(call, which, failing, failures);
    EXPECT_NE(outcome, Outcome::kRefused) << "allocation " << which;
    // A call that recovers from the failure must give the right bytes.
    EXPECT_TRUE(outcome != Outcome::kDone || frames().written() == expected) << "allocation " << which;
    if (failures == 0) return which - 1;
    long none;
    EXPECT_EQ(attempt(call, 0, failing, none), Outcome::kDone) << "after allocation " << which;
    EXPECT_TRUE(frames().written() == expected) << "after allocation " << which;
  }
}

class MemoryFailure : public testing::TestWithParam<Call> {};

TEST_P(MemoryFailure, ReachesTheCaller) {
  const Call& call = GetParam();
  cv::setNumThreads(2);
  // Starts OpenCV's thread pool before anything fails.
  cv::parallel_for_(cv::Range(0, 64), [](const cv::Range&) {});
  long none;
  attempt(call, 0, Failing::kOnce, none);
  const Bytes expected = frames().written();
  failEach(call, Failing::kFromThenOn, expected);
  failEach(call, Failing::kOnce, expected);
  const long live = test::liveBlocks();
  const long allocations = failEach(call, Failing::kOnce, expected);
  EXPECT_LE(test::liveBlocks(), live + (call.mayLeak ? allocations : 0));
  std::cout << allocations << " allocations\n";
}

#ifdef LUMVANE_OWN_MALLOC  // sanitizers need file descriptors themselves
TEST(HdrFirstCreate, IsTriedAgainWithoutFilesOrPages) {
  frames();
  for (const auto resource : {RLIMIT_NOFILE, RLIMIT_AS}) {
    Lumvane::dropHdrData();
    rlimit limit;
    getrlimit(resource, &limit);
    const rlimit none = {0, limit.rlim_max};
    setrlimit(resource, &none);
    EXPECT_THROW(kHdr.create(frames()), std::bad_alloc);
    setrlimit(resource, &limit);
    kHdr.destroy(kHdr.create(frames()));
    EXPECT_GT(Lumvane::hdrTransferData(true).latticeSize, 0);
  }
}

// Renders in a new process, where allocation `which` of the first call fails; 0: no thread can be created; negative:
// nothing fails. Returns a checksum from 1 to 255, 0 if there is no such allocation, or the negative number of the signal
// that ended the process.
int renderInChild(const Call& call, long which, Failing failing = Failing::kOnce) {
  const pid_t child = fork();
  if (child == 0) try {
      alarm(10);
      if (which == 0) test::refuseThreads();
      long failures = 0;
      if (which > 0) attempt(call, which, failing, failures);
      if (which > 0 && failures == 0) _exit(0);
      if (attempt(call, 0, Failing::kOnce, failures) != Outcome::kDone) abort();
      uint32_t sum = 0;
      for (const uint8_t byte : frames().written()) sum = sum * 31 + byte;
      _exit(static_cast<int>(sum % 255 + 1));
    } catch (...) {
      abort();
    }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

// Needs a process without a running pool, because fork() does not copy its threads.
TEST(ThreadPool, MayFailToStart) {
  frames();
  const std::filesystem::directory_iterator tasks("/proc/self/task");
  if (std::distance(begin(tasks), end(tasks)) > 1) GTEST_SKIP() << "the pool is already running";
  const Call firstUses[] = {{"LutFrame", kCube, Call::kFrame},
                            {"ClarityFrame", kClarity, Call::kFrame},
                            {"HdrFirstCreate", kHdr, Call::kFirstCreate}};
  for (const Call& call : firstUses) {
    const int expected = renderInChild(call, -1);
    EXPECT_EQ(renderInChild(call, 0), expected) << call.name << " without threads";
    for (const Failing failing : {Failing::kOnce, Failing::kFromThenOn}) {
      int others = 0;
      long which = 1;
      for (int found; call.fails == Call::kFrame && (found = renderInChild(call, which, failing)) != 0; ++which) {
        others += found != expected;
      }
      // TBB calls dlopen, and glibc's crashes if memory is gone from the record of its error on.
      EXPECT_LE(others, failing == Failing::kFromThenOn ? 1 : 0) << call.name;
    }
  }
}
#endif

INSTANTIATE_TEST_SUITE_P(In, MemoryFailure, testing::ValuesIn(kCalls),
                         [](const auto& info) { return info.param.name; });

}  // namespace
