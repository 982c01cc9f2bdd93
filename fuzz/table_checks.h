// What holds for every table that a reader has left behind.
#pragma once

#include <cmath>
#include <cstdint>

#include "fuzz/check.h"
#include "fuzz/plain_readers.h"

namespace fuzz {

/// The two tables that lead from bytes into a lattice of `size` points per axis.
inline void checkInterpolationTables(int32_t size, const float (&fraction)[256], const int32_t (&cell)[256]) {
  require(size >= 2 && size <= 65, "2 to 65 points per axis");
  require(cell[0] == 0 && cell[255] == size - 1, "bytes reach from the first point to the last");
  for (int v = 0; v < 256; ++v) {
    require(cell[v] >= 0 && cell[v] < size, "cells are points");
    require(v == 0 || cell[v] >= cell[v - 1], "cells ascend");
    require(fraction[v] >= 0.0f && fraction[v] < 1.0f, "fractions are 0 up to below 1");
  }
}

/// Every point that has a row holds it, and every other one zeros. `pointAt` gives the three floats of a point by the
/// number of its row's index that changes slowest, of the middle one, and of the fastest.
template <class PointAt>
void checkPoints(const PlainTable& expected, const PointAt& pointAt) {
  if (!expected.rowsCertain) return;
  size_t i = 0;
  const auto same = [](float a, float b) { return a == b || (std::isnan(a) && std::isnan(b)); };
  for (int slow = 0; slow < expected.size; ++slow) {
    for (int middle = 0; middle < expected.size; ++middle) {
      for (int fast = 0; fast < expected.size; ++fast, ++i) {
        const float* point = pointAt(slow, middle, fast);
        for (size_t c = 0; c < 3; ++c) {
          require(same(point[c], i < expected.rows.size() ? expected.rows[i][c] : 0.0f), "a point holds its row");
        }
      }
    }
  }
}

}  // namespace fuzz
