#pragma once

namespace Lumvane {

/// The rows of one band of a frame: rows / bands each, and all that is left over in the last one.
struct BandRows {
  int first;
  int count;

  BandRows(int rows, int bands, int band)
      : first(band * (rows / bands)), count(band == bands - 1 ? rows - first : rows / bands) {}
};

}  // namespace Lumvane
