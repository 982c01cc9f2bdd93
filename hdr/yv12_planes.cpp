#include "hdr/yv12_planes.h"

#include <array>

#include "base/overlap.h"

namespace Lumvane {
namespace {

template <class Byte>
std::array<Extent, 3> extentsOf(const Yv12Planes<Byte>& f) {
  const int height = (f.height + 1) / 2;
  const auto width = static_cast<size_t>(f.width), chromaWidth = (width + 1) / 2;
  return {Extent(f.y, f.strideY, width, f.height), Extent(f.v, f.strideV, chromaWidth, height),
          Extent(f.u, f.strideU, chromaWidth, height)};
}

}  // namespace

bool overlap(const Yv12Planes<const uint8_t>& a, const Yv12Planes<uint8_t>& b) {
  for (const Extent& one : extentsOf(a)) {
    for (const Extent& other : extentsOf(b)) {
      if (one.overlaps(other)) return true;
    }
  }
  return false;
}

}  // namespace Lumvane
