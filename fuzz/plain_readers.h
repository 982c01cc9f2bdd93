// Both LUT text formats, read by the standard library's plainest means from a whole text in memory: what the readers of
// the library are held against, row by row and bit by bit.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "lut/lut_status.h"

namespace fuzz {

/// What a reader has to make of a text.
struct PlainTable {
  int32_t status = Lumvane::statusOk;
  int32_t size = 0;                        ///< 0 when the header gives none
  bool hasLines = false;                   ///< .cube: some header line was taken
  std::vector<std::array<float, 3>> rows;  ///< all that were read ahead of a failure, on the scale of 0.0 to 255.0
  bool rowsCertain = true;                 ///< false with numbers that the C library does not take to the nearest float
};

class PlainLines {
 public:
  PlainLines(const std::string& text, int32_t& status) : stream_(text), status_(status) {
    const size_t end = text.find_first_of("\r\n");
    if (end > 251)
      status_ = Lumvane::statusLineTooLong;
    else if (text[end] == '\r' && text.substr(end + 1, 1) != "\n")
      separator_ = '\r';
  }
  std::string next() {
    std::string line;
    while (line.empty() || line[0] == '#' || line == "\r") {
      if (stream_.eof()) {
        status_ = Lumvane::statusEndOfFile;
        break;
      }
      if (!std::getline(stream_, line, separator_)) {
        status_ = Lumvane::statusReadFailed;
        break;
      }
    }
    return line;
  }

 private:
  std::istringstream stream_;
  int32_t& status_;
  char separator_ = '\n';
};

inline bool opensTable(const std::string& token) { return token > "+" && token < ":"; }

/// Reads the rows; the first of them is `line` when that is not empty.
template <class Scale>
void readPlainRows(PlainLines& lines, std::string line, PlainTable& table, const Scale& scale) {
  std::array<float, 3> row = {};
  for (int32_t i = 0; i < table.size * table.size * table.size && table.status == 0; ++i, line.clear()) {
    if (line.empty()) line = lines.next();
    if (table.status != 0) return;
    std::sscanf(line.c_str(), "%f %f %f", &row[0], &row[1], &row[2]);
    // glibc 2.36 rounds hexadecimal numbers below the normal floats down.
    const bool hex = line.find_first_of("xX") != std::string::npos;
    if (hex && std::any_of(row.begin(), row.end(), [](float v) { return std::abs(v) < 0x1p-126f; })) {
      table.rowsCertain = false;
    }
    table.rows.push_back({scale(row[0], 0), scale(row[1], 1), scale(row[2], 2)});
  }
}

inline PlainTable readPlainCube(const std::string& text) {
  PlainTable table;
  PlainLines lines(text, table.status);
  float low[3] = {0, 0, 0}, high[3] = {1, 1, 1};
  int sizes = 0, lows = 0, highs = 0;
  std::string line;
  while (table.status == 0) {
    line = lines.next();
    if (table.status != 0) break;
    std::istringstream words(line);
    std::string keyword;
    words >> keyword;
    if (opensTable(keyword)) break;
    if (keyword == "LUT_3D_SIZE" && sizes++ == 0) {
      int size = 0;
      words >> size;
      if (size < 2 || size > 256) {
        table.status = Lumvane::statusSizeInvalid;
        break;
      }
      table.size = size;
    }
    if (keyword == "DOMAIN_MIN" && lows++ == 0) words >> low[0] >> low[1] >> low[2];
    if (keyword == "DOMAIN_MAX" && highs++ == 0) words >> high[0] >> high[1] >> high[2];
    table.hasLines = true;
    if (words.fail()) table.status = Lumvane::statusReadFailed;
  }
  if (table.status == 0 && sizes == 0) table.status = Lumvane::statusSizeInvalid;
  for (int c = 0; c < 3; ++c) {
    if (table.status == 0 && low[c] >= high[c]) table.status = Lumvane::statusDomainInverted;
  }
  if (table.size > 65) table.status = Lumvane::statusSizeInvalid;
  readPlainRows(lines, line, table, [&](float value, int c) { return value * ((high[c] - low[c]) * 255.0f); });
  return table;
}

inline PlainTable readPlain3dl(const std::string& text) {
  PlainTable table;
  PlainLines lines(text, table.status);
  std::string line, token;
  do {
    if (table.status == 0) line = lines.next();
    if (table.status != 0) return table;
    token.clear();
    std::istringstream(line) >> token;
  } while (token == "3DMESH" || !opensTable(token));
  const auto entries = std::count(line.begin(), line.end(), ' ') + 1;
  if (entries < 3)
    table.status = Lumvane::statusTooFewColumns;
  else if (entries > 65)
    table.status = Lumvane::statusSizeInvalid;
  else
    table.size = static_cast<int32_t>(entries);
  readPlainRows(lines, "", table, [](float value, int) { return value / 4095.0f * 255.0f; });
  return table;
}

}  // namespace fuzz
