#include "lut/lut_text.h"

#include <locale.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <new>
#include <optional>
#include <string>

#include "lut/decimal.h"

namespace Lumvane {
namespace {

// Bytes that the first line may hold ahead of its terminator, less one.
constexpr size_t kLastFirstLinePosition = 250;

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
  CLocaleScope() : c_(newlocale(LC_ALL_MASK, "C", nullptr)) {
    if (c_ == nullptr) throw std::bad_alloc();
    before_ = uselocale(c_);
  }
  ~CLocaleScope() {
    uselocale(before_);
    freelocale(c_);
  }

 private:
  locale_t c_;
  locale_t before_;
};

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

void scanRow(std::string_view line, float (&values)[3]) {
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
  const std::string copy(line);
  errno = 0;
  std::sscanf(copy.c_str(), "%f %f %f", &values[0], &values[1], &values[2]);
  if (errno == ENOMEM) throw std::bad_alloc();  // the scan of a number of a thousand digits takes memory
}

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
