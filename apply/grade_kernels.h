// Kernels that grade one row of pixels. They are independent of frames and threads, do not allocate, and read and write
// exactly the bytes that their pixel count covers.
#pragma once

#include <cstddef>
#include <cstdint>

#include "apply/lattice.h"

namespace Lumvane {

/// The two blends that grading needs, from the shared table: multiply[a][b] is a * b / 255 rounded to nearest,
/// mix[a][b][t] is (a * t + b * (255 - t)) / 255 truncated. A kernel may compute these values instead of reading them.
struct BlendTables {
  const uint8_t (*multiply)[256];
  const uint8_t (*mix)[256][265];
};

/// Grades BGRA pixels: bytes 2, 1, 0 are looked up as red, green, blue, the results are rounded by roundToByte, and
/// each result v becomes multiply[alpha][v]. Byte 3 is copied. dst may be src.
///
/// One float past the last point of the lattice may be read; its value does not matter.
using GradeRow = void(const LatticeView& lattice, const BlendTables& blends, const uint8_t* src, uint8_t* dst,
                      size_t pixels);

/// Writes one byte to dst per BGRA pixel of src: component 0 of the colour that GradeRow looks up, rounded by
/// roundToByte. Alpha is ignored.
using GradeRowToPlane = void(const LatticeView& lattice, const uint8_t* src, uint8_t* dst, size_t pixels);

/// Replaces each byte d of dst by mix[s][d][sourceWeight], where s is the byte of src at the same position; the weight
/// is 0 to 255.
using FadeRow = void(const BlendTables& blends, int32_t sourceWeight, const uint8_t* src, uint8_t* dst, size_t pixels);

/// Runs GradeRow, then FadeRow. src must not overlap dst.
using GradeAndFadeRow = void(const LatticeView& lattice, const BlendTables& blends, int32_t sourceWeight,
                             const uint8_t* src, uint8_t* dst, size_t pixels);

struct GradeKernels {
  GradeRow* grade;
  GradeRowToPlane* gradeToPlane;
  FadeRow* fade;
  GradeAndFadeRow* gradeAndFade;
};

/// The plain forms, one byte at a time: the reference for all others.
extern const GradeKernels plainGradeKernels;

/// Returns the fastest kernels for this processor.
GradeKernels gradeKernels();

}  // namespace Lumvane
