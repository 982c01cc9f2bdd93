#include "lut/cube_text.h"

#include <charconv>
#include <utility>

#include "lut/numbers.h"

namespace Lumvane {
namespace {

constexpr int kSmallestSize = 2;
constexpr int kLargestSizeInHeader = 256;  // what a header may ask for; each table sets a limit of its own

// False when there are fewer than three numbers; those that are there are stored.
bool extractColor(const char* text, const char* end, float (&values)[3]) {
  for (float& value : values) {
    text = extractNumber(text, end, value);
    if (text == nullptr) return false;
  }
  return true;
}

// 0 when there is no number, or one beyond the range.
int extractSize(const char* text, const char* end) {
  while (text != end && isSpace(*text)) ++text;
  if (text != end && *text == '+') ++text;
  int size = 0;
  std::from_chars(text, end, size);
  return size;
}

}  // namespace

CubeHeader readCubeHeader(LineBuffer& text, char separator, LutStatus& status) {
  CubeHeader header;
  bool sizeSeen = false;
  bool minSeen = false;
  bool maxSeen = false;
  while (status == statusOk) {
    const std::string_view line = readLine(text, separator, status);
    if (status != statusOk) break;
    const std::string_view keyword = firstToken(line);
    if (beginsTable(keyword)) {
      text.putBack();
      break;
    }
    bool failed = keyword.empty();
    const char* const behind = keyword.data() + keyword.size();
    const char* const end = line.data() + line.size();
    if (keyword == "DOMAIN_MIN" && !std::exchange(minSeen, true)) {
      failed = !extractColor(behind, end, header.domainMin);
    } else if (keyword == "DOMAIN_MAX" && !std::exchange(maxSeen, true)) {
      failed = !extractColor(behind, end, header.domainMax);
    } else if (keyword == "LUT_3D_SIZE" && !std::exchange(sizeSeen, true)) {
      const int size = extractSize(behind, end);
      if (size < kSmallestSize || size > kLargestSizeInHeader) {
        status = statusSizeInvalid;
        break;
      }
      header.latticeSize = size;
    }
    header.hasLines = true;
    if (failed) status = statusReadFailed;
  }

  if (status == statusOk && !sizeSeen) status = statusSizeInvalid;
  for (int c = 0; c < 3; ++c) {
    if (status == statusOk && header.domainMin[c] >= header.domainMax[c]) status = statusDomainInverted;
  }
  return header;
}

}  // namespace Lumvane
