#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "base/overlap.h"
#include "hdr/yv12_kernels.h"

namespace Lumvane {

/// The planes of a YV12 frame, not owned: Y, width x height, then V and U, each side half of that, rounded up. Strides
/// are in bytes and may be negative.
template <class Byte>
struct Yv12Planes {
  Byte* y;
  int strideY;
  Byte* v;
  int strideV;
  Byte* u;
  int strideU;
  int width, height;
};

template <class Byte>
Byte* rowOf(Byte* plane, int stride, int y) {
  return plane + static_cast<ptrdiff_t>(stride) * y;
}

/// Returns the input for row y of the frame.
inline Yv12Row sourceRow(const Yv12Planes<const uint8_t>& f, int y) {
  const int near = y / 2;
  const int far = std::clamp(y % 2 == 0 ? near - 1 : near + 1, 0, (f.height - 1) / 2);
  return {rowOf(f.y, f.strideY, y), rowOf(f.v, f.strideV, near), rowOf(f.v, f.strideV, far),
          rowOf(f.u, f.strideU, near), rowOf(f.u, f.strideU, far)};
}

/// Returns the output for rows y, which is even, and y + 1.
inline Yv12RowPair destinationRows(const Yv12Planes<uint8_t>& f, int y) {
  return {rowOf(f.y, f.strideY, y), rowOf(f.y, f.strideY, std::min(y + 1, f.height - 1)), rowOf(f.v, f.strideV, y / 2),
          rowOf(f.u, f.strideU, y / 2)};
}

template <class Byte>
std::array<Extent, 3> extentsOf(const Yv12Planes<Byte>& f) {
  const int height = (f.height + 1) / 2;
  const auto width = static_cast<size_t>(f.width), chromaWidth = (width + 1) / 2;
  return {Extent(f.y, f.strideY, width, f.height), Extent(f.v, f.strideV, chromaWidth, height),
          Extent(f.u, f.strideU, chromaWidth, height)};
}

/// True if the two frames may share a byte.
inline bool overlap(const Yv12Planes<const uint8_t>& a, const Yv12Planes<uint8_t>& b) {
  for (const Extent& one : extentsOf(a)) {
    for (const Extent& other : extentsOf(b)) {
      if (one.overlaps(other)) return true;
    }
  }
  return false;
}

}  // namespace Lumvane
