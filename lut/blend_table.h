#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Lumvane {

/// Every two-operand blend of 8-bit values, ready-computed, and the linear mix of two values at a weight.
///
/// A plane holds f(a, b) at [a][b]. `mix` holds (a * t + b * (255 - t)) / 255, truncated, at [a][b][t] for t = 0 to
/// 255; the last nine entries of each of its rows are padding and never written. The fields follow one another without
/// gaps, so that plane p starts p * 65536 bytes from the start.
struct Table {
  using Plane = uint8_t[256][256];

  Plane add;
  Plane multiply;  ///< a * b / 255, to the nearest
  Plane screen;
  Plane overlay;
  Plane softLight;  ///< a is the backdrop, b the blend
  Plane hardLight;
  Plane colorDodge;
  Plane colorBurn;
  Plane darken;
  Plane lighten;
  Plane difference;
  Plane exclusion;
  Plane hardMix;
  Plane vividLight;
  Plane linearBurn;
  Plane linearDodge;
  Plane pinLight;
  Plane linearLight;
  Plane divide;
  uint8_t mix[256][256][265];
  Plane screen255;
};
static_assert(offsetof(Table, mix) == 19 * 65536 && offsetof(Table, screen255) == 284 * 65536 &&
              sizeof(Table) == 285 * 65536);

/// A share in the one table of the process. The first call builds it, some 18.7 MB; calls from other threads wait for
/// that. It stays until the library is unloaded, also while exit() runs. Hold the reference for a frame or a band, not longer.
std::shared_ptr<const Table> acquireTable();

}  // namespace Lumvane
