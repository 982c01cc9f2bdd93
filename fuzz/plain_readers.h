// Simple readers of both LUT text formats, for a text in memory and by the standard library alone: the reference that
// the library's readers must match row by row and bit by bit.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <queue>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "lut/lut_status.h"

namespace fuzz {

/// The expected result for a text.
struct PlainTable {
  int32_t status = Lumvane::statusOk;
  int32_t size = 0;                        ///< 0 when the header has none
  bool hasLines = false;                   ///< .cube: there was a valid header line
  std::vector<std::array<float, 3>> rows;  ///< all rows before an error, on the scale of 0.0 to 255.0
  bool rowsExact = true;  ///< false if the C library may not have rounded a number to the nearest float
};

/// All lines but comments and empty ones. front() throws the status if no line is left.
struct PlainLines {
  explicit PlainLines(const std::string& text) {
    const size_t end = text.find_first_of("\r\n");
    if (end > 251) throw Lumvane::statusLineTooLong;
    const char separator = text[end] == '\r' && text.substr(end + 1, 1) != "\n" ? '\r' : '\n';
    statusAtEnd = text.back() == separator ? Lumvane::statusReadFailed : Lumvane::statusEndOfFile;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line, separator);) {
      line.resize(std::min(line.size(), size_t{65536}));
      if (!line.empty() && line[0] != '#' && line != "\r") lines.push(line);
    }
  }
  const std::string& front() const { return lines.empty() ? throw statusAtEnd : lines.front(); }

  std::queue<std::string> lines;
  Lumvane::LutStatus statusAtEnd;
};

inline bool opensTable(const std::string& token) { return token > "+" && token < ":"; }

template <class Scale>
void readPlainRows(PlainLines& text, PlainTable& table, const Scale& scale) {
  std::array<float, 3> row = {};
  for (int32_t i = 0; i < table.size * table.size * table.size; ++i, text.lines.pop()) {
    std::sscanf(text.front().c_str(), "%f %f %f", &row[0], &row[1], &row[2]);
    // glibc 2.36 rounds hexadecimal subnormal numbers down.
    const bool hex = text.front().find_first_of("xX") != std::string::npos;
    table.rowsExact &= !hex || std::none_of(row.begin(), row.end(), [](float v) { return std::abs(v) < 0x1p-126f; });
    table.rows.push_back({scale(row[0], 0), scale(row[1], 1), scale(row[2], 2)});
  }
}

inline PlainTable readPlainCube(const std::string& file) {
  PlainTable table;
  try {
    float low[3] = {0, 0, 0}, high[3] = {1, 1, 1};
    std::set<std::string> seen;
    PlainLines text(file);
    for (;; text.lines.pop()) {
      std::istringstream words(text.front());
      std::string keyword;
      words >> keyword;
      if (opensTable(keyword)) break;
      const bool first = seen.insert(keyword).second;
      if (first && keyword == "LUT_3D_SIZE") {
        int size = 0;
        words >> size;
        if (size < 2 || size > 256) throw Lumvane::statusSizeInvalid;
        table.size = size;
      }
      if (first && keyword == "DOMAIN_MIN") words >> low[0] >> low[1] >> low[2];
      if (first && keyword == "DOMAIN_MAX") words >> high[0] >> high[1] >> high[2];
      table.hasLines = true;
      if (words.fail()) throw Lumvane::statusReadFailed;
    }
    if (table.size == 0 || table.size > 65) throw Lumvane::statusSizeInvalid;
    if (low[0] >= high[0] || low[1] >= high[1] || low[2] >= high[2]) throw Lumvane::statusDomainInverted;
    readPlainRows(text, table, [&](float value, int c) { return value * ((high[c] - low[c]) * 255.0f); });
  } catch (const Lumvane::LutStatus status) {
    table.status = table.size > 65 ? Lumvane::statusSizeInvalid : status;
  }
  return table;
}

inline PlainTable readPlain3dl(const std::string& file) {
  PlainTable table;
  try {
    PlainLines text(file);
    const auto atMesh = [&] {
      std::string keyword;
      std::istringstream(text.front()) >> keyword;
      return keyword != "3DMESH" && opensTable(keyword);
    };
    while (!atMesh()) text.lines.pop();
    const auto entries = std::count(text.front().begin(), text.front().end(), ' ') + 1;
    text.lines.pop();
    if (entries < 3) throw Lumvane::statusTooFewColumns;
    if (entries > 65) throw Lumvane::statusSizeInvalid;
    table.size = static_cast<int32_t>(entries);
    readPlainRows(text, table, [](float value, int) { return value / 4095.0f * 255.0f; });
  } catch (const Lumvane::LutStatus status) {
    table.status = status;
  }
  return table;
}

}  // namespace fuzz
