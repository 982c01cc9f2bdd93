// What happens to the pixels of one row of a frame that is graded. Kernels know colour and nothing of frames or threads:
// they do not allocate, and read and write exactly the bytes that their pixel count says.
#pragma once

#include <cstddef>
#include <cstdint>

#include "apply/lattice.h"

namespace Lumvane {

/// The two blends that frames need, from the shared table: multiply[a][b] is a * b / 255 to the nearest, mix[a][b][t] is
/// (a * t + b * (255 - t)) / 255 truncated. A kernel may compute the same values instead of reading them.
struct BlendTables {
  const uint8_t (*multiply)[256];
  const uint8_t (*mix)[256][265];
};

/// Grades BGRA pixels: bytes 2, 1, 0 are looked up as red, green, blue, the results go back through roundToByte, and
/// each is replaced by multiply[alpha][it]. Byte 3 is copied. dst may be src.
///
/// A float behind the last point of the lattice may be read; what it is does not matter.
using GradeRow = void(const LatticeView& lattice, const BlendTables& blends, const uint8_t* src, uint8_t* dst,
                      size_t pixels);

/// One byte a pixel of dst from BGRA pixels of src: component 0 of what GradeRow looks up, through roundToByte. Alpha
/// is not read.
using GradeRowToPlane = void(const LatticeView& lattice, const uint8_t* src, uint8_t* dst, size_t pixels);

/// Replaces each byte d of dst by mix[s][d][sourceWeight], s being the byte of src at the same place and its weight from
/// 0 to 255.
using FadeRow = void(const BlendTables& blends, int32_t sourceWeight, const uint8_t* src, uint8_t* dst, size_t pixels);

/// GradeRow, then FadeRow against src, which must not overlap dst.
using GradeAndFadeRow = void(const LatticeView& lattice, const BlendTables& blends, int32_t sourceWeight,
                             const uint8_t* src, uint8_t* dst, size_t pixels);

struct GradeKernels {
  GradeRow* grade;
  GradeRowToPlane* gradeToPlane;
  FadeRow* fade;
  GradeAndFadeRow* gradeAndFade;
};

/// One byte at a time: what the others are held against.
extern const GradeKernels plainGradeKernels;

/// The fastest on this processor.
const GradeKernels& gradeKernels();

}  // namespace Lumvane
