// The .3DL text format: header lines, a mesh line, then rows with blue fastest.
//
// - All lines before the mesh line are skipped; "3DMESH" and "Mesh" lines have no effect. The mesh line is the first
//   whose first token looks like the start of a number.
// - The lattice has as many points per axis as the mesh line has entries, separated by single blanks only: a blank at
//   the end of the line, or two in a row, counts as an extra entry, and a tab does not separate. The numbers are not
//   read.
// - Values are on a 12-bit scale (full scale 4095), whatever the header says: 10-bit tables come out dark.

#include <algorithm>

#include "lut/cube_lut.h"
#include "lut/lut_format.h"

namespace Lumvane {
namespace {

constexpr size_t kMinPoints = 3;

// "3DMESH" begins with a digit but is a keyword.
bool isMeshLine(std::string_view line) {
  const std::string_view token = firstToken(line);
  return token != "3DMESH" && beginsTable(token);
}

}  // namespace

LutHeader read3dlHeader(LineReader& text) {
  LutHeader header{.redFastest = false, .fullScale = 4095.0f};
  std::string_view line;
  do {
    if (!text.readLine(line)) return header;
  } while (!isMeshLine(line));
  std::vector<std::string_view> mesh;
  // Counted before splitting: each field costs far more memory than the blank before it, and there may be thousands.
  if (std::count(line.begin(), line.end(), ' ') >= kLatticeStride) {
    text.status = statusSizeInvalid;
  } else if (CubeLut::splitFields(line, mesh); mesh.size() < kMinPoints) {
    text.status = statusTooFewColumns;
  } else {
    header.latticeSize = static_cast<int32_t>(mesh.size());
  }
  return header;
}

void CubeLut::splitFields(std::string_view line, std::vector<std::string_view>& fields) {
  size_t start = 0;
  for (size_t blank; (blank = line.find(' ', start)) != line.npos; start = blank + 1) {
    fields.push_back(line.substr(start, blank - start));
  }
  fields.push_back(line.substr(start));
}

}  // namespace Lumvane
