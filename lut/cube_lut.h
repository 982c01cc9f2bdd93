#pragma once

#include <cstdint>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

#include "apply/lattice.h"
#include "base/zeroed_memory.h"
#include "lut/lut_status.h"

namespace cv {
class Mat;
}

namespace Lumvane {

class LineReader;
struct LutHeader;

/// A 3D colour table, ready to be applied to frames. About 3.3 MB: allocate it on the heap.
class CubeLut {
 public:
  virtual ~CubeLut() = default;
  CubeLut() {}  // not defaulted: make_unique would then clear the lattice, which operator new has done
  CubeLut(const CubeLut&) = delete;
  CubeLut& operator=(const CubeLut&) = delete;

  LutStatus status = statusUnloaded;  ///< result of the last load or apply
  int32_t latticeSize = 0;            ///< N, points per axis; 2 to 65 after a successful load
  float fraction[256] = {};           ///< for a byte value: its position inside its lattice cell, from 0.0 to below 1.0
  int32_t cell[256] = {};             ///< for a byte value: the lattice index at the lower end of its cell
  /// [red][green][blue] of the point, then red, green, blue of its colour on a scale of 0.0 to 255.0, unclamped. The
  /// strides are 65 points for any N, so that addresses are computed with constants. Zero at first, by operator new, so
  /// that a small table takes up memory for its own points only, in a new block.
  float lattice[kLatticeStride][kLatticeStride][kLatticeStride][3];
  /// Output has one byte per pixel: component 0 of the looked-up colour. For internal use. Kernels load four floats for
  /// the three of a point; for the last point the fourth is this flag and the padding after it.
  bool alphaMode = false;

  static void* operator new(size_t bytes) { return allocateZeroed(bytes); }
  static void operator delete(void* memory) { freeZeroed(memory); }

  /// Reads the file at `path` with the reader for its extension, ".CUBE" or ".3DL" in any letter case. False if it
  /// cannot be opened or is refused; `status` is the reason if a reader ran.
  bool load(const std::u16string& path);

  /// Reads a text in this format from `stream` and returns the final `status`, 0 for success. A failure can leave the
  /// lattice partly filled.
  int32_t readCube(std::istream& stream);
  int32_t read3dl(std::istream& stream);

  /// Splits `line` at every single blank and appends the fields to `fields`, including empty ones: one more than there
  /// are blanks.
  static void splitFields(std::string_view line, std::vector<std::string_view>& fields);

  /// Fills `fraction` and `cell` for the current `latticeSize`, in single precision; does nothing if `status` is not 0.
  void fillInterpolationTables();

  LatticeView view() const { return {latticeSize, fraction, cell, &lattice[0][0][0][0]}; }

  /// Applies the table to a frame: see Lut3DColorAdjustEffectProcess for pixels and strides. The result is blended in
  /// the same pass with the source, whose weight is 0 to 255. An empty frame is left unchanged. In alphaMode dst has one
  /// byte per pixel, a dstStride of 0 means rows of width bytes, and nothing is blended.
  /// Returns 0, or 23 (statusSizeInvalid) with the frames unchanged if there is no usable table.
  int32_t apply(uint8_t* dst, int32_t dstStride, const uint8_t* src, int32_t width, int32_t height, int32_t srcStride,
                int32_t sourceWeight = 0);

 private:
  int32_t readTable(std::istream& stream, LutHeader (*readHeader)(LineReader& text));
  int32_t applyToMats(cv::Mat& dst, const cv::Mat& src, int32_t sourceWeight) const;
};

}  // namespace Lumvane
