// The input is a frame to grade: the vector instruction set, the shape of the frame, the strength, the size of the
// table, then the values of table and pixels. The export must give the bytes that the plain kernels give.

#include <cstring>
#include <memory>

#include "apply/grade_kernels.h"
#include "fuzz/checks.h"
#include "fuzz/frames.h"
#include "lumvane.h"
#include "lut/blend_table.h"
#include "lut/color_lut3d_adjust_effect.h"

namespace {

using namespace Lumvane;
using fuzz::Bytes;
using fuzz::Plane;

// Packed, padded or overlapping rows, top-down or bottom-up.
int32_t stride(int32_t form, int32_t width, int32_t bytes) {
  const int32_t magnitude = form & 2 ? 4 * width + bytes : 1 + bytes * width / 64;
  return (form & 3) == 0 ? 0 : form & 4 ? -magnitude : magnitude;
}

// Fills the lattice with repeated floats: raw bit patterns, or bytes scaled to -20.5 to 298.25.
void fillLattice(CubeLut& lut, bool bitPatterns, const Bytes& bytes) {
  std::vector<float> values(std::clamp<size_t>(bitPatterns ? bytes.size() / 4 : bytes.size(), 1, 1021));
  for (size_t i = 0; i < values.size() && i < bytes.size(); ++i) values[i] = bytes[i] * 1.25f - 20.5f;
  if (bitPatterns && !bytes.empty())
    std::memcpy(values.data(), bytes.data(), std::min(bytes.size(), values.size() * 4));
  float* const lattice = &lut.lattice[0][0][0][0];
  constexpr size_t kFloats = sizeof lut.lattice / sizeof(float);
  std::copy(values.begin(), values.end(), lattice);
  for (size_t filled = values.size(); filled < kFloats; filled *= 2) {
    std::memcpy(lattice + filled, lattice, std::min(filled, kFloats - filled) * sizeof(float));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::Input input(data, size);
  const auto take = [&] { return input.take(); };
  const auto target = static_cast<size_t>(take());
  const int32_t flags = take(), moreFlags = take(), width = 1 + take(), height = 1 + take() % 80;
  const int32_t dstStride = stride(flags, width, take());
  const int32_t srcStride = stride(flags >> 3, width, take());
  const int32_t strength = take() - 20;
  const bool inPlace = flags >> 6 & 1;  // the source is dst, with its stride
  static ColorLut3dAdjustEffect effect(u"", 0, 0);
  if (effect.cubeLut == nullptr) effect.cubeLut = std::make_unique<CubeLut>();
  CubeLut& lut = *effect.cubeLut;
  lut.latticeSize = 2 + take() % 64;
  lut.status = statusOk;
  lut.fillInterpolationTables();
  const Bytes pixels = input.rest();
  fillLattice(lut, moreFlags & 1, pixels);

  // Larger frames are graded in parallel bands: the result is undefined if rows of two bands overlap.
  if (width * height > 10000 && dstStride != 0 && std::abs(dstStride) < 4 * width) return 0;

  Plane src(4 * width, height, srcStride, pixels);
  Plane dst(4 * width, height, dstStride, inPlace ? pixels : Bytes{0xA5, 0x5A, 7});
  Plane expected = dst;
  const int32_t s = std::clamp(strength, 0, 100) * 255 / 100;
  if (s > 0) {
    const auto table = acquireTable();
    const BlendTables blends = {table->multiply, table->mix};
    Plane& from = inPlace ? expected : src;
    const auto count = static_cast<size_t>(width);
    for (int32_t y = 0; y < height; ++y)
      plainGradeKernels.grade(lut.view(), blends, from.row(y), expected.row(y), count);
    for (int32_t y = 0; y < height; ++y) plainGradeKernels.fade(blends, 255 - s, from.row(y), expected.row(y), count);
  }
  fuzz::onTarget(target, [&] {
    Lut3DColorAdjustEffectProcess(&effect, dst.row(0), width, height, dstStride, (inPlace ? dst : src).row(0), -1, -1,
                                  inPlace ? dstStride : srcStride, strength);
  });
  fuzz::require(dst.bytes == expected.bytes, "all bytes, padding included, are those of the plain kernels");
  return 0;
}
