// Row kernel from YV12 to BGRA: the plain form, which defines the output bytes, and the vector form.

#include "hdr/yv12_kernels.h"

#ifndef HWY_TARGET_INCLUDE  // once; the code after this block is compiled for each instruction set
#define HWY_TARGET_INCLUDE "hdr/yv12_to_rgb.cpp"

namespace Lumvane {
namespace plain {
namespace {

// Chroma at a pixel, in eighths, minus the neutral value.
int chromaAt(const uint8_t* nearRow, const uint8_t* farRow, int x, int lastColumn) {
  const int left = x / 2;
  const int right = std::min(left + x % 2, lastColumn);
  return 3 * (nearRow[left] + nearRow[right]) + farRow[left] + farRow[right] - (kNeutral << kUpBits);
}

// Converts the pixels from `first` on, which is even.
void restToRgb(const ToRgb& m, const Yv12Row& row, uint8_t* bgra, int width, int first) {
  const int lastColumn = (width - 1) / 2;
  for (int x = first; x < width; ++x) {
    uint8_t* pixel = bgra + 4 * x;
    const int grey = (row.luma[x] - m.black) * m.luma * (1 << kUpBits);
    const int cr = chromaAt(row.nearV, row.farV, x, lastColumn);
    const int cb = chromaAt(row.nearU, row.farU, x, lastColumn);
    pixel[0] = toByte(roundedShift(grey + m.blueOfCb * cb, kFractionBits + kUpBits));
    pixel[1] = toByte(roundedShift(grey + m.greenOfCr * cr + m.greenOfCb * cb, kFractionBits + kUpBits));
    pixel[2] = toByte(roundedShift(grey + m.redOfCr * cr, kFractionBits + kUpBits));
    pixel[3] = 255;
  }
}

void rowToRgb(const ToRgb& m, const Yv12Row& row, uint8_t* bgra, int width) { restToRgb(m, row, bgra, width, 0); }

}  // namespace
}  // namespace plain

const Yv12ToRgbKernels plainYv12ToRgbKernels = {plain::rowToRgb};

}  // namespace Lumvane

#endif

#include <hwy/foreach_target.h>  // must precede all vector code

#include "base/vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {
namespace {

#if LUMVANE_HAVE_VECTORS

// Coefficients have up to 22 bits, but 16-bit multiplication allows 15. So a coefficient is split into its high bits,
// which multiply the value shifted left, and its low bits, which multiply the value itself: exact, in one instruction.
template <int kShift>
VShorts splitCoefficient(int coefficient) {
  const auto low = static_cast<uint32_t>(coefficient) & ((1u << kShift) - 1);
  const auto high = static_cast<uint32_t>(coefficient >> kShift);
  return hn::BitCast(Shorts(), hn::Set(U(), low | high << 16));
}

constexpr int kLumaShift = 7;    // 255 << 7 is the largest shifted value
constexpr int kChromaShift = 5;  // -1024 << 5

struct Coefficients {
  explicit Coefficients(const ToRgb& m)
      : grey(splitCoefficient<kLumaShift>(m.luma << kUpBits)),
        redOfCr(splitCoefficient<kChromaShift>(m.redOfCr)),
        greenOfCr(splitCoefficient<kChromaShift>(m.greenOfCr)),
        greenOfCb(splitCoefficient<kChromaShift>(m.greenOfCb)),
        blueOfCb(splitCoefficient<kChromaShift>(m.blueOfCb)),
        offset(hn::Set(I(), (1 << (kFractionBits + kUpBits - 1)) - ((m.black * m.luma) << kUpBits))) {}
  VShorts grey, redOfCr, greenOfCr, greenOfCb, blueOfCb;
  VI offset;  // subtracts black, adds half for rounding
};

// Computes the unclamped colours of pixels. Each lane pair of y, cb and cr holds a value and the same value shifted.
HWY_INLINE void matrixed(const Coefficients& m, VShorts y, VShorts cb, VShorts cr, VI& blue, VI& green, VI& red) {
  const VI grey = hn::Add(pairSums(y, m.grey), m.offset);
  constexpr int kBits = kFractionBits + kUpBits;
  blue = hn::ShiftRight<kBits>(hn::Add(grey, pairSums(cb, m.blueOfCb)));
  green = hn::ShiftRight<kBits>(hn::Add(hn::Add(grey, pairSums(cb, m.greenOfCb)), pairSums(cr, m.greenOfCr)));
  red = hn::ShiftRight<kBits>(hn::Add(grey, pairSums(cr, m.redOfCr)));
}

struct Pixels {
  VShorts blueGreen, redAlpha;  // two bytes per lane
};

HWY_INLINE VShorts packed(VI lower, VI upper) {
  const Shorts d;
  const VShorts both = hn::ReorderDemote2To(d, lower, upper);
  return hn::Min(hn::Max(both, hn::Zero(d)), hn::Set(d, 255));
}

// Converts the even or the odd pixels. The orders of interleaving and packing within 128-bit blocks cancel out.
HWY_INLINE Pixels toPixels(const Coefficients& m, VShorts y, VShorts cb, VShorts cr) {
  const Shorts d;
  const VShorts yHigh = hn::ShiftLeft<kLumaShift>(y);
  const VShorts cbHigh = hn::ShiftLeft<kChromaShift>(cb);
  const VShorts crHigh = hn::ShiftLeft<kChromaShift>(cr);
  VI blue[2], green[2], red[2];
  matrixed(m, hn::InterleaveLower(d, y, yHigh), hn::InterleaveLower(d, cb, cbHigh), hn::InterleaveLower(d, cr, crHigh),
           blue[0], green[0], red[0]);
  matrixed(m, hn::InterleaveUpper(d, y, yHigh), hn::InterleaveUpper(d, cb, cbHigh), hn::InterleaveUpper(d, cr, crHigh),
           blue[1], green[1], red[1]);
  return {hn::Or(packed(blue[0], blue[1]), hn::ShiftLeft<8>(packed(green[0], green[1]))),
          hn::Or(packed(red[0], red[1]), hn::Set(d, static_cast<int16_t>(0xFF00)))};
}

// Chroma in the columns from `column` on, blended from the two rows, in quarters, minus the neutral value.
HWY_INLINE VShorts acrossRows(const uint8_t* nearRow, const uint8_t* farRow, int column) {
  const Shorts d;
  const hn::Rebind<uint8_t, Shorts> dBytes;
  const VShorts nearest = hn::PromoteTo(d, hn::LoadU(dBytes, nearRow + column));
  const VShorts far = hn::PromoteTo(d, hn::LoadU(dBytes, farRow + column));
  return hn::Sub(hn::Add(hn::Add(nearest, far), hn::Add(nearest, nearest)), hn::Set(d, kNeutral << (kUpBits - 1)));
}

// Distributes groups of four pixels over the 16-byte blocks in turn, so that interleaving within blocks gives them in
// order.
class BlockOrder {
 public:
  BlockOrder() {
    constexpr size_t kBlocks = kLanes / 4;
    for (size_t i = 0; i < kLanes; ++i) order_[i] = static_cast<uint32_t>(i % 4 * kBlocks + i / 4);
  }
  template <class V>
  HWY_INLINE V operator()(V v) const {
    return hn::BitCast(hn::DFromV<V>(), hn::TableLookupLanes(hn::BitCast(U(), v), hn::SetTableIndices(U(), order_)));
  }

 private:
  alignas(64) uint32_t order_[kLanes];
};

void rowToRgb(const ToRgb& matrix, const Yv12Row& row, uint8_t* bgra, int width) {
  const Shorts d;
  const int columns = (width + 1) / 2;
  constexpr int lanes = 2 * kLanes;
  if (width < 2 * lanes) return plain::rowToRgb(matrix, row, bgra, width);
  const Coefficients m(matrix);
  const BlockOrder inBlocks;

  // Converts 2 * lanes pixels from `column` on; `next` are the chroma columns one to the right.
  const auto convert = [&](int column, VShorts cr, VShorts nextCr, VShorts cb, VShorts nextCb) HWY_ATTR {
    const auto luma = hn::BitCast(Words(), inBlocks(hn::LoadU(Bytes(), row.luma + 2 * column)));
    cr = inBlocks(cr), nextCr = inBlocks(nextCr), cb = inBlocks(cb), nextCb = inBlocks(nextCb);
    const Pixels even =
        toPixels(m, hn::BitCast(d, hn::And(luma, hn::Set(Words(), 0xFF))), hn::Add(cb, cb), hn::Add(cr, cr));
    const Pixels odd = toPixels(m, hn::BitCast(d, hn::ShiftRight<8>(luma)), hn::Add(cb, nextCb), hn::Add(cr, nextCr));
    const auto evenLower = hn::BitCast(U(), hn::InterleaveLower(d, even.blueGreen, even.redAlpha));
    const auto evenUpper = hn::BitCast(U(), hn::InterleaveUpper(d, even.blueGreen, even.redAlpha));
    const auto oddLower = hn::BitCast(U(), hn::InterleaveLower(d, odd.blueGreen, odd.redAlpha));
    const auto oddUpper = hn::BitCast(U(), hn::InterleaveUpper(d, odd.blueGreen, odd.redAlpha));
    uint8_t* out = bgra + 8 * column;
    const size_t step = 2 * static_cast<size_t>(lanes);
    hn::StoreU(hn::BitCast(Bytes(), hn::InterleaveLower(U(), evenLower, oddLower)), Bytes(), out);
    hn::StoreU(hn::BitCast(Bytes(), hn::InterleaveUpper(U(), evenLower, oddLower)), Bytes(), out + step);
    hn::StoreU(hn::BitCast(Bytes(), hn::InterleaveLower(U(), evenUpper, oddUpper)), Bytes(), out + 2 * step);
    hn::StoreU(hn::BitCast(Bytes(), hn::InterleaveUpper(U(), evenUpper, oddUpper)), Bytes(), out + 3 * step);
  };

  int column = 0;
  for (; column + lanes < columns; column += lanes) {
    convert(column, acrossRows(row.nearV, row.farV, column), acrossRows(row.nearV, row.farV, column + 1),
            acrossRows(row.nearU, row.farU, column), acrossRows(row.nearU, row.farU, column + 1));
  }
  // The last full vector of pixel pairs, which may overlap the previous one. The last column is repeated past the edge.
  column = width / 2 - lanes;
  alignas(64) int16_t cr[lanes + 1], cb[lanes + 1];
  hn::Store(acrossRows(row.nearV, row.farV, column), d, cr);
  hn::Store(acrossRows(row.nearU, row.farU, column), d, cb);
  const auto atColumn = [&](const uint8_t* nearRow, const uint8_t* farRow, int at) {
    return static_cast<int16_t>(3 * nearRow[at] + farRow[at] - (kNeutral << (kUpBits - 1)));
  };
  cr[lanes] = atColumn(row.nearV, row.farV, columns - 1);
  cb[lanes] = atColumn(row.nearU, row.farU, columns - 1);
  convert(column, hn::Load(d, cr), hn::LoadU(d, cr + 1), hn::Load(d, cb), hn::LoadU(d, cb + 1));
  plain::restToRgb(matrix, row, bgra, width, width / 2 * 2);
}

#else
using namespace plain;
#endif

Yv12ToRgbKernels kernels() { return {rowToRgb}; }

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

LUMVANE_DISPATCH(Yv12ToRgbKernels, yv12ToRgbKernels)
