// The .3DL text format: header lines, a mesh line, then one row of three numbers for each lattice point.
//
// Our reading of the doubtful points:
// - Every line ahead of the mesh line is passed over; what "3DMESH" and "Mesh" lines say has no effect. The mesh line is
//   the first whose first token begins a number.
// - The lattice has as many points per axis as the mesh line has entries, and only single blanks separate these: a
//   blank at the end of the line, or two in a row, counts as one entry more, and a tab as none. The numbers themselves
//   are not read.
// - Values are on a 12-bit scale, 4095 for full, whatever the header says: tables of 10 bits come out dark. Values
//   above 4095 are kept.
// - Rows run with blue fastest and red slowest, the opposite of .CUBE.

#include <algorithm>
#include <cstring>

#include "lut/cube_lut.h"
#include "lut/lut_text.h"

namespace Lumvane {
namespace {

constexpr size_t kFewestPoints = 3;
constexpr float kFullScale = 4095.0f;

// "3DMESH" begins with a digit but is a keyword.
bool isMeshLine(std::string_view line) {
  const std::string_view token = firstToken(line);
  return token != "3DMESH" && beginsTable(token);
}

}  // namespace

int32_t CubeLut::read3dl(std::istream& stream) {
  status = statusOk;
  std::memset(lattice, 0, sizeof lattice);
  LineBuffer text(stream);
  const char separator = detectLineSeparator(text);

  std::string_view line;
  while (status == statusOk && !isMeshLine(line)) line = readLine(text, separator);
  if (status == statusOk) {
    // Counted first: a piece takes many times the memory of the blank that makes it, and there may be millions.
    if (std::count(line.begin(), line.end(), ' ') >= kLatticeStride) {
      status = statusSizeInvalid;
    } else {
      std::vector<std::string> mesh;
      splitFields(std::string(line), mesh);
      if (mesh.size() < kFewestPoints) {
        status = statusTooFewColumns;
      } else {
        latticeSize = static_cast<int32_t>(mesh.size());
      }
    }
  }

  fillInterpolationTables();
  readRows(text, separator, latticeSize, status, [&](int32_t red, int32_t green, int32_t blue, const float(&row)[3]) {
    for (int c = 0; c < 3; ++c) lattice[red][green][blue][c] = row[c] / kFullScale * 255.0f;
  });
  return status;
}

void CubeLut::splitFields(const std::string& line, std::vector<std::string>& fields) {
  size_t start = 0;
  for (size_t blank; (blank = line.find(' ', start)) != std::string::npos; start = blank + 1) {
    fields.push_back(line.substr(start, blank - start));
  }
  fields.push_back(line.substr(start));
}

}  // namespace Lumvane
