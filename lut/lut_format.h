// Common to all LUT text formats: a header, then one row of three numbers for each lattice point. A format consists of
// a function that reads its header, in a separate file, and its extension in the table of CubeLut::load.
#pragma once

#include <cstdint>

#include "lut/line_reader.h"

namespace Lumvane {

/// The properties of the rows, as given by the header.
struct LutHeader {
  int32_t latticeSize = 0;                     ///< points per axis, 2 or more; .cube: up to 256; 0 if no valid size
  bool redFastest = true;                      ///< the red index changes in every row, blue slowest; false: the reverse
  float fullScale = 1.0f;                      ///< numbers are first divided by it; a quotient of 1 is full scale
  float factor[3] = {255.0f, 255.0f, 255.0f};  ///< from the quotients of red, green and blue to the lattice's scale
  bool hasLines = false;  ///< .cube: at least one header line was accepted; one with an invalid size does not count
};

/// Reads a header and leaves `text` before the first row. Errors are stored in the status of `text`; nothing is read if
/// it is already set.
LutHeader readCubeHeader(LineReader& text);
LutHeader read3dlHeader(LineReader& text);

/// Reads the rows for `header` and stores each at pointAt(red, green, blue), the three floats of that lattice point.
/// Columns that do not convert repeat those of the previous row, or are 0.0 in the first. Values out of range are kept.
/// Stops when the status of `text` is set; text after the last row is not read.
template <class PointAt>
void readRows(LineReader& text, LutHeader header, const PointAt& pointAt) {
  const int32_t size = header.latticeSize;
  float row[3] = {};
  for (int32_t slow = 0; slow < size; ++slow) {
    for (int32_t middle = 0; middle < size; ++middle) {
      for (int32_t fast = 0; fast < size; ++fast) {
        if (!text.readRow(row)) return;
        float* const point = header.redFastest ? pointAt(fast, middle, slow) : pointAt(slow, middle, fast);
        for (int c = 0; c < 3; ++c) {  // a division by 1 would only cost time
          point[c] = (header.fullScale == 1.0f ? row[c] : row[c] / header.fullScale) * header.factor[c];
        }
      }
    }
  }
}

}  // namespace Lumvane
