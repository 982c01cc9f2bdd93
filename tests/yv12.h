// YV12 frames: Y, then V (Cr) and U (Cb) of half the size, rounded up.
#pragma once

#include "tests/effect_list.h"
#include "tests/inputs.h"

namespace test {

struct Plane : Frame {
  /// A negative padding means packed bottom-up rows.
  Plane(int width, int height, int padding = 0) : Frame(width, height, padding < 0 ? -width : width + padding, 1) {}
};

/// PlaneType needs data(), step(), fill() and packed().
template <class PlaneType>
struct Yv12 {
  PlaneType y, v, u;

  template <class... Layout>
  Yv12(int width, int height, const Layout&... layout)
      : y(width, height, layout...),
        v((width + 1) / 2, (height + 1) / 2, layout...),
        u((width + 1) / 2, (height + 1) / 2, layout...) {}

  Yv12(PlaneType planeY, PlaneType planeV, PlaneType planeU)
      : y(std::move(planeY)), v(std::move(planeV)), u(std::move(planeU)) {}

  /// Fills all planes from consecutive bytes; there must be enough.
  void fill(const Bytes& bytes) {
    auto rest = bytes.begin();
    for (PlaneType* plane : {&y, &v, &u}) {
      const auto size = static_cast<ptrdiff_t>(plane->packed().size());
      plane->fill({rest, rest + size});
      rest += size;
    }
  }
  Bytes packed() {
    Bytes result;
    for (PlaneType* plane : {&y, &v, &u}) {
      const Bytes bytes = plane->packed();
      result.insert(result.end(), bytes.begin(), bytes.end());
    }
    return result;
  }
  Pixels pixels() { return {{y.data(), v.data(), u.data()}, {y.step(), v.step(), u.step()}}; }
#ifndef LUMVANE_TEST_NOT_LINKED
  /// Converts with an HDR object of this size into planes with the same strides. `reserved` must have no effect.
  bool processTo(Yv12& dst, void* object, int reserved = 0) {
    return VideoAdjustColorProcess(object, y.data(), v.data(), u.data(), y.step(), v.step(), u.step(), reserved,
                                   -reserved, dst.y.data(), dst.v.data(), dst.u.data());
  }
#endif
};

/// Planes in ordinary memory. With a positive padding the stride of U is larger than that of V.
struct Yv12Frame : Yv12<Plane> {
  Yv12Frame(int width, int height, int padding = 0)
      : Yv12{Plane(width, height, padding), Plane((width + 1) / 2, (height + 1) / 2, padding),
             Plane((width + 1) / 2, (height + 1) / 2, padding > 0 ? padding + 2 : padding)} {}
};

}  // namespace test
