#include "hdr/yv12_planes.h"

#include <array>
#include <functional>

namespace Lumvane {
namespace {

struct Extent {
  const uint8_t *first, *end;
};

Extent extentOf(const uint8_t* plane, int stride, int width, int height) {
  const uint8_t* const last = rowOf(plane, stride, height - 1);
  return {std::min(plane, last, std::less<>()), std::max(plane, last, std::less<>()) + width};
}

template <class Byte>
std::array<Extent, 3> extentsOf(const Yv12Planes<Byte>& f) {
  const int width = (f.width + 1) / 2, height = (f.height + 1) / 2;
  return {extentOf(f.y, f.strideY, f.width, f.height), extentOf(f.v, f.strideV, width, height),
          extentOf(f.u, f.strideU, width, height)};
}

}  // namespace

bool overlap(const Yv12Planes<const uint8_t>& a, const Yv12Planes<uint8_t>& b) {
  const std::less<> before;
  for (const Extent& one : extentsOf(a)) {
    for (const Extent& other : extentsOf(b)) {
      if (before(one.first, other.end) && before(other.first, one.end)) return true;
    }
  }
  return false;
}

}  // namespace Lumvane
