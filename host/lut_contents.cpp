// Reads LUT files as the library does: docs/formats.md has the rules.

#include "host/lut_contents.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <fstream>
#include <iterator>
#include <string_view>

#include "host/files.h"
#include "host/platform.h"

namespace host {
namespace {

constexpr int kLargestSize = 256;
constexpr uintmax_t kLargestFile = uintmax_t{1} << 30;  // bytes; 256 points per axis take half of that

size_t cubeOf(int size) { return size_t(1) * size * size * size; }

// Reads up to `most` numbers and returns how many there were; the other values are unchanged.
int readNumbers(std::string_view line, float* values, int most) {
  const char* next = line.data();
  const char* const end = next + line.size();
  for (int i = 0; i < most; ++i) {
    while (next != end && (*next == ' ' || *next == '\t' || *next == '+')) ++next;
    const auto [after, error] = std::from_chars(next, end, values[i]);
    if (error != std::errc()) return i;
    next = after;
  }
  return most;
}

void remark(LutContents& lut, const std::string& text) { lut.remarks += (lut.remarks.empty() ? "" : "; ") + text; }

void readCubeKeyword(LutContents& lut, std::string_view word, std::string_view rest) {
  cv::Vec3f values;
  readNumbers(rest, values.val, 3);
  if (word == "LUT_1D_SIZE") {
    lut.hasCurve = true;
    remark(lut, "it contains a one-dimensional table; only 3D tables are supported");
  } else if (word == "LUT_3D_SIZE" && values[0] > 0.0f) {
    lut.size = static_cast<int>(std::min(values[0], kLargestSize + 1.0f));
  } else if (word == "DOMAIN_MIN") {
    lut.domainMin = values;
  } else if (word == "DOMAIN_MAX") {
    lut.domainMax = values;
  } else if (word == "LUT_3D_INPUT_RANGE") {
    lut.domainMin = cv::Vec3d::all(values[0]);
    lut.domainMax = cv::Vec3d::all(values[1]);
    lut.hasInputRange = true;
  }
}

void readMesh(LutContents& lut, std::string_view line) {
  lut.size = static_cast<int>(std::min<ptrdiff_t>(std::count(line.begin(), line.end(), ' '), kLargestSize)) + 1;
  if (line.find('\t') != line.npos) remark(lut, "its mesh line contains tabs, which do not separate entries");
  if (line.front() == ' ' || line.back() == ' ' || line.find("  ") != line.npos) {
    remark(lut, "its mesh line has a leading, trailing or double space, which counts as an extra entry");
  }
}

void remarkOnValues(LutContents& lut) {
  const bool isCube = lut.format == ".cube";
  const bool lacksMesh = !isCube && lut.size == 3 && lut.rows > cubeOf(3);
  if (lut.size < (isCube ? 2 : 3) || lut.size > 65) {
    remark(lut, "its size is not supported: 2 to 65 points per axis, in a .3dl file 3 to 65");
  } else if (lacksMesh) {
    remark(lut, "it has no mesh line: its first row is read as one, and the table as one of 3 points per axis");
  } else if (lut.rows != cubeOf(lut.size)) {
    remark(lut, cv::format("it has %zu rows, but %d points per axis need %zu", lut.rows, lut.size, cubeOf(lut.size)));
  }
  if (lut.shortRows != 0) {
    remark(lut, cv::format("%zu of its rows have fewer than three numbers and repeat those of the previous row",
                           lut.shortRows));
  }
  if (isCube && (lut.domainMin != cv::Vec3d::all(0) || lut.domainMax != cv::Vec3d::all(1))) {
    const cv::Vec3d &from = lut.domainMin, &to = lut.domainMax;
    remark(lut, cv::format("its domain is %g %g %g to %g %g %g, but inputs run from 0 to 1 here: %s", from[0], from[1],
                           from[2], to[0], to[1], to[2],
                           lut.hasInputRange ? "it is ignored" : "results are multiplied by the difference"));
  }
  const char* const outcome =
      isCube && lut.maxValue >= 16.0      ? "1 is full scale: it comes out white"
      : !isCube && lut.maxValue > 4095.0  ? "4095 is full scale: a table of 16 bits comes out white"
      : !isCube && lut.maxValue <= 1023.0 ? "4095 is full scale: a table of 10 bits comes out dark"
                                          : nullptr;
  if (outcome && lut.rows != 0) remark(lut, cv::format("its values go up to %g, and %s", lut.maxValue, outcome));
}

}  // namespace

LutContents readLut(const std::filesystem::path& path) {
  const std::string failed = "cannot use LUT file";
  std::error_code error;
  // Reading a pipe or a device might never end.
  if (std::filesystem::exists(path, error) && !std::filesystem::is_regular_file(path, error)) {
    throw Error(ExitCode::kInput, failed, path, "it is not a regular file");
  }
  const uintmax_t bytes = std::filesystem::file_size(path, error);
  if (!error && bytes > kLargestFile) throw Error(ExitCode::kInput, failed, path, "it is larger than any LUT");
  LutContents lut;
  std::ifstream file = openInput(failed, path);
  lut.format = lowerCaseExtension(path);
  const bool isCube = lut.format == ".cube";
  if (!isCube && lut.format != ".3dl") return lut;

  std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  std::replace(text.begin(), text.end(), '\r', '\n');  // empty lines do not count
  bool inTable = false;
  cv::Vec3f row(0, 0, 0);
  for (std::string_view rest = text, line; !rest.empty();) {
    line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    if (line.empty() || line[0] == '#') continue;
    if (!inTable) {
      const size_t start = std::min(line.find_first_not_of(" \t"), line.size());
      const std::string_view word = line.substr(start, line.find_first_of(" \t", start) - start);
      inTable = word.find_first_of("0123456789-.,/+") == 0 && (isCube || word != "3DMESH");
      if (inTable && !isCube) readMesh(lut, line);
      if (!inTable && isCube) readCubeKeyword(lut, word, line.substr(start + word.size()));
      if (!inTable || !isCube) continue;
    }
    if (readNumbers(line, row.val, 3) < 3) ++lut.shortRows;
    const auto [min, max] = std::minmax_element(row.val, row.val + 3);
    lut.minValue = lut.rows == 0 ? *min : std::min<double>(lut.minValue, *min);
    lut.maxValue = lut.rows == 0 ? *max : std::max<double>(lut.maxValue, *max);
    if (++lut.rows <= cubeOf(kLargestSize)) lut.points.push_back(row);
  }
  remarkOnValues(lut);
  return lut;
}

std::string LutContents::description() const {
  std::string text = "format   " + format;
  if (format != ".cube" && format != ".3dl") return text + " by its name, which is not supported";
  text += cv::format("\nsize     %d points per axis, %zu rows\nvalues   %g to %g", size, rows, minValue, maxValue);
  if (format == ".3dl") return text + ", full scale 4095";
  return text + cv::format(", full scale 1\ndomain   %g %g %g to %g %g %g", domainMin[0], domainMin[1], domainMin[2],
                           domainMax[0], domainMax[1], domainMax[2]);
}

bool LutContents::isWholeCube() const {
  const cv::Vec3d width = domainMax - domainMin;
  return format == ".cube" && !hasCurve && shortRows == 0 && *std::min_element(width.val, width.val + 3) > 0.0 &&
         size >= 2 && size <= kLargestSize && points.size() == cubeOf(size);
}

cv::Vec3d LutContents::colourAt(const cv::Vec3d& input) const {
  cv::Vec3i corner;
  cv::Vec3d fraction;
  for (int c = 0; c < 3; ++c) {
    const double part = (input[c] - domainMin[c]) / (domainMax[c] - domainMin[c]);
    const double place = std::clamp(part, 0.0, 1.0) * (size - 1);
    corner[c] = std::min(static_cast<int>(place), size - 2);
    fraction[c] = place - corner[c];
  }
  const auto point = [&] { return cv::Vec3d(points[(size_t(corner[2]) * size + corner[1]) * size + corner[0]]); };
  // From the lower corner of the cell to the upper one, along the axis of the largest fraction first.
  std::array<int, 3> axes = {0, 1, 2};
  std::sort(axes.begin(), axes.end(), [&](int a, int b) { return fraction[a] > fraction[b]; });
  cv::Vec3d colour = point() * (1.0 - fraction[axes[0]]);
  for (int i = 0; i < 3; ++i) {
    ++corner[axes[i]];
    colour += point() * (fraction[axes[i]] - (i < 2 ? fraction[axes[i + 1]] : 0.0));
  }
  return colour;
}

std::string LutContents::wrappingValues() const {
  const cv::Vec3d scale = hasInputRange ? cv::Vec3d::all(1) : domainMax - domainMin;
  size_t count = 0, first = 0;
  for (size_t i = 0; i < points.size(); ++i) {
    const cv::Vec3d result = cv::Vec3d(points[i]).mul(scale) * 255.0;
    if (*std::min_element(result.val, result.val + 3) > -1.5) continue;
    if (count++ == 0) first = i;
  }
  if (count == 0) return "";
  const cv::Vec3f& row = points[first];
  return cv::format(
      "%zu of its %zu rows have values below 0 that wrap around to white, first row %zu: %g %g %g; the lowest value is "
      "%g",
      count, rows, first + 1, row[0], row[1], row[2], minValue);
}

}  // namespace host
