// What a host may do around a call without changing a byte that comes of it.

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

struct Habit {
  const char* name;
  std::function<void(const Work&)> around;  ///< does the work its way, and then is as before
};
void PrintTo(const Habit& habit, std::ostream* out) { *out << habit.name; }

void withCommaLocale(const Work& work) {
  struct CommaPunctuation : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const std::locale before = std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation));
  // Where it is not installed, the C++ locale alone has the comma.
  std::setlocale(LC_ALL, "de_DE.UTF-8");
  work();
  std::setlocale(LC_ALL, "C");
  std::locale::global(before);
}

// The modes of floating point; on x86 those of the register that counts, which not every system's <cfenv> has in it.
unsigned floatModes() {
#ifdef __SSE__
  return _mm_getcsr() & ~0x3Fu;  // without the flags that operations raise
#else
  return static_cast<unsigned>(std::fegetround());
#endif
}

// Does the work in other modes, which have to be found unchanged behind it.
Habit floatHabit(const char* name, void (*enter)()) {
  return {name, [enter](const Work& work) {
            std::fenv_t before;
            std::fegetenv(&before);
            enter();
            const unsigned entered = floatModes();
            work();
            const unsigned behind = floatModes();
            std::fesetenv(&before);
#ifdef __SSE__
            _mm_setcsr(0x1F80);
#endif
            EXPECT_EQ(behind, entered);
          }};
}

Habit threadsHabit(const char* name, int threads) {
  return {name, [threads](const Work& work) {
            const int before = cv::getNumThreads();
            cv::setNumThreads(threads);
            work();
            cv::setNumThreads(before);
          }};
}

void insideParallelFor(const Work& work) {
  cv::parallel_for_(cv::Range(0, 4), [&](const cv::Range& range) {
    for (int i = range.start; i < range.end; ++i) {
      if (i == 2) work();
    }
  });
}

void onSmallStack(const Work& work) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, 256 << 10), 0);
  pthread_t thread;
  const auto run = [](void* argument) -> void* {
    (*static_cast<const Work*>(argument))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, run, const_cast<Work*>(&work)), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

const Habit kHabits[] = {
    {"DecimalComma", withCommaLocale},
#ifdef __SSE__
    floatHabit("FlushToZero", [] { _mm_setcsr(_mm_getcsr() | 0x8000); }),
    floatHabit("DenormalsAreZero", [] { _mm_setcsr(_mm_getcsr() | 0x8040); }),
#endif
    floatHabit("RoundsUp", [] { std::fesetround(FE_UPWARD); }),
    floatHabit("RoundsDown", [] { std::fesetround(FE_DOWNWARD); }),
    floatHabit("RoundsTowardZero", [] { std::fesetround(FE_TOWARDZERO); }),
#ifdef __GLIBC__
    // As runtimes of other languages do: what gives an infinity or no number, or is rounded, ends the program. Flags that
    // were raised before would, too.
    floatHabit("TrapsFloatExceptions", [] { std::feclearexcept(FE_ALL_EXCEPT), feenableexcept(FE_ALL_EXCEPT); }),
#endif
    threadsHabit("NoThreads", 0),
    threadsHabit("OneThread", 1),
    threadsHabit("SevenThreads", 7),
    {"InsideParallelFor", insideParallelFor},
    {"OnASmallStack", onSmallStack},
};

class HostHabits : public testing::TestWithParam<Habit> {};

// Loads and frames, on one thread and on several.
TEST_P(HostHabits, ChangeNoByte) {
  const test::LutFolder folder;
  const auto render = [&] {
    Lumvane::dropHdrData();
    std::vector<uint8_t> small = test::renderAll(test::kLinked, folder.path, 61, 40);
    const std::vector<uint8_t> large = test::renderAll(test::kLinked, folder.path, 151, 101);
    small.insert(small.end(), large.begin(), large.end());
    return small;
  };
  std::vector<uint8_t> found;
  GetParam().around([&] { found = render(); });
  const std::vector<uint8_t> expected = render();
  ASSERT_EQ(found.size(), expected.size());
  EXPECT_TRUE(found == expected) << "from byte "
                                 << std::mismatch(found.begin(), found.end(), expected.begin()).first - found.begin();
}

// OpenCV's pool keeps the mode in which the host used it first. That is seen where this test has a process of its own.
TEST(HostPool, MayStartThePoolInAnotherFloatMode) {
  const test::LutFolder folder;
  std::fesetround(FE_UPWARD);
  cv::parallel_for_(cv::Range(0, 64), [](const cv::Range&) {});
  std::fesetround(FE_TONEAREST);
  void* const effect = Create3DLutColorAdjustEffect((folder.path + u"/look.cube").c_str(), 0, 0);
  const std::vector<uint8_t> src = test::noise(size_t{4} * 300 * 300, 1);
  std::vector<uint8_t> whole(src.size()), byRow(src.size());
  Lut3DColorAdjustEffectProcess(effect, whole.data(), 300, 300, 0, src.data(), 300, 300, 0, 100);
  for (size_t row = 0; row < src.size(); row += 1200) {  // too small for the pool
    Lut3DColorAdjustEffectProcess(effect, byRow.data() + row, 300, 1, 0, src.data() + row, 300, 1, 0, 100);
  }
  Destory3DLutColorAdjustEffect(effect);
  EXPECT_TRUE(whole == byRow);
}

INSTANTIATE_TEST_SUITE_P(Habit, HostHabits, testing::ValuesIn(kHabits),
                         [](const auto& info) { return info.param.name; });

}  // namespace
