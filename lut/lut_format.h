// What the LUT text formats have in common: a header, then one row of three numbers for each lattice point. A format is
// a function that reads its header, in a file of its own, and its extension in the table of CubeLut::load.
#pragma once

#include <cstdint>

#include "lut/line_reader.h"

namespace Lumvane {

/// What a header tells about the rows behind it.
struct LutHeader {
  int32_t latticeSize = 0;  ///< points per axis, 2 or more, and of .cube up to 256; 0 when no valid size was met
  bool redFastest = true;   ///< of the indices the red one changes in every row, blue slowest; false: the other way
  float fullScale = 1.0f;   ///< by which numbers are divided first; a quotient of 1 stands for full
  float factor[3] = {255.0f, 255.0f, 255.0f};  ///< takes the quotients of red, green and blue to the lattice's scale
  bool hasLines = false;                       ///< .cube: a line was taken for a header line, and no size on it refused
};

/// Read a header and leave `text` ahead of the first row. What is wrong goes to the status of `text`, and nothing is read
/// when that is set already.
LutHeader readCubeHeader(LineReader& text);
LutHeader read3dlHeader(LineReader& text);

/// Reads the rows that belong to `header` and stores each at pointAt(red, green, blue), the three floats of that lattice
/// point. Columns that do not convert repeat those of the row before, in the first row 0.0. Values beyond the ends of
/// the scale are kept. Stops as soon as the status of `text` is set, and leaves unread what stands behind the last row.
template <class PointAt>
void readRows(LineReader& text, LutHeader header, const PointAt& pointAt) {
  const int32_t size = header.latticeSize;
  float row[3] = {};
  for (int32_t slow = 0; slow < size; ++slow) {
    for (int32_t middle = 0; middle < size; ++middle) {
      for (int32_t fast = 0; fast < size; ++fast) {
        if (!text.readRow(row)) return;
        float* const point = header.redFastest ? pointAt(fast, middle, slow) : pointAt(slow, middle, fast);
        for (int c = 0; c < 3; ++c) {  // a division by 1 would show in the time alone
          point[c] = (header.fullScale == 1.0f ? row[c] : row[c] / header.fullScale) * header.factor[c];
        }
      }
    }
  }
}

}  // namespace Lumvane
