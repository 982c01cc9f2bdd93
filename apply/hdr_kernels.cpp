// Row kernels of the HDR LUTs: the plain forms, which define the output bytes, and the vector forms.

#include "apply/hdr_kernels.h"

#ifndef HWY_TARGET_INCLUDE  // once; the code after this block is compiled for each instruction set
#define HWY_TARGET_INCLUDE "apply/hdr_kernels.cpp"

#include <algorithm>
#include <cstring>

namespace Lumvane {
namespace plain {

void cacheRow(const RGB8* cache, const uint8_t* src, uint8_t* dst, size_t pixels) {
  for (size_t i = 0; i < pixels; ++i, src += 4, dst += 4) {
    dst[3] = src[3];
    storeColour(cache[cacheEntry(src[2], src[1], src[0])], dst);
  }
}

void latticeRow(const LatticeView& lattice, const uint8_t* src, uint8_t* dst, size_t pixels) {
  mapThroughLattice(lattice, src, dst, pixels);
}

void fillBlues(const HdrLatticeView& lattice, uint8_t r, uint8_t g, RGB8* entries) {
  for (int b = 0; b < 256; ++b) entries[b] = hdrColour(lattice, r, g, static_cast<uint8_t>(b));
}

void fillCache(const HdrLatticeView& lattice, uint8_t r, RGB8* entries) {
  for (int g = 0; g < 256; ++g) fillBlues(lattice, r, static_cast<uint8_t>(g), entries + 256 * g);
}

}  // namespace plain

const HdrKernels plainHdrKernels = {plain::cacheRow, plain::latticeRow, plain::fillCache};

}  // namespace Lumvane

#endif

#include <hwy/foreach_target.h>  // must precede all vector code

#include "apply/lattice_lookup-inl.h"
#include "base/vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {
namespace {

#if LUMVANE_HAVE_VECTORS

#if HWY_TARGET == HWY_SSSE3 || HWY_TARGET == HWY_SSE4 || !HWY_ARCH_X86
using plain::cacheRow;  // these targets have no gather instruction
#else

// Each lane is one pixel.
void cacheRow(const RGB8* cache, const uint8_t* src, uint8_t* dst, size_t pixels) {
  const VU colourMask = hn::Set(U(), 0x00FFFFFF);
  // Entries have three bytes, but four are read: with the byte after the entry, or for the last one the byte before it.
  const VU lastOffset = hn::Set(U(), kCacheEntries * 3 - 4);
  alignas(16) static constexpr uint8_t kReverse[16] = {2, 1, 0, 0x80, 6, 5, 4, 0x80, 10, 9, 8, 0x80, 14, 13, 12, 0x80};
  size_t i = 0;
  for (; i + kLanes <= pixels; i += kLanes) {
    const VU pixel = loadPixels(src + 4 * i);
    const VU number = hn::And(pixel, colourMask);
    const VU offset = hn::Add(hn::Add(number, number), number);
    const VU readAt = hn::Min(offset, lastOffset);
    const VU read = hn::GatherOffset(U(), reinterpret_cast<const uint32_t*>(cache), hn::BitCast(I(), readAt));
    const VU entry = hn::IfThenElse(hn::Eq(offset, readAt), read, hn::ShiftRight<8>(read));
    storePixels(hn::Or(shuffled(entry, kReverse), hn::AndNot(colourMask, pixel)), dst + 4 * i);
  }
  plain::cacheRow(cache, src + 4 * i, dst + 4 * i, pixels - i);
}

#endif

// truncToByte for values up to 2^20 in magnitude. Adding and subtracting a large number rounds to the nearest integer,
// ties to even. From -0.5 up, that is the result, or one too low for a tie that was rounded down. Below -0.5, where
// truncToByte adds 0.5 and truncates towards zero, it is one too low except for a tie that was rounded up.
HWY_INLINE VI truncatedBytes(VF value) {
  const F f;
  const VF held = hn::Min(value, hn::Set(f, 255.0f));
  const VF large = hn::Set(f, 12582912.0f);  // 1.5 * 2^23: the unit in the last place is 1, and the low 8 bits are 0
  const VF sum = hn::Add(held, large);
  const VF rest = hn::Sub(held, hn::Sub(sum, large));
  const VF oneMoreFrom = hn::IfThenElse(hn::Lt(held, hn::Set(f, -0.5f)), hn::Set(f, -0.49999997f), hn::Set(f, 0.5f));
  const VI bytes = hn::Sub(hn::BitCast(I(), sum), hn::BitCast(I(), hn::VecFromMask(f, hn::Ge(rest, oneMoreFrom))));
  return hn::And(bytes, hn::Set(I(), 0xFF));
}

// The row argument of interpolateVectors.
struct MappedRow {
  const Axes& axes;
  const uint8_t* src;
  uint8_t* dst;

  HWY_INLINE void find(size_t v, Tetrahedra& out) const { findTetrahedra(axes, loadPixels(src + 4 * kLanes * v), out); }
  HWY_INLINE VI toBytes(VF v) const { return truncatedBytes(v); }
  HWY_INLINE void store(size_t v, VU components) const {
    const VU alphas = hn::And(loadPixels(src + 4 * kLanes * v), hn::Set(U(), 0xFF000000));
    storePixels(hn::Or(toBgr(components), alphas), dst + 4 * kLanes * v);
  }
};

void latticeRow(const LatticeView& lattice, const uint8_t* src, uint8_t* dst, size_t pixels) {
  const Axes axes(lattice.latticeSize);
  const size_t vectors = pixels / kLanes, done = kLanes * vectors;
  interpolateVectors(lattice.lattice, vectors, MappedRow{axes, src, dst});
  plain::latticeRow(lattice, src + 4 * done, dst + 4 * done, pixels - done);
}

// The colours of one red value are computed 256 at a time: with red and green fixed, all of them lie between four lattice
// rows along blue, those at the corners of the red-green cell. A vector holds neighbouring blue values, whose points are
// the same or neighbours too, so they are loaded once and permuted. That takes a third of the time of interpolating
// pixel by pixel (10 instead of 27 ms for a cache).
//
// The arithmetic is that of tetrahedralLookup. The weights are the differences of the sorted fractions, the same for
// either order of a tie. The corners do depend on ties. With f the larger fraction of red and green (red only if it is
// strictly larger), g the smaller one, and `between` the row whose index is upper on the axis of f alone:
//   blue before f             000, then 000 with the upper blue, then `between` with the upper blue, 111
//   blue between f and g      000, then `between`, then `between` with the upper blue, 111
//   blue behind g             000, then `between`, then 110, 111
// Colours that this cannot compute use the plain form: see PlanarRow::ordinary and BlueAxis::fits.

// A lattice row with its components in separate arrays.
struct PlanarRow {
  alignas(64) float component[3][kLatticeStride + kLanes];  // padded: a vector may be loaded from any point
  bool ordinary;                                            // true for all values: see truncatedBytes

  void read(const float* row) {
    const VF most = hn::Set(F(), kMaxOrdinary);
    auto inRange = hn::Eq(most, most);
    constexpr size_t kLastVector = kLatticeStride - kLanes;
    for (size_t point = 0; point < kLatticeStride; point += kLanes) {
      const size_t first = std::min(point, kLastVector);
      VF values[3];
      hn::LoadInterleaved3(F(), row + 3 * first, values[0], values[1], values[2]);
      for (int c = 0; c < 3; ++c) {
        hn::StoreU(values[c], F(), component[c] + first);
        inRange = hn::And(inRange, hn::Le(hn::Abs(values[c]), most));  // false for a NaN
      }
    }
    ordinary = hn::AllTrue(F(), inRange);
  }
};

// The position of each blue value on its axis.
struct BlueAxis {
  const float* fractions;
  bool fits = true;  // false when a vector of blue values needs points beyond one vector of points, or before its first
  int32_t first[256];
  alignas(64) int32_t lowers[256], uppers[256];  // relative to the first point of the vector

  explicit BlueAxis(const HdrLatticeView& lattice) : fractions(lattice.fraction) {
    constexpr auto kReach = static_cast<int32_t>(kLanes);
    for (int32_t b = 0; b < 256; ++b) {
      first[b] = lattice.cell[b / kReach * kReach];
      lowers[b] = lattice.cell[b] - first[b];
      uppers[b] = std::min(lattice.cell[b] + 1, lattice.latticeSize - 1) - first[b];
      fits = fits && std::min(lowers[b], uppers[b]) >= 0 && std::max(lowers[b], uppers[b]) < kReach;
    }
  }
  // The points at the lower and upper ends of the cells for the blue values from b on.
  HWY_INLINE VF lower(const float* row, size_t b) const { return permuted(row, b, lowers); }
  HWY_INLINE VF upper(const float* row, size_t b) const { return permuted(row, b, uppers); }
  HWY_INLINE VF permuted(const float* row, size_t b, const int32_t* order) const {
    return hn::TableLookupLanes(hn::LoadU(F(), row + first[b]), hn::SetTableIndices(F(), order + b));
  }
};

// Stores three bytes per lane without gaps. It also writes past them; the next call overwrites those bytes.
HWY_INLINE void storeEntries(VU red, VU green, VU blue, uint8_t* entries) {
  alignas(16) static constexpr uint8_t kThreeOfFour[16] = {0,  1,  2,  4,  5,    6,    8,    9,
                                                           10, 12, 13, 14, 0x80, 0x80, 0x80, 0x80};
  alignas(64) static constexpr uint32_t kLanesInUse[16] = {0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14};
  const VU pixels = hn::Or(red, hn::Or(hn::ShiftLeft<8>(green), hn::ShiftLeft<16>(blue)));
  const VU order = hn::Min(hn::Load(U(), kLanesInUse), hn::Set(U(), kLanes - 1));
  storePixels(hn::TableLookupLanes(shuffled(pixels, kThreeOfFour), hn::IndicesFromVec(U(), order)), entries);
}

// `corners`: lower in both, upper in red, upper in green, upper in both.
void fillBlues(const PlanarRow (&corners)[4], const BlueAxis& axis, float fr, float fg, RGB8* entries) {
  const bool redFirst = fr > fg;
  const VF high = hn::Set(F(), redFirst ? fr : fg), low = hn::Set(F(), redFirst ? fg : fr);
  uint8_t packed[256 * sizeof(RGB8) + 4 * kLanes];
  for (size_t b = 0; b < 256; b += kLanes) {
    const VF fb = hn::LoadU(F(), axis.fractions + b);
    const auto blueFirst = redFirst ? hn::Ge(fb, high) : hn::Gt(fb, high);
    const auto blueLast = redFirst ? hn::Lt(fb, low) : hn::Le(fb, low);
    const VF most = hn::Max(fb, high), middle = hn::Max(hn::Min(fb, high), low), least = hn::Min(fb, low);
    const VF w0 = hn::Sub(hn::Set(F(), 1.0f), most), wa = hn::Sub(most, middle), wb = hn::Sub(middle, least);
    VU bytes[3];
    for (int c = 0; c < 3; ++c) {
      const float* const row000 = corners[0].component[c];
      const float* const between = corners[redFirst ? 1 : 2].component[c];
      const float* const row110 = corners[3].component[c];
      const VF p000 = axis.lower(row000, b);
      const VF pa = hn::IfThenElse(blueFirst, axis.upper(row000, b), axis.lower(between, b));
      const VF pb = hn::IfThenElse(blueLast, axis.lower(row110, b), axis.upper(between, b));
      const VF p111 = axis.upper(row110, b);
      const VF sum =
          hn::Add(hn::Add(hn::Add(hn::Mul(w0, p000), hn::Mul(wa, pa)), hn::Mul(wb, pb)), hn::Mul(least, p111));
      bytes[c] = hn::BitCast(U(), truncatedBytes(sum));
    }
    storeEntries(bytes[0], bytes[1], bytes[2], packed + sizeof(RGB8) * b);
  }
  std::memcpy(entries, packed, 256 * sizeof(RGB8));
}

void fillCache(const HdrLatticeView& lattice, uint8_t r, RGB8* entries) {
  const int32_t top = lattice.latticeSize - 1, x = lattice.cell[r];
  const BlueAxis axis(lattice);
  if (!axis.fits) return plain::fillCache(lattice, r, entries);
  PlanarRow corners[4];
  bool ordinary = false;
  for (int g = 0; g < 256; ++g, entries += 256) {
    const int32_t y = lattice.cell[g];
    if (g == 0 || y != lattice.cell[g - 1]) {
      ordinary = true;
      for (int i = 0; i < 4; ++i) {
        corners[i].read(lattice.point(std::min(x + i % 2, top), std::min(y + i / 2, top), 0));
        ordinary = ordinary && corners[i].ordinary;
      }
    }
    if (ordinary) {
      fillBlues(corners, axis, lattice.fraction[r], lattice.fraction[g], entries);
    } else {
      plain::fillBlues(lattice, r, static_cast<uint8_t>(g), entries);
    }
  }
}

#else
using namespace plain;
#endif

HdrKernels kernels() { return {cacheRow, latticeRow, fillCache}; }

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

LUMVANE_DISPATCH(HdrKernels, hdrKernels)
