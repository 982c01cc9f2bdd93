// The .CUBE text format: a header of keyword lines, then rows with red fastest.
//
// - Keywords are case-sensitive, may be in any order, and only the first of each counts: LUT_3D_SIZE (required),
//   DOMAIN_MIN, DOMAIN_MAX. Other lines, such as titles and one-dimensional sizes, are skipped. The first line whose
//   first token looks like the start of a number is the first row. A line of blanks is refused.
// - The domain scales the output. A value v of channel c becomes v * (max[c] - min[c]) * 255; the minimum is not an
//   offset, and the inputs 0 to 255 are always spread evenly over the lattice.

#include <charconv>
#include <utility>

#include "lut/lut_format.h"
#include "lut/numbers.h"

namespace Lumvane {
namespace {

constexpr int kSmallestSize = 2;
constexpr int kLargestSizeInHeader = 256;  // tables have lower limits

// Returns false if there are fewer than three numbers; those present are stored.
bool extractColor(std::string_view text, float (&values)[3]) {
  const char* next = text.data();
  for (float& value : values) {
    next = extractNumber(next, text.data() + text.size(), value);
    if (next == nullptr) return false;
  }
  return true;
}

// Returns 0 if there is no number or it does not fit an int.
int extractSize(std::string_view text) {
  text = firstToken(text);
  if (text.starts_with('+')) text.remove_prefix(1);
  int size = 0;
  std::from_chars(text.data(), text.data() + text.size(), size);
  return size;
}

}  // namespace

// Of several errors, the first of these is reported: a line that cannot be read, a missing size, an inverted domain.
LutHeader readCubeHeader(LineReader& text) {
  LutHeader header;
  float domainMin[3] = {0.0f, 0.0f, 0.0f}, domainMax[3] = {1.0f, 1.0f, 1.0f};
  bool minSeen = false, maxSeen = false;
  for (std::string_view line; text.readLine(line);) {
    const std::string_view keyword = firstToken(line);
    if (beginsTable(keyword)) {
      text.putBack();
      break;
    }
    const std::string_view arguments(keyword.end(), line.end());
    bool right = !keyword.empty();
    if (keyword == "DOMAIN_MIN" && !std::exchange(minSeen, true)) {
      right = extractColor(arguments, domainMin);
    } else if (keyword == "DOMAIN_MAX" && !std::exchange(maxSeen, true)) {
      right = extractColor(arguments, domainMax);
    } else if (keyword == "LUT_3D_SIZE" && header.latticeSize == 0) {
      const int size = extractSize(arguments);
      if (size < kSmallestSize || size > kLargestSizeInHeader) {
        text.status = statusSizeInvalid;
        break;
      }
      header.latticeSize = size;
    }
    header.hasLines = true;
    if (!right) text.status = statusReadFailed;
  }

  if (text.status == statusOk && header.latticeSize == 0) text.status = statusSizeInvalid;
  for (int c = 0; c < 3; ++c) {
    if (text.status == statusOk && domainMin[c] >= domainMax[c]) text.status = statusDomainInverted;
    header.factor[c] = (domainMax[c] - domainMin[c]) * 255.0f;
  }
  return header;
}

}  // namespace Lumvane
