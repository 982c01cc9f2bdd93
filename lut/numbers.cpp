#include "lut/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

namespace Lumvane {
namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isHexDigit(char c) { return isDigit(c) || (lower(c) >= 'a' && lower(c) <= 'f'); }

const char* skipWord(const char* text, const char* end, std::string_view word) {
  for (const char c : word) {
    if (text == end || lower(*text) != c) return nullptr;
    ++text;
  }
  return text;
}

// Skips digits with at most one point and one exponent, whose mark needs a digit before it.
const char* skipDigits(const char* text, const char* end, char exponentMark) {
  bool digitSeen = false;
  bool pointSeen = false;
  bool markSeen = false;
  for (; text != end; ++text) {
    if (markSeen ? isDigit(*text) : exponentMark == 'p' ? isHexDigit(*text) : isDigit(*text)) {
      digitSeen = true;
    } else if (*text == '.' && !pointSeen) {
      pointSeen = true;
    } else if (lower(*text) == exponentMark && digitSeen && !markSeen) {
      markSeen = pointSeen = true;
    } else if (!((*text == '+' || *text == '-') && markSeen && lower(text[-1]) == exponentMark)) {
      break;
    }
  }
  return text;
}

// For a number out of the range of floats: true if it is too large, judged by the position of its first nonzero digit.
bool isLarge(std::string_view number, std::chars_format format) {
  const bool hex = format == std::chars_format::hex;
  const std::string_view digits = number.substr(0, number.find_first_of(hex ? "Pp" : "Ee"));
  const auto point = static_cast<long long>(std::min(digits.find('.'), digits.size()));
  const auto first = static_cast<long long>(digits.find_first_not_of("0."));
  const long long place = point - first + (first > point);  // of the digit, counted in digits from the point
  long long exponent = 0;
  if (digits.size() < number.size()) {
    const char* const end = number.data() + number.size();
    const char* start = number.data() + digits.size() + 1;
    if (start != end && *start == '+') ++start;
    if (std::from_chars(start, end, exponent).ec == std::errc::result_out_of_range) return *start != '-';
  }
  // No text is long enough for its digits to compensate an exponent of this size.
  exponent = std::clamp(exponent, -(1LL << 60), 1LL << 60);
  return place * (hex ? 4 : 1) + exponent > 0;
}

// Returns the end of the number that begins at `start`, after its sign; null if there is none.
const char* convert(const char* start, const char* end, std::chars_format format, bool negative, float& value) {
  float magnitude = 0.0f;
  const auto [after, error] = std::from_chars(start, end, magnitude, format);
  if (error == std::errc::invalid_argument) return nullptr;
  if (error == std::errc::result_out_of_range) {
    magnitude = isLarge({start, end}, format) ? std::numeric_limits<float>::infinity() : 0.0f;
  }
  value = negative ? -magnitude : magnitude;
  return after;
}

const char* skipSign(const char* text, const char* end, bool& negative) {
  while (text != end && isSpace(*text)) ++text;
  negative = text != end && *text == '-';
  return text != end && (*text == '-' || *text == '+') ? text + 1 : text;
}

}  // namespace

const char* scanNumber(const char* text, const char* end, float& value) {
  bool negative;
  const char* const start = skipSign(text, end, negative);
  const char* after = nullptr;
  if (start != end && (lower(*start) == 'n' || lower(*start) == 'i')) {
    if ((after = skipWord(start, end, "inf")) != nullptr) {
      // If an "i" follows, it must be the whole word.
      if (after != end && lower(*after) == 'i') after = skipWord(start, end, "infinity");
    } else {
      after = skipWord(start, end, "nan");
    }
    if (after == nullptr) return nullptr;
    convert(start, after, std::chars_format::general, negative, value);
    return after;
  }
  if (const char* const digits = skipWord(start, end, "0x")) {
    after = skipDigits(digits, end, 'p');
    if (after == digits) return nullptr;
    if (convert(digits, after, std::chars_format::hex, negative, value) == nullptr) value = negative ? -0.0f : 0.0f;
    return after;
  }
  after = skipDigits(start, end, 'e');
  return convert(start, after, std::chars_format::general, negative, value) != nullptr ? after : nullptr;
}

const char* extractNumber(const char* text, const char* end, float& value) {
  bool negative;
  const char* const start = skipSign(text, end, negative);
  const char* const after = skipDigits(start, end, 'e');
  float extracted;
  if (after == start || convert(start, after, std::chars_format::general, negative, extracted) != after ||
      std::isinf(extracted)) {
    return nullptr;
  }
  value = extracted;
  return after;
}

void scanRow(std::string_view line, float (&values)[3]) {
  const char* const end = std::find(line.begin(), line.end(), '\0');  // where a C string ends
  const char* text = line.data();
  for (float& value : values) {
    text = scanNumber(text, end, value);
    if (text == nullptr) return;
  }
}

}  // namespace Lumvane
