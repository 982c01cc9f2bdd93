#pragma once

namespace Lumvane {

/// The rows of one band of a frame: rows / bands each; the last band also gets the remainder.
struct BandRows {
  int first;
  int count;

  BandRows(int rows, int bands, int band)
      : first(band * (rows / bands)), count(band == bands - 1 ? rows - first : rows / bands) {}
};

}  // namespace Lumvane
