#include "lut/cube_text.h"

#include <locale>
#include <sstream>
#include <utility>

namespace Lumvane {
namespace {

constexpr int kSmallestSize = 2;
constexpr int kLargestSizeInHeader = 256;  // what a header may ask for; each table sets a limit of its own

}  // namespace

CubeHeader readCubeHeader(LineBuffer& text, char separator, LutStatus& status) {
  CubeHeader header;
  bool sizeSeen = false;
  bool minSeen = false;
  bool maxSeen = false;
  while (status == statusOk) {
    const std::string line(readLine(text, separator, status));
    if (status != statusOk) break;

    std::istringstream words(line);
    words.imbue(std::locale::classic());
    words.exceptions(std::ios_base::badbit);  // or a stream takes memory that has run out for a faulty text
    std::string keyword;
    words >> keyword;
    if (beginsTable(keyword)) {
      text.putBack();
      break;
    }
    if (keyword == "DOMAIN_MIN" && !std::exchange(minSeen, true)) {
      words >> header.domainMin[0] >> header.domainMin[1] >> header.domainMin[2];
    } else if (keyword == "DOMAIN_MAX" && !std::exchange(maxSeen, true)) {
      words >> header.domainMax[0] >> header.domainMax[1] >> header.domainMax[2];
    } else if (keyword == "LUT_3D_SIZE" && !std::exchange(sizeSeen, true)) {
      int size = 0;
      words >> size;
      if (size < kSmallestSize || size > kLargestSizeInHeader) {
        status = statusSizeInvalid;
        break;
      }
      header.latticeSize = size;
    }
    header.hasLines = true;
    if (words.fail()) status = statusReadFailed;
  }

  if (status == statusOk && !sizeSeen) status = statusSizeInvalid;
  for (int c = 0; c < 3; ++c) {
    if (status == statusOk && header.domainMin[c] >= header.domainMax[c]) status = statusDomainInverted;
  }
  return header;
}

}  // namespace Lumvane
