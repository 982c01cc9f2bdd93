#include "lut/lut_text.h"

#include <algorithm>

#include "lut/numbers.h"

namespace Lumvane {
namespace {

// Bytes that the first line may hold ahead of its terminator, less one.
constexpr size_t kLastFirstLinePosition = 250;

}  // namespace

char detectLineSeparator(LineBuffer& text, LutStatus& status) {
  for (size_t position = 0;; ++position) {
    const int byte = text.peek(position);
    if (byte == '\n') return '\n';
    if (byte == '\r') return text.peek(position + 1) == '\n' ? '\n' : '\r';
    if (position > kLastFirstLinePosition) break;
  }
  status = statusLineTooLong;
  return '\n';
}

std::string_view readLine(LineBuffer& text, char separator, LutStatus& status) {
  std::string_view line;
  while (line.empty() || line[0] == '#' || line == "\r") {
    switch (text.takeLine(separator, line)) {
      case LineBuffer::Result::kLine:
        break;
      case LineBuffer::Result::kFailed:
        status = statusReadFailed;
        return line;
      case LineBuffer::Result::kEnded:
        status = statusEndOfFile;
        return line;
    }
  }
  return line;
}

std::string_view firstToken(std::string_view line) {
  const auto start = std::find_if_not(line.begin(), line.end(), isSpace);
  return {start, std::find_if(start, line.end(), isSpace)};
}

bool beginsTable(std::string_view token) { return token > "+" && token < ":"; }

bool takePlainRow(LineBuffer& text, char separator, float (&values)[3]) {
  const char* p = text.ahead();
  const auto skipBlanks = [&] {
    while (*p == ' ' || *p == '\t') ++p;
  };
  float row[3];
  for (float& value : row) {
    skipBlanks();
    p = scanDecimal(p, value);
    if (p == nullptr) return false;
  }
  skipBlanks();
  if (*p == '\r' && separator == '\n') ++p;
  if (*p != separator) return false;
  text.moveTo(p + 1);
  std::copy_n(row, 3, values);
  return true;
}

}  // namespace Lumvane
