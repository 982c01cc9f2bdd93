// What happens to the pixels of one row. Kernels know colour and nothing of frames or threads: they do not allocate,
// and read and write exactly the bytes that their pixel count says.
#pragma once

#include <cstddef>
#include <cstdint>

#include "apply/lattice_view.h"

namespace Lumvane::plain {

/// Grades BGRA pixels: bytes 2, 1, 0 are looked up as red, green, blue, the results go back through roundToByte, and
/// each is replaced by multiply[alpha][it]. Byte 3 is copied. dst may be src.
void gradeRow(const LatticeView& lattice, const uint8_t (*multiply)[256], const uint8_t* src, uint8_t* dst,
              size_t pixels);

/// One byte a pixel of dst from BGRA pixels of src: component 0 of what gradeRow looks up, through roundToByte. Alpha
/// is not read.
void gradeRowToPlane(const LatticeView& lattice, const uint8_t* src, uint8_t* dst, size_t pixels);

/// Replaces each byte d of dst by mix[s][d][t], s being the byte of src at the same place and t from 0 to 255 its
/// weight.
void fadeRow(const uint8_t (*mix)[256][265], int32_t t, const uint8_t* src, uint8_t* dst, size_t pixels);

}  // namespace Lumvane::plain
