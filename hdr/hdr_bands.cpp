#include "hdr/hdr_bands.h"

#include <algorithm>

#include "apply/band_rows.h"
#include "apply/hdr_kernels.h"

namespace Lumvane {
namespace {

constexpr int kFewestPairsOfBand = 4;
constexpr int kRowsAtHand = 4;  // a pair of rows and the rows above and below it, which its chroma takes in

}  // namespace

HdrBands::HdrBands(const VideoAdjustColor& object, const RGB8* cache, const Yv12Planes<const uint8_t>& src,
                   const Yv12Planes<uint8_t>& dst)
    : object_(object),
      cache_(cache),
      src_(src),
      dst_(dst),
      toRgb_(toRgb(kBt2020, object.limitedRange != 0 ? kLimited : kFull)),
      fromRgb_(fromRgb(kBt709, object.limitedRange != 0 ? kLimited : kFull)),
      count_(std::clamp((object.height + 1) / 2 / kFewestPairsOfBand, 1,
                        std::clamp(2 * cv::getNumThreads(), 1, object.bandCount))) {}

void HdrBands::operator()(const cv::Range& range) const {
  for (int band = range.start; band < range.end; ++band) {
    const BandRows pairs((object_.height + 1) / 2, count_, band);
    convert(2 * pairs.first, std::min(2 * (pairs.first + pairs.count), object_.height));
  }
}

// The rows next to the band are computed for the neighbouring band, too.
void HdrBands::convert(int firstRow, int endRow) const {
  // The band's own part of the buffers has room for the few rows that are needed at a time.
  const size_t rowBytes = size_t{4} * static_cast<size_t>(object_.width);
  uint8_t* const converted = object_.rgbaIn.get() + rowBytes * static_cast<size_t>(firstRow);
  uint8_t* const mapped = object_.rgbaOut.get() + rowBytes * static_cast<size_t>(firstRow);
  const auto mappedRow = [&](int y) {
    return mapped + rowBytes * static_cast<size_t>(std::clamp(y, 0, object_.height - 1) % kRowsAtHand);
  };
  const auto writePair = [&](int y) {
    rowPairFromRgb(fromRgb_, {mappedRow(y - 1), mappedRow(y), mappedRow(y + 1), mappedRow(y + 2)},
                   destinationRows(dst_, y), object_.width);
  };

  const int lastRow = std::min(endRow, object_.height - 1);
  for (int y = std::max(firstRow - 1, 0); y <= lastRow; ++y) {
    rowToRgb(toRgb_, sourceRow(src_, y), converted, object_.width);
    hdrCacheRow(cache_, converted, mappedRow(y), static_cast<size_t>(object_.width));
    if (y % 2 == 0 && y >= firstRow + 2) writePair(y - 2);
  }
  // At the bottom of the frame no row below tells that the last pair is complete.
  if (endRow == object_.height) writePair((endRow - 1) / 2 * 2);
}

}  // namespace Lumvane
