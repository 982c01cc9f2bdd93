// What the targets of the fuzzers have in common.
#pragma once

#include <hwy/highway.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "fuzz/plain_readers.h"
#include "lut/cube_lut.h"

namespace fuzz {

/// What came of the input that was taken last, in words: set by the targets of readers, called where it is asked for.
inline std::function<std::string()> result;

/// Ends the process with a message where something does not hold that has to: fuzzers keep the input then.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

/// FNV-1a of 64 bits, which goes on from `digest`. All NaNs are one.
template <class T>
uint64_t digestOf(const T* values, size_t count, uint64_t digest = 14695981039346656037u) {
  for (size_t i = 0; i < count; ++i) {
    T value = values[i];
    if constexpr (std::is_same_v<T, float>) value = std::isnan(value) ? NAN : value;
    const auto* bytes = reinterpret_cast<const unsigned char*>(&value);
    for (size_t b = 0; b < sizeof value; ++b) digest = (digest ^ bytes[b]) * 1099511628211u;
  }
  return digest;
}

/// Runs `run` with the kernels of set number `which` of vector instructions among those that this processor has.
template <class Run>
void onTarget(size_t which, const Run& run) {
  const auto choose = [](int64_t target) {
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
  };
  static const std::vector<int64_t> targets = hwy::SupportedAndGeneratedTargets();
  choose(targets[which % targets.size()]);
  run();
  choose(0);
}

/// Every point that has a row holds it, and every other one zeros; sizes that are refused have none. `pointAt` gives the
/// three floats of a point by the number of its row's index that changes slowest, of the middle one, and of the fastest.
template <class PointAt>
void checkPoints(const PlainTable& expected, const PointAt& pointAt) {
  if (!expected.rowsCertain || expected.size > 65) return;
  const auto same = [](float a, float b) { return a == b || (std::isnan(a) && std::isnan(b)); };
  const int size = expected.size;
  for (int i = 0; i < size * size * size; ++i) {
    const float* point = pointAt(i / (size * size), i / size % size, i % size);
    const auto row = static_cast<size_t>(i) < expected.rows.size() ? expected.rows[i] : std::array{0.0f, 0.0f, 0.0f};
    require(std::equal(row.begin(), row.end(), point, same), "a point holds its row");
  }
}

/// All that the target of a reader for grading does, with the plain reader, and `pointAt` for the points as checkPoints
/// has it.
template <class PointAt>
int checkReader(const uint8_t* data, size_t size, int32_t (Lumvane::CubeLut::*read)(std::istream&),
                PlainTable (*readPlain)(const std::string&), const PointAt& pointAt) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const PlainTable expected = readPlain(text);
  // Always the same object: to get 3.3 MB from the system and to give them back takes longer than to read a small file.
  // The readers themselves set the lattice to zeros.
  static const auto lut = std::make_unique<Lumvane::CubeLut>();
  lut->status = Lumvane::statusUnloaded;
  lut->latticeSize = 0;
  std::fill_n(lut->fraction, 256, 0.0f);
  std::fill_n(lut->cell, 256, 0);
  result = [] {
    uint64_t digest = digestOf(lut->cell, 256, digestOf(lut->fraction, 256));
    digest = digestOf(&lut->lattice[0][0][0][0], sizeof lut->lattice / sizeof(float), digest);
    return (std::ostringstream() << lut->status << ' ' << lut->latticeSize << ' ' << std::hex << digest).str();
  };

  std::istringstream stream(text);
  require(((*lut).*read)(stream) == expected.status && lut->status == expected.status, "the status");
  require(lut->latticeSize == expected.size, "the size");
  checkPoints(expected, [&](int slow, int middle, int fast) { return pointAt(*lut, slow, middle, fast); });
  require(expected.status != 0 || lut->cell[255] == expected.size - 1, "the tables are those of the size");
  return 0;
}

}  // namespace fuzz
