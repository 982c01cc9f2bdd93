// Row kernel from BGRA to YV12: the plain form, which defines the output bytes, and the vector form.

#include "hdr/yv12_kernels.h"

#ifndef HWY_TARGET_INCLUDE  // once; the code after this block is compiled for each instruction set
#define HWY_TARGET_INCLUDE "hdr/yv12_from_rgb.cpp"

namespace Lumvane {
namespace plain {
namespace {

int weighted(const int (&weights)[3], const int (&bgr)[3]) {
  return weights[0] * bgr[0] + weights[1] * bgr[1] + weights[2] * bgr[2];
}

uint8_t lumaOf(const FromRgb& m, const uint8_t* pixel) {
  const int bgr[3] = {pixel[0], pixel[1], pixel[2]};
  return toByte(m.black + roundedShift(weighted(m.y, bgr), kFractionBits));
}

// Converts the pixels from `first` on, which is even.
void restFromRgb(const FromRgb& m, const uint8_t* const (&bgra)[4], const Yv12RowPair& pair, int width, int first) {
  for (int x = first; x < width; ++x) {
    pair.upperLuma[x] = lumaOf(m, bgra[1] + 4 * x);
    pair.lowerLuma[x] = lumaOf(m, bgra[2] + 4 * x);
  }
  for (int x = first / 2; x < (width + 1) / 2; ++x) {
    const int left = std::max(2 * x - 1, 0) * 4, middle = 2 * x * 4, right = std::min(2 * x + 1, width - 1) * 4;
    int bgr[3];
    for (int c = 0; c < 3; ++c) {
      const auto across = [&](const uint8_t* row) { return row[left + c] + 2 * row[middle + c] + row[right + c]; };
      bgr[c] = across(bgra[0]) + 3 * (across(bgra[1]) + across(bgra[2])) + across(bgra[3]);
    }
    pair.v[x] = toByte(kNeutral + roundedShift(weighted(m.cr, bgr), kFractionBits + kDownBits));
    pair.u[x] = toByte(kNeutral + roundedShift(weighted(m.cb, bgr), kFractionBits + kDownBits));
  }
}

void rowPairFromRgb(const FromRgb& m, const uint8_t* const (&bgra)[4], const Yv12RowPair& pair, int width) {
  restFromRgb(m, bgra, pair, width, 0);
}

}  // namespace
}  // namespace plain

const Yv12FromRgbKernels plainYv12FromRgbKernels = {plain::rowPairFromRgb};

}  // namespace Lumvane

#endif

#include <hwy/foreach_target.h>  // must precede all vector code

#include "base/vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {
namespace {

#if LUMVANE_HAVE_VECTORS

// One instruction multiplies 16-bit numbers and adds neighbouring products: here the products of blue and red. But the
// weights, from -30034 to 187485, need 19. So each is split at bit 9, and the sum of products is
//   (sum of value * high bits) << 9, plus sum of value * low bits,
// which is exact: values are bytes, or for chroma the differences of colours in 32nds, up to 8160; low bits are 0 to
// 511, high bits -59 to 366; and the sums of plain::weighted fit 32 bits.
constexpr int kSplit = 9;
struct Weights {
  VShorts low, high;

  Weights(int ofEven, int ofOdd)
      : low(pair(ofEven & ((1 << kSplit) - 1), ofOdd & ((1 << kSplit) - 1))),
        high(pair(ofEven >> kSplit, ofOdd >> kSplit)) {}
  // The weights of `even` for even 32-bit lanes, of `odd` for odd ones.
  Weights(const Weights& even, const Weights& odd)
      : low(alternating(even.low, odd.low)), high(alternating(even.high, odd.high)) {}

 private:
  static VShorts pair(int even, int odd) {
    return hn::BitCast(Shorts(), hn::Set(I(), (even & 0xFFFF) | odd * 0x10000));
  }
  static VShorts alternating(VShorts even, VShorts odd) {
    return hn::BitCast(Shorts(), hn::OddEven(hn::BitCast(U(), odd), hn::BitCast(U(), even)));
  }
};

// Colours, or sums of them: 16 bits each.
struct Colours {
  VShorts blueRed;  // blue in even lanes, red in odd ones
  VShorts green;    // in even lanes; odd ones are 0
};

HWY_INLINE Colours add(const Colours& a, const Colours& b) {
  return {hn::Add(a.blueRed, b.blueRed), hn::Add(a.green, b.green)};
}

HWY_INLINE Colours load(const uint8_t* pixels) {
  const VU bgra = loadPixels(pixels);
  return {hn::BitCast(Shorts(), hn::And(bgra, hn::Set(U(), 0x00FF00FF))),
          hn::BitCast(Shorts(), hn::And(hn::ShiftRight<8>(bgra), hn::Set(U(), 0xFF)))};
}

// The vertical filter, 1 3 3 1.
HWY_INLINE Colours down(const Colours& above, const Colours& upper, const Colours& lower, const Colours& below) {
  const Colours middle = add(upper, lower);
  return add(add(add(above, below), middle), add(middle, middle));
}
HWY_INLINE Colours downFrom(const uint8_t* const (&bgra)[4], size_t x) {
  return down(load(bgra[0] + 4 * x), load(bgra[1] + 4 * x), load(bgra[2] + 4 * x), load(bgra[3] + 4 * x));
}

class LumaRow {
 public:
  explicit LumaRow(const FromRgb& m)
      : blueRed_(m.y[0], m.y[2]),
        green_(m.y[1], 0),
        offset_(hn::Set(I(), (m.black << kFractionBits) + (1 << (kFractionBits - 1)))) {}

  HWY_INLINE void store(const Colours& pixels, uint8_t* luma) const {
    const VI high = hn::Add(pairSums(pixels.blueRed, blueRed_.high), pairSums(pixels.green, green_.high));
    const VI low = hn::Add(pairSums(pixels.blueRed, blueRed_.low), pairSums(pixels.green, green_.low));
    const VI sum = hn::Add(hn::Add(hn::ShiftLeft<kSplit>(high), low), offset_);
    const hn::Rebind<uint8_t, I> bytes;
    hn::StoreU(hn::DemoteTo(bytes, hn::ShiftRight<kFractionBits>(sum)), bytes, luma);
  }

 private:
  Weights blueRed_, green_;
  VI offset_;
};

// Each chroma row of the matrix sums to 0, so green drops out: blue's and red's weights are applied to blue - green and
// red - green.
class ChromaRows {
 public:
  explicit ChromaRows(const FromRgb& m)
      : blueRed_(Weights(m.cr[0], m.cr[2]), Weights(m.cb[0], m.cb[2])), half_(hn::Set(I(), 1 << (kBits - 1))) {}

  // Takes vertically filtered colours, and those of the pixels to their left. Every second pixel is a chroma column.
  HWY_INLINE void store(const Colours& pixels, const Colours& left, uint8_t* v, uint8_t* u) const {
    const Colours twice = add(pixels, left);  // pixel and left neighbour; in odd lanes right neighbour and pixel
    const VShorts blueRed = acrossPair(twice.blueRed), green = acrossPair(twice.green);
    const VShorts bothGreen = hn::Or(green, hn::BitCast(Shorts(), hn::ShiftLeft<16>(hn::BitCast(U(), green))));
    const VU differences = hn::DupEven(hn::BitCast(U(), hn::Sub(blueRed, bothGreen)));
    const VShorts lessGreen = hn::BitCast(Shorts(), differences);
    const VI high = pairSums(lessGreen, blueRed_.high), low = pairSums(lessGreen, blueRed_.low);
    const VI sum = hn::Add(hn::Add(hn::ShiftLeft<kSplit>(high), low), half_);
    // The neutral value is added after the shift: before it, full-range sums would exceed 32 bits.
    const VI chroma = hn::Add(hn::ShiftRight<kBits>(sum), hn::Set(I(), kNeutral));
    const hn::Rebind<uint8_t, I> bytes;
    const hn::Repartition<uint16_t, decltype(bytes)> pairs;
    const hn::Rebind<uint8_t, decltype(pairs)> half;
    const auto vu = hn::BitCast(pairs, hn::DemoteTo(bytes, chroma));
    hn::StoreU(hn::TruncateTo(half, vu), half, v);
    hn::StoreU(hn::TruncateTo(half, hn::ShiftRight<8>(vu)), half, u);
  }

 private:
  static constexpr int kBits = kFractionBits + kDownBits;
  static HWY_INLINE VShorts acrossPair(VShorts v) {
    const hn::Repartition<uint64_t, U> pairs;
    return hn::Add(v, hn::BitCast(Shorts(), hn::ShiftRight<32>(hn::BitCast(pairs, v))));
  }

  Weights blueRed_;
  VI half_;
};

// Rotates the pixels by one to the right.
HWY_INLINE VU rotated(VShorts v) {
  constexpr uint32_t last = kLanes - 1;
  const VU before = hn::And(hn::Iota(U(), last), hn::Set(U(), last));
  return hn::TableLookupLanes(hn::BitCast(U(), v), hn::IndicesFromVec(U(), before));
}

void rowPairFromRgb(const FromRgb& matrix, const uint8_t* const (&bgra)[4], const Yv12RowPair& pair, int width) {
  const size_t pixels = static_cast<size_t>(width) / 2 * 2;  // complete pairs
  if (pixels < kLanes) return plain::rowPairFromRgb(matrix, bgra, pair, width);
  const LumaRow luma(matrix);
  const ChromaRows chroma(matrix);
  const auto firstLane = hn::FirstN(U(), 1);

  VU blueRedBefore = hn::Zero(U()), greenBefore = blueRedBefore;  // the previous vector, rotated
  for (size_t x = 0; x + kLanes <= pixels; x += kLanes) {
    const Colours upper = load(bgra[1] + 4 * x), lower = load(bgra[2] + 4 * x);
    luma.store(upper, pair.upperLuma + x);
    luma.store(lower, pair.lowerLuma + x);
    const Colours here = down(load(bgra[0] + 4 * x), upper, lower, load(bgra[3] + 4 * x));
    const auto leftOf = [&](VShorts colours, VU& before) HWY_ATTR {
      if (x == 0) before = hn::BitCast(U(), colours);  // the first pixel is its own left neighbour
      const VU turned = rotated(colours);
      const VU left = hn::IfThenElse(firstLane, before, turned);
      before = turned;
      return hn::BitCast(Shorts(), left);
    };
    const Colours left = {leftOf(here.blueRed, blueRedBefore), leftOf(here.green, greenBefore)};
    chroma.store(here, left, pair.v + x / 2, pair.u + x / 2);
  }
  if (pixels % kLanes != 0) {  // the last vector overlaps the one before
    const size_t x = pixels - kLanes;
    luma.store(load(bgra[1] + 4 * x), pair.upperLuma + x);
    luma.store(load(bgra[2] + 4 * x), pair.lowerLuma + x);
    chroma.store(downFrom(bgra, x), downFrom(bgra, x - 1), pair.v + x / 2, pair.u + x / 2);
  }
  plain::restFromRgb(matrix, bgra, pair, width, static_cast<int>(pixels));
}

#else
using namespace plain;
#endif

Yv12FromRgbKernels kernels() { return {rowPairFromRgb}; }

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

LUMVANE_DISPATCH(Yv12FromRgbKernels, yv12FromRgbKernels)
