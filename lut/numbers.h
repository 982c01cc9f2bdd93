// Parses numbers as the C library's formatted scan and the standard library's streams do in the C locale. C libraries
// differ in unusual forms (incomplete exponents, hexadecimal) and use the decimal point of the process's locale; these
// functions do not, so that a file gives the same table on every system.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Lumvane {

/// True for white space of the C locale.
inline bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// Scans one number like glibc's sscanf with "%f": white space, a sign, then decimal digits with a point and an
/// exponent, hexadecimal ones after "0x", "inf", "infinity" or "nan" in any letter case. An exponent without digits is
/// skipped. The value is the nearest float, infinity or zero if out of range. Returns the end of the number, or null if
/// there is none; `value` is then unchanged.
const char* scanNumber(const char* text, const char* end, float& value);

/// Extracts one number as an input stream does: decimal only. Unlike scanNumber, returns null also for an incomplete
/// exponent and for a number beyond the largest float.
const char* extractNumber(const char* text, const char* end, float& value);

/// Scans up to three numbers from a table row, as sscanf does with "%f %f %f". A column that does not convert and all
/// columns after it leave `values` as it is: a short row repeats the previous one.
void scanRow(std::string_view line, float (&values)[3]);

/// Powers of ten that a double holds exactly.
inline constexpr auto kPowersOfTen = [] {
  std::array<double, 20> powers = {1.0};
  for (size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10.0;
  return powers;
}();

/// The fast path for nearly every number in a file: converts digits, with or without a point and a minus sign, to the
/// nearest float and returns their end. Null for anything else, and for the rare number that it cannot round correctly.
/// The text must be followed by a byte that is not a digit.
///
/// The digits as an integer and the power of ten that divides them are exact in double precision, so the quotient is
/// the double nearest to the number (Clinger, "How to Read Floating Point Numbers Accurately", 1990). The float nearest
/// to that double is also nearest to the number, unless the double is half-way between two floats: then the number may
/// be on either side.
inline const char* scanDecimal(const char* text, float& value) {
  constexpr uint64_t kMaxExact = uint64_t{1} << 53;
  constexpr uint64_t kBelowFloat = (1u << 29) - 1, kHalf = 1u << 28;  // of 52 mantissa bits, a float has 23
  const bool negative = *text == '-';
  if (negative) ++text;
  uint64_t digits = 0;
  const auto scanDigits = [&] {
    const char* const start = text;
    for (unsigned digit; (digit = static_cast<unsigned char>(*text) - unsigned{'0'}) <= 9; ++text) {
      digits = digits * 10 + digit;
    }
    return text - start;
  };
  auto count = scanDigits();
  std::ptrdiff_t behindPoint = 0;
  if (*text == '.') {
    ++text;
    behindPoint = scanDigits();
    count += behindPoint;
  }
  if (count == 0 || count > 19 || digits > kMaxExact) return nullptr;  // 64 bits always hold 19 digits
  const double nearest = static_cast<double>(digits) / kPowersOfTen[static_cast<size_t>(behindPoint)];
  if ((std::bit_cast<uint64_t>(nearest) & kBelowFloat) == kHalf) return nullptr;
  value = static_cast<float>(negative ? -nearest : nearest);
  return text;
}

}  // namespace Lumvane
