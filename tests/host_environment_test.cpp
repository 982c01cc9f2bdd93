// Nothing in a host's environment changes the output: locale, floating-point mode, threads, stack.

#include <gtest/gtest.h>
#include <pthread.h>

#include <cfenv>
#include <clocale>
#include <functional>
#include <locale>
#include <opencv2/core/utility.hpp>

#ifdef __SSE__
#include <xmmintrin.h>
#endif

#include "hdr/hdr_shared.h"
#include "tests/effects.h"

namespace {

using Work = std::function<void()>;

struct Environment {
  const char* name;
  std::function<void(const Work&)> around;  ///< runs the work in this environment, then restores the previous one
};
void PrintTo(const Environment& environment, std::ostream* out) { *out << environment.name; }

void withCommaLocale(const Work& work) {
  struct CommaPunctuation : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const std::locale before = std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation));
  // If it is not installed, only the C++ locale has a decimal comma.
  std::setlocale(LC_ALL, "de_DE.UTF-8");
  work();
  std::setlocale(LC_ALL, "C");
  std::locale::global(before);
}

// Returns the floating-point mode; on x86 from MXCSR, which <cfenv> does not set on every system.
unsigned currentFloatMode() {
#ifdef __SSE__
  return _mm_getcsr() & ~0x3Fu;  // without the exception flags
#else
  return static_cast<unsigned>(std::fegetround());
#endif
}

// Runs the work in another floating-point mode, which the work must not change.
Environment floatMode(const char* name, void (*enter)()) {
  return {name, [enter](const Work& work) {
            std::fenv_t before;
            std::fegetenv(&before);
            enter();
            const unsigned entered = currentFloatMode();
            work();
            const unsigned after = currentFloatMode();
            std::fesetenv(&before);
#ifdef __SSE__
            _mm_setcsr(0x1F80);
#endif
            EXPECT_EQ(after, entered);
          }};
}

template <int threads>
void withThreads(const Work& work) {
  const int before = cv::getNumThreads();
  cv::setNumThreads(threads);
  work();
  cv::setNumThreads(before);
}

void insideParallelFor(const Work& work) {
  cv::parallel_for_(cv::Range(0, 4), [&](const cv::Range& range) {
    if (range.start <= 2 && 2 < range.end) work();
  });
}

void onSmallStack(const Work& work) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, 256 << 10), 0);
  const auto run = [](void* argument) -> void* { return (*static_cast<const Work*>(argument))(), nullptr; };
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, &attributes, run, const_cast<Work*>(&work)), 0);
  pthread_join(thread, nullptr);
}

const Environment kEnvironments[] = {
    {"DecimalComma", withCommaLocale},
#ifdef __SSE__
    floatMode("FlushToZero", [] { _mm_setcsr(_mm_getcsr() | 0x8000); }),
    floatMode("DenormalsAreZero", [] { _mm_setcsr(_mm_getcsr() | 0x8040); }),
#endif
    floatMode("RoundsUp", [] { std::fesetround(FE_UPWARD); }),
    floatMode("RoundsDown", [] { std::fesetround(FE_DOWNWARD); }),
    floatMode("RoundsTowardZero", [] { std::fesetround(FE_TOWARDZERO); }),
#ifdef __GLIBC__
    // As in the runtimes of some languages: infinities, NaNs and inexact results end the program. Flags raised before
    // would do so too.
    floatMode("TrapsFloatExceptions", [] { std::feclearexcept(FE_ALL_EXCEPT), feenableexcept(FE_ALL_EXCEPT); }),
#endif
    {"NoThreads", withThreads<0>},
    {"OneThread", withThreads<1>},
    {"SevenThreads", withThreads<7>},
    {"InsideParallelFor", insideParallelFor},
    {"OnASmallStack", onSmallStack},
};

class HostEnvironment : public testing::TestWithParam<Environment> {};

// Loads files and renders small frames (one thread) and large ones (several).
TEST_P(HostEnvironment, ChangesNoByte) {
  const test::LutFolder folder;
  test::Bytes found[2], expected[2];
  const auto render = [&](test::Bytes(&frames)[2]) {
    Lumvane::dropHdrData();
    frames[0] = test::renderAll(test::kLinked, folder.path, 61, 40);
    frames[1] = test::renderAll(test::kLinked, folder.path, 151, 101);
  };
  GetParam().around([&] { render(found); });
  render(expected);
  EXPECT_TRUE(found[0] == expected[0]) << "small frames";
  EXPECT_TRUE(found[1] == expected[1]) << "large frames";
}

// OpenCV's pool keeps the mode in which the host first used it. The test detects this only in a process of its own, as
// under ctest.
TEST(ThreadPool, MayStartInAnotherFloatMode) {
  if (cv::getNumberOfCPUs() < 2) GTEST_SKIP() << "one processor: no other thread computes";
  const test::LutFolder folder;
  std::fesetround(FE_UPWARD);
  cv::parallel_for_(cv::Range(0, 64), [](const cv::Range&) {});
  std::fesetround(FE_TONEAREST);
  const test::Render grade = test::grading(folder.path + u"/look.cube", 100);
  const test::Bytes src = test::noise(size_t{4} * 300 * 300, 1);
  test::Bytes whole(src.size()), byRow(src.size());
  grade(whole.data(), 0, src.data(), 0, 300, 300);
  for (size_t row = 0; row < src.size(); row += 1200) grade(&byRow[row], 0, &src[row], 0, 300, 1);  // on this thread
  EXPECT_TRUE(whole == byRow);
}

INSTANTIATE_TEST_SUITE_P(With, HostEnvironment, testing::ValuesIn(kEnvironments),
                         [](const auto& info) { return info.param.name; });

}  // namespace
