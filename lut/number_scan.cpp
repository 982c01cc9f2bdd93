#include "lut/number_scan.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

#include "lut/lut_text.h"

namespace Lumvane {
namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isHexDigit(char c) { return isDigit(c) || (lower(c) >= 'a' && lower(c) <= 'f'); }

// A number without its sign, from `start` to `end`.
struct Magnitude {
  const char* start;
  const char* end;
  std::chars_format format;

  char exponentMark() const { return format == std::chars_format::hex ? 'p' : 'e'; }
};

const char* skipWord(const char* text, const char* end, std::string_view word) {
  for (const char c : word) {
    if (text == end || lower(*text) != c) return nullptr;
    ++text;
  }
  return text;
}

// Behind digits with one point and one exponent, whose mark takes a digit in front of it.
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

// Of a number beyond the range of floats, whether it is too large: from the place of its first digit that is no zero.
bool isLarge(const Magnitude& number) {
  const bool hex = number.format == std::chars_format::hex;
  long long place = 0;  // of the digit, counted from the point in digits
  bool pointSeen = false;
  bool found = false;
  const char* p = number.start;
  for (; p != number.end && lower(*p) != number.exponentMark(); ++p) {
    if (*p == '.') {
      pointSeen = true;
      continue;
    }
    found = found || *p != '0';
    if (!pointSeen && found) ++place;
    if (pointSeen && !found) --place;
  }
  if (p == number.end) return place > 0;
  ++p;
  if (p != number.end && *p == '+') ++p;
  long long exponent = 0;
  const auto [behind, error] = std::from_chars(p, number.end, exponent);
  if (error == std::errc::result_out_of_range) return *p != '-';
  // No text is so long that its digits make up for an exponent of this size.
  exponent = std::clamp(exponent, -(1LL << 60), 1LL << 60);
  return place * (hex ? 4 : 1) + exponent > 0;
}

// Where the number ends that `number` begins with; null when there is none.
const char* convert(const Magnitude& number, bool negative, float& value) {
  float magnitude = 0.0f;
  const auto [behind, error] = std::from_chars(number.start, number.end, magnitude, number.format);
  if (error == std::errc::invalid_argument) return nullptr;
  if (error == std::errc::result_out_of_range) {
    magnitude = isLarge(number) ? std::numeric_limits<float>::infinity() : 0.0f;
  }
  value = negative ? -magnitude : magnitude;
  return behind;
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
  const char* behind = nullptr;
  if (start != end && (lower(*start) == 'n' || lower(*start) == 'i')) {
    if ((behind = skipWord(start, end, "inf")) != nullptr) {
      // One letter more, and it has to be the whole word.
      if (behind != end && lower(*behind) == 'i') behind = skipWord(start, end, "infinity");
    } else {
      behind = skipWord(start, end, "nan");
    }
    if (behind == nullptr) return nullptr;
    convert({start, behind, std::chars_format::general}, negative, value);
    return behind;
  }
  if (const char* const digits = skipWord(start, end, "0x")) {
    behind = skipDigits(digits, end, 'p');
    if (behind == digits) return nullptr;
    if (convert({digits, behind, std::chars_format::hex}, negative, value) == nullptr) value = negative ? -0.0f : 0.0f;
    return behind;
  }
  behind = skipDigits(start, end, 'e');
  return convert({start, behind, std::chars_format::general}, negative, value) != nullptr ? behind : nullptr;
}

const char* extractNumber(const char* text, const char* end, float& value) {
  bool negative;
  const char* const start = skipSign(text, end, negative);
  const char* const behind = skipDigits(start, end, 'e');
  float extracted;
  if (behind == start || convert({start, behind, std::chars_format::general}, negative, extracted) != behind ||
      std::isinf(extracted)) {
    return nullptr;
  }
  value = extracted;
  return behind;
}

}  // namespace Lumvane
