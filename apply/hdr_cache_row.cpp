// The vector form of hdrCacheRow.

#include "apply/hdr_kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "apply/hdr_cache_row.cpp"
#include <hwy/foreach_target.h>  // must come before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_SSSE3 || HWY_TARGET == HWY_SSE4
using plain::hdrCacheRow;  // these have no instruction that reads from several places
#else

namespace hn = hwy::HWY_NAMESPACE;

// One 32-bit lane is one pixel.
void hdrCacheRow(const RGB8* cache, const uint8_t* src, uint8_t* dst, size_t pixels) {
  const hn::ScalableTag<uint32_t> d;
  const hn::RebindToSigned<decltype(d)> di;
  const hn::Repartition<uint8_t, decltype(d)> du8;
  const auto colourMask = hn::Set(d, 0x00FFFFFF);
  // Entries have three bytes and are read four at a time. The last one is read with the byte ahead of it instead of the
  // one behind.
  const auto lastOffset = hn::Set(d, kCacheEntries * 3 - 4);
  HWY_ALIGN static constexpr uint32_t kReverse[4] = {0x80000102, 0x80040506, 0x8008090A, 0x800C0D0E};
  const auto reverse = hn::BitCast(du8, hn::LoadDup128(d, kReverse));  // and 0 in byte 3

  const size_t lanes = hn::Lanes(d);
  size_t i = 0;
  for (; i + lanes <= pixels; i += lanes) {
    const auto pixel = hn::BitCast(d, hn::LoadU(du8, src + 4 * i));
    const auto number = hn::And(pixel, colourMask);
    const auto offset = hn::Add(hn::Add(number, number), number);
    const auto readAt = hn::Min(offset, lastOffset);
    const auto read = hn::GatherOffset(d, reinterpret_cast<const uint32_t*>(cache), hn::BitCast(di, readAt));
    const auto entry = hn::IfThenElse(hn::Eq(offset, readAt), read, hn::ShiftRight<8>(read));
    const auto colour = hn::TableLookupBytes(hn::BitCast(du8, entry), reverse);
    hn::StoreU(hn::Or(colour, hn::BitCast(du8, hn::AndNot(colourMask, pixel))), du8, dst + 4 * i);
  }
  plain::hdrCacheRow(cache, src + 4 * i, dst + 4 * i, pixels - i);
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Lumvane {

HWY_EXPORT(hdrCacheRow);

void hdrCacheRow(const RGB8* cache, const uint8_t* src, uint8_t* dst, size_t pixels) {
  HWY_DYNAMIC_DISPATCH(hdrCacheRow)(cache, src, dst, pixels);
}

}  // namespace Lumvane
#endif
