// Shared by the fuzz targets.
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

/// Describes the result of the last input; set by the reader targets, called on demand.
inline std::function<std::string()> result;

/// Aborts with a message if a requirement does not hold, so that the fuzzer keeps the input.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "requirement failed: %s\n", what);
  std::abort();
}

/// 64-bit FNV-1a, continued from `digest`. All NaNs give the same digest.
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

/// Calls `run` with the kernels of one of this processor's vector instruction sets, selected by `which`.
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

/// Checks that each point has the values of its row, and zeros if it has none; rejected sizes are not checked. `pointAt`
/// returns the three floats of a point, given its slowest, middle and fastest index in the order of the rows.
template <class PointAt>
void checkPoints(const PlainTable& expected, const PointAt& pointAt) {
  if (!expected.rowsExact || expected.size > 65) return;
  const auto same = [](float a, float b) { return a == b || (std::isnan(a) && std::isnan(b)); };
  const int size = expected.size;
  for (int i = 0; i < size * size * size; ++i) {
    const float* point = pointAt(i / (size * size), i / size % size, i % size);
    const auto row = static_cast<size_t>(i) < expected.rows.size() ? expected.rows[i] : std::array{0.0f, 0.0f, 0.0f};
    require(std::equal(row.begin(), row.end(), point, same), "a point has the values of its row");
  }
}

/// The whole target of a grading reader: compares it with the plain reader. `pointAt` as for checkPoints.
template <class PointAt>
int checkReader(const uint8_t* data, size_t size, int32_t (Lumvane::CubeLut::*read)(std::istream&),
                PlainTable (*readPlain)(const std::string&), const PointAt& pointAt) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const PlainTable expected = readPlain(text);
  // One object for all inputs: allocating and freeing 3.3 MB takes longer than reading a small file. The readers
  // themselves clear the lattice of an object that is not new.
  static const auto lut = std::make_unique<Lumvane::CubeLut>();
  lut->status = Lumvane::statusOk;
  lut->latticeSize = 0;
  std::fill_n(lut->fraction, 256, 0.0f);
  std::fill_n(lut->cell, 256, 0);
  result = [] {
    uint64_t digest = digestOf(lut->cell, 256, digestOf(lut->fraction, 256));
    digest = digestOf(&lut->lattice[0][0][0][0], sizeof lut->lattice / sizeof(float), digest);
    return (std::ostringstream() << lut->status << ' ' << lut->latticeSize << ' ' << std::hex << digest).str();
  };

  std::istringstream stream(text);
  require(((*lut).*read)(stream) == expected.status && lut->status == expected.status, "the status is as expected");
  require(lut->latticeSize == expected.size, "the size is as expected");
  checkPoints(expected, [&](int slow, int middle, int fast) { return pointAt(*lut, slow, middle, fast); });
  require(expected.status != 0 || lut->cell[255] == expected.size - 1, "the tables match the size");
  return 0;
}

}  // namespace fuzz
