#pragma once

namespace Lumvane {

/// The rows of one band of a frame: rows / bands, plus the remainder for the last band.
struct BandRows {
  int first;
  int count;

  BandRows(int rows, int bands, int band)
      : first(band * (rows / bands)), count(band == bands - 1 ? rows - first : rows / bands) {}
};

}  // namespace Lumvane
