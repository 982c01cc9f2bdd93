#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Lumvane {

/// Precomputed results of every two-operand blend of 8-bit values, and of the linear mix of two values by weight.
///
/// A plane holds f(a, b) at [a][b]. `mix` holds (a * t + b * (255 - t)) / 255, truncated, at [a][b][t] for t = 0 to
/// 255; the last nine entries of each of its rows are padding and never written. The fields follow one another without
/// gaps, so that plane p starts p * 65536 bytes from the start.
struct Table {
  using Plane = uint8_t[256][256];

  Plane add;
  Plane multiply;  ///< a * b / 255, rounded to nearest
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

/// Returns a reference to the table that the process shares. The first call builds it (18.7 MB), and other threads wait
/// for that. It stays until the library is unloaded, also during exit(). Hold the reference for one frame at most.
std::shared_ptr<const Table> acquireTable();

}  // namespace Lumvane
