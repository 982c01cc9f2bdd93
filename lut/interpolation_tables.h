#pragma once

#include <cstdint>

namespace Lumvane {

/// For each byte its place on a lattice axis of `latticeSize` points, 2 or more, that the 256 values spread over
/// evenly: the index of the point at the lower end of its cell, and the position inside the cell. Single precision.
void fillInterpolationTables(int32_t latticeSize, float (&fraction)[256], int32_t (&cell)[256]);

}  // namespace Lumvane
