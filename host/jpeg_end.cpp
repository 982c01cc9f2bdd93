// A JPEG file is a row of segments (ITU-T T.81, annex B): a marker, which is 0xff and a byte that is not 0, and for most
// markers a length in two bytes, high byte first, that counts itself. Behind the header of a scan, marker 0xda, its data
// follow up to the next marker; an 0xff of the data has a 0 behind it, and restart markers, 0xd0 to 0xd7, are part of
// them. Thumbnails lie inside segments, so that their ends are not mistaken for the picture's.

#include "host/jpeg_end.h"

#include <cstddef>

namespace host {
namespace {

constexpr uint8_t kStart = 0xd8, kEnd = 0xd9;

bool standsAlone(uint8_t marker) { return marker == 0x01 || (marker >= 0xd0 && marker <= kStart); }

}  // namespace

bool isCutOffJpeg(const std::vector<uint8_t>& bytes) {
  if (bytes.size() < 3 || bytes[0] != 0xff || bytes[1] != kStart || bytes[2] != 0xff) return false;
  size_t at = 2;
  while (at + 1 < bytes.size()) {
    // Whatever is no marker is scan data, or damage that the decoder is to judge.
    const uint8_t marker = bytes[at + 1];
    if (bytes[at] != 0xff || marker == 0 || marker == 0xff) {
      ++at;
    } else if (marker == kEnd) {
      return false;
    } else if (standsAlone(marker)) {
      at += 2;
    } else {
      if (at + 3 >= bytes.size()) return true;
      at += 2u + bytes[at + 2] * 256u + bytes[at + 3];
    }
  }
  return true;
}

}  // namespace host
