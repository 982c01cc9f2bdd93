// The .CUBE text format: a header of keyword lines, then one row of three numbers for each lattice point.
//
// Our reading of the doubtful points:
// - Keywords are case-sensitive, may come in any order, and count at their first occurrence only: LUT_3D_SIZE
//   (required), DOMAIN_MIN, DOMAIN_MAX. Any other line is passed over, titles and one-dimensional sizes among them, up
//   to the first line whose first token begins a number: that one is the first row.
// - The domain scales the output. A value v of channel c becomes v * (max[c] - min[c]) * 255; the minimum is no offset,
//   and the inputs always spread 0 to 255 evenly over the lattice.
// - Rows run with red fastest and blue slowest. A short or unreadable row repeats the numbers of the row before it, the
//   first one takes 0.0. Values outside 0 to 1 are kept. Rows behind the last one needed stay unread.
#pragma once

#include <cstdint>

#include "lut/lut_text.h"

namespace Lumvane {

struct CubeHeader {
  int32_t latticeSize = 0;  ///< points per axis, 2 to 256; 0 when no valid size was met
  bool hasLines = false;    ///< a line was taken for a header line, and no size on it refused
  float domainMin[3] = {0.0f, 0.0f, 0.0f};
  float domainMax[3] = {1.0f, 1.0f, 1.0f};
};

/// Reads the header and leaves `text` ahead of the first row. What is wrong with it goes to `status`, in this order of
/// precedence: a line that fails, no size keyword, an inverted domain. Nothing is read when `status` is set already.
CubeHeader readCubeHeader(LineBuffer& text, char separator, LutStatus& status);

/// Reads the rows that belong to `header` and calls storePoint(red, green, blue, values) for each, with the indices of
/// the lattice point and its three values on the scale of 0.0 to 255.0. Stops as soon as `status` is set.
template <class StorePoint>
void readCubeRows(LineBuffer& text, char separator, const CubeHeader& header, LutStatus& status,
                  const StorePoint& storePoint) {
  float scale[3];
  for (int c = 0; c < 3; ++c) scale[c] = (header.domainMax[c] - header.domainMin[c]) * 255.0f;
  readRows(text, separator, header.latticeSize, status,
           [&](int32_t blue, int32_t green, int32_t red, const float(&row)[3]) {
             const float values[3] = {row[0] * scale[0], row[1] * scale[1], row[2] * scale[2]};
             storePoint(red, green, blue, values);
           });
}

}  // namespace Lumvane
