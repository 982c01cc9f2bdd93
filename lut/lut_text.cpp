#include "lut/lut_text.h"

#include <locale.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <optional>

namespace Lumvane {
namespace {

// Bytes that the first line may hold ahead of its terminator, less one.
constexpr int kLastFirstLinePosition = 250;

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Reads a number in plain decimal form, complete and with white space or the end of the text behind it, and moves
// `text` behind it. Returns nothing for any other form: those are the C library's to judge.
std::optional<float> scanPlainDecimal(const char*& text, const char* end) {
  const char* p = text;
  while (p != end && isSpace(*p)) ++p;
  const char* digits = p;
  if (digits != end && (*digits == '+' || *digits == '-')) ++digits;
  if (digits == end || !(isDigit(*digits) || *digits == '.')) return std::nullopt;
  float value;
  const auto [behind, error] = std::from_chars(*p == '+' ? digits : p, end, value);
  if (error != std::errc() || !(behind == end || isSpace(*behind) || *behind == '\0')) return std::nullopt;
  text = behind;
  return value;
}

// While one of these lives, the calling thread converts numbers as in the C locale.
class CLocaleScope {
 public:
  CLocaleScope() : c_(newlocale(LC_ALL_MASK, "C", nullptr)), before_(uselocale(c_)) {}
  ~CLocaleScope() {
    uselocale(before_);
    freelocale(c_);
  }

 private:
  locale_t c_;
  locale_t before_;
};

}  // namespace

char detectLineSeparator(std::istream& stream, LutStatus& status) {
  char separator = '\n';
  for (int position = 0;; ++position) {
    const int byte = stream.get();
    if (byte == '\n') break;
    if (byte == '\r') {
      if (stream.get() != '\n') separator = '\r';
      break;
    }
    if (position > kLastFirstLinePosition) {
      status = statusLineTooLong;
      break;
    }
  }
  stream.clear();
  stream.seekg(0);
  return separator;
}

std::string readLine(std::istream& stream, char separator, LutStatus& status) {
  std::string line;
  while (line.empty() || line[0] == '#' || line == "\r") {
    if (stream.eof()) {
      status = statusEndOfFile;
      break;
    }
    std::getline(stream, line, separator);
    if (stream.fail()) {
      status = statusReadFailed;
      break;
    }
  }
  return line;
}

std::string firstToken(const std::string& line) {
  const auto start = std::find_if_not(line.begin(), line.end(), isSpace);
  return {start, std::find_if(start, line.end(), isSpace)};
}

bool beginsTable(const std::string& token) { return token > "+" && token < ":"; }

void scanRow(const std::string& line, float (&values)[3]) {
  const char* text = line.data();
  const char* const end = text + line.size();
  const auto red = scanPlainDecimal(text, end);
  const auto green = red ? scanPlainDecimal(text, end) : std::nullopt;
  const auto blue = green ? scanPlainDecimal(text, end) : std::nullopt;
  if (blue) {
    values[0] = *red;
    values[1] = *green;
    values[2] = *blue;
    return;
  }
  const CLocaleScope cLocale;
  std::sscanf(line.c_str(), "%f %f %f", &values[0], &values[1], &values[2]);
}

}  // namespace Lumvane
