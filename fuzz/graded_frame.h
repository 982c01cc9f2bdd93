// Grades a frame through a table and holds it against the plain kernels.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include "apply/row_kernels.h"
#include "fuzz/check.h"
#include "lumvane.h"
#include "lut/blend_table.h"
#include "lut/color_lut3d_adjust_effect.h"

namespace fuzz {

/// A frame that fills its memory from the first byte to the last, so that the address sanitizer sees one beside it.
class Frame {
 public:
  /// The bytes of the memory, padding included, are those of `pattern` over and over.
  Frame(int32_t width, int32_t height, int32_t stride, const std::vector<uint8_t>& pattern)
      : step_(stride == 0 ? 4 * width : stride),
        top_(step_ < 0 ? static_cast<ptrdiff_t>(-step_) * (height - 1) : 0),
        bytes_(static_cast<size_t>(std::abs(step_)) * static_cast<size_t>(height - 1) +
               4 * static_cast<size_t>(width)) {
    for (size_t i = 0; i < bytes_.size(); ++i) bytes_[i] = pattern.empty() ? 0 : pattern[i % pattern.size()];
  }
  uint8_t* row(int32_t y) { return bytes_.data() + top_ + static_cast<ptrdiff_t>(step_) * y; }
  bool operator==(const Frame&) const = default;

 private:
  int32_t step_;
  ptrdiff_t top_;
  std::vector<uint8_t> bytes_;
};

struct FrameCase {
  int32_t width, height;  ///< above 0
  int32_t dstStride, srcStride;
  int32_t strength;
  bool inPlace;  ///< in dst, and with its stride alone
  std::vector<uint8_t> pixels;
};

/// Grades the frame through `lut` as a host would, and by the plain kernels: all bytes have to be the same, those
/// between the rows included.
inline void checkGradedFrame(std::unique_ptr<Lumvane::CubeLut>& lut, const FrameCase& test) {
  Frame src(test.width, test.height, test.srcStride, test.pixels);
  Frame dst(test.width, test.height, test.dstStride, test.inPlace ? test.pixels : std::vector<uint8_t>{0xA5, 0x5A, 7});
  Frame expected = dst;

  const int32_t s = std::min(std::max(test.strength, 0), 100) * 255 / 100;
  if (s > 0) {
    const auto table = Lumvane::acquireTable();
    const Lumvane::BlendTables blends = {table->multiply, table->mix};
    const Lumvane::LatticeView view = {lut->latticeSize, lut->fraction, lut->cell, &lut->lattice[0][0][0][0]};
    const auto pixels = static_cast<size_t>(test.width);
    const auto srcRow = [&](int32_t y) { return test.inPlace ? expected.row(y) : src.row(y); };
    for (int32_t y = 0; y < test.height; ++y) {
      Lumvane::plain::gradeRow(view, blends, srcRow(y), expected.row(y), pixels);
    }
    for (int32_t y = 0; y < test.height; ++y) {
      Lumvane::plain::fadeRow(blends, 255 - s, srcRow(y), expected.row(y), pixels);
    }
  }

  Lumvane::ColorLut3dAdjustEffect effect(u"", test.width, test.height);
  std::swap(effect.cubeLut, lut);
  Lut3DColorAdjustEffectProcess(&effect, dst.row(0), test.width, test.height, test.dstStride,
                                test.inPlace ? dst.row(0) : src.row(0), -1, -1,
                                test.inPlace ? test.dstStride : test.srcStride, test.strength);
  std::swap(effect.cubeLut, lut);
  require(dst == expected, "the frame is what the plain kernels make of it");
}

}  // namespace fuzz
