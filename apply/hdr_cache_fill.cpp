// The vector form of hdrCacheFill. Along the blue values of one red and one green only blue moves through the lattice:
// every corner is read from one of four lattice rows, in which neighbouring blues share points or have neighbouring
// ones. So a vector of blues reads one vector of points and deals it out by a permutation.

#include <algorithm>
#include <cstring>
#include <utility>

#include "apply/hdr_kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "apply/hdr_cache_fill.cpp"
#include <hwy/foreach_target.h>  // must come before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
using plain::hdrCacheFill;
#else

namespace hn = hwy::HWY_NAMESPACE;

using DF = hn::ScalableTag<float>;  // a lane is a blue value
using VF = hn::Vec<DF>;
using DU = hn::RebindToUnsigned<DF>;
using VU = hn::Vec<DU>;
using DU8 = hn::Repartition<uint8_t, DF>;

constexpr size_t kMaxLanes = hn::MaxLanes(DF());

// A lattice row, each component by itself.
struct PlanarRow {
  HWY_ALIGN float component[3][kLatticeStride + kMaxLanes];  // a vector may be read from any point on
  bool tame;                                                 // all values are ones that truncatedBytes takes

  void read(const float* row) {
    const DF d;
    constexpr float kMostMagnitude = 1 << 20;
    const size_t lanes = hn::Lanes(d);
    auto allTame = hn::FirstN(d, lanes);
    const auto store = [&](size_t point, int c, VF values) HWY_ATTR {
      hn::StoreU(values, d, component[c] + point);
      allTame = hn::And(allTame, hn::Le(hn::Abs(values), hn::Set(d, kMostMagnitude)));  // false for a NaN
    };
    for (size_t point = 0;; point = std::min(point + lanes, kLatticeStride - lanes)) {
      VF red, green, blue;
      hn::LoadInterleaved3(d, row + 3 * point, red, green, blue);
      store(point, 0, red);
      store(point, 1, green);
      store(point, 2, blue);
      if (point + lanes == kLatticeStride) break;
    }
    tame = hn::AllTrue(d, allTame);
  }
};

// Where each blue value lies on its axis.
class BlueAxis {
 public:
  explicit BlueAxis(const HdrLatticeView& lattice) : fraction_(lattice.fraction) {
    const auto lanes = static_cast<int32_t>(hn::Lanes(DF()));
    for (int32_t b = 0; b < 256; ++b) {
      first_[b] = lattice.cell[b / lanes * lanes];
      lower_[b] = lattice.cell[b] - first_[b];
      upper_[b] = std::min(lattice.cell[b] + 1, lattice.latticeSize - 1) - first_[b];
      fits_ = fits_ && std::min(lower_[b], upper_[b]) >= 0 && std::max(lower_[b], upper_[b]) < lanes;
    }
  }
  // False when a vector of blues reaches further than a vector of points, or back from its first one.
  bool fits() const { return fits_; }
  HWY_INLINE VF fraction(size_t b) const { return hn::LoadU(DF(), fraction_ + b); }
  // The points at the lower and at the upper ends of the cells of the blues from b on.
  HWY_INLINE VF lower(const float* row, size_t b) const { return dealt(row, b, lower_); }
  HWY_INLINE VF upper(const float* row, size_t b) const { return dealt(row, b, upper_); }

 private:
  HWY_INLINE VF dealt(const float* row, size_t b, const int32_t* order) const {
    const DF d;
    return hn::TableLookupLanes(hn::LoadU(d, row + first_[b]), hn::SetTableIndices(d, order + b));
  }
  const float* fraction_;
  bool fits_ = true;
  int32_t first_[256];
  HWY_ALIGN int32_t lower_[256], upper_[256];
};

// truncToByte for values of up to 2^20 either way; the byte is the lowest of each lane. Adding and taking away a large
// number rounds to the nearest integer, ties to even. From 0 up that is what is wanted, but for the ties that went down;
// at -0.5 and below, where halves are added and what is left is cut off toward zero, it is one too low but for those.
HWY_INLINE VU truncatedBytes(VF value) {
  const DF d;
  const DU du;
  const VF held = hn::Min(value, hn::Set(d, 255.0f));
  const VF large = hn::Set(d, 12582912.0f);  // 1.5 * 2^23: the unit of the last place is 1, and the low 8 bits are 0
  const VF sum = hn::Add(held, large);
  const VF rest = hn::Sub(held, hn::Sub(sum, large));
  const VF oneMoreFrom = hn::IfThenElse(hn::Lt(held, hn::Set(d, -0.5f)), hn::Set(d, -0.49999997f), hn::Set(d, 0.5f));
  return hn::Sub(hn::BitCast(du, sum), hn::BitCast(du, hn::VecFromMask(d, hn::Ge(rest, oneMoreFrom))));
}

// Packs lanes of three bytes without gaps; what is stored behind them is to be overwritten.
class EntryPacker {
 public:
  EntryPacker() {
    const size_t lanes = hn::Lanes(DU());
    for (size_t i = 0; i < lanes; ++i) order_[i] = static_cast<uint32_t>(std::min(i / 3 * 4 + i % 3, lanes - 1));
  }
  HWY_INLINE void store(VU red, VU green, VU blue, uint8_t* entries) const {
    const DU d;
    const DU8 du8;
    const VU lowByte = hn::Set(d, 0xFF);
    const VU lanes = hn::Or(hn::And(red, lowByte), hn::Or(hn::ShiftLeft<8>(hn::And(green, lowByte)),
                                                          hn::ShiftLeft<16>(hn::And(blue, lowByte))));
    HWY_ALIGN static constexpr uint32_t kInBlock[4] = {0x04020100, 0x09080605, 0x0E0D0C0A, 0x80808080};
    const auto blocks = hn::TableLookupBytes(lanes, hn::LoadDup128(d, kInBlock));
    hn::StoreU(hn::BitCast(du8, hn::TableLookupLanes(blocks, hn::SetTableIndices(d, order_))), du8, entries);
  }

 private:
  HWY_ALIGN uint32_t order_[kMaxLanes];
};

// The four lattice rows between which the blues of one red and one green lie, named by the ends of the red and of the
// green axis.
struct FourRows {
  const PlanarRow *lower, *redUpper, *greenUpper, *bothUpper;

  bool tame() const { return lower->tame && redUpper->tame && greenUpper->tame && bothUpper->tame; }
};

// tetrahedralLookup, with the fractions in order first: the weights are the differences of neighbours in that order,
// and a tie gives the same ones whichever way it falls. For the corners it counts: `blueFirst` and `blueLast` are true
// where the tests of tetrahedralLookup say so.
void fillBlues(const FourRows& rows, const BlueAxis& axis, float fr, float fg, const EntryPacker& packer,
               RGB8* entries) {
  const DF d;
  const size_t lanes = hn::Lanes(d);
  const bool redFirst = fr > fg;
  const PlanarRow& between = redFirst ? *rows.redUpper : *rows.greenUpper;
  const VF high = hn::Set(d, redFirst ? fr : fg), low = hn::Set(d, redFirst ? fg : fr);
  uint8_t packed[256 * sizeof(RGB8) + 4 * kMaxLanes];
  for (size_t b = 0; b < 256; b += lanes) {
    const VF fb = axis.fraction(b);
    const auto blueFirst = redFirst ? hn::Ge(fb, high) : hn::Gt(fb, high);
    const auto blueLast = redFirst ? hn::Lt(fb, low) : hn::Le(fb, low);
    const VF most = hn::Max(fb, high), middle = hn::Max(hn::Min(fb, high), low), least = hn::Min(fb, low);
    const VF w0 = hn::Sub(hn::Set(d, 1.0f), most), wa = hn::Sub(most, middle), wb = hn::Sub(middle, least);
    VU bytes[3];
    for (int c = 0; c < 3; ++c) {
      const float* const row000 = rows.lower->component[c];
      const float* const row110 = rows.bothUpper->component[c];
      const float* const rowBetween = between.component[c];
      const VF p000 = axis.lower(row000, b);
      const VF pa = hn::IfThenElse(blueFirst, axis.upper(row000, b), axis.lower(rowBetween, b));
      const VF pb = hn::IfThenElse(blueLast, axis.lower(row110, b), axis.upper(rowBetween, b));
      const VF p111 = axis.upper(row110, b);
      bytes[c] = truncatedBytes(
          hn::Add(hn::Add(hn::Add(hn::Mul(w0, p000), hn::Mul(wa, pa)), hn::Mul(wb, pb)), hn::Mul(least, p111)));
    }
    packer.store(bytes[0], bytes[1], bytes[2], packed + sizeof(RGB8) * b);
  }
  std::memcpy(entries, packed, 256 * sizeof(RGB8));
}

void hdrCacheFill(const HdrLatticeView& lattice, uint8_t r, RGB8* entries) {
  const int32_t top = lattice.latticeSize - 1;
  const int32_t x = lattice.cell[r], x1 = std::min(x + 1, top);
  const BlueAxis axis(lattice);
  if (!axis.fits()) return plain::hdrCacheFill(lattice, r, entries);
  const EntryPacker packer;
  PlanarRow read[4];
  PlanarRow *lower = &read[0], *redUpper = &read[1], *greenUpper = &read[2], *bothUpper = &read[3];
  int32_t upperRow = -1;  // the green index that greenUpper and bothUpper hold
  for (int g = 0; g < 256; ++g, entries += 256) {
    const int32_t y = lattice.cell[g], y1 = std::min(y + 1, top);
    if (g == 0 || y != lattice.cell[g - 1]) {
      std::swap(lower, greenUpper);
      std::swap(redUpper, bothUpper);
      if (upperRow != y) {
        lower->read(lattice.point(x, y, 0));
        redUpper->read(lattice.point(x1, y, 0));
      }
      greenUpper->read(lattice.point(x, y1, 0));
      bothUpper->read(lattice.point(x1, y1, 0));
      upperRow = y1;
    }
    const FourRows rows = {lower, redUpper, greenUpper, bothUpper};
    if (rows.tame()) {
      fillBlues(rows, axis, lattice.fraction[r], lattice.fraction[g], packer, entries);
      continue;
    }
    for (int b = 0; b < 256; ++b) {
      entries[b] = plain::hdrColour(lattice, r, static_cast<uint8_t>(g), static_cast<uint8_t>(b));
    }
  }
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Lumvane {

HWY_EXPORT(hdrCacheFill);

void hdrCacheFill(const HdrLatticeView& lattice, uint8_t r, RGB8* entries) {
  HWY_DYNAMIC_DISPATCH(hdrCacheFill)(lattice, r, entries);
}

}  // namespace Lumvane
#endif
