// Numbers as the C library's formatted scan and the standard library's streams read them in the C locale. C libraries
// differ in odd forms (half an exponent, hexadecimal) and take the decimal point from the locale of the process: these
// functions do not, so that a file gives the same table on every system.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Lumvane {

/// White space as the C locale has it.
inline bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// Scans one number as sscanf does with "%f", as glibc has it: white space, a sign, then decimal digits with a point and
/// an exponent, hexadecimal ones behind "0x", "inf", "infinity" or "nan" in any letter case. An exponent without digits
/// is passed over. The value is the nearest float: beyond the range infinity or zero. Returns the end of what was taken,
/// null when that is no number; `value` is then as before.
const char* scanNumber(const char* text, const char* end, float& value);

/// Extracts one number as an input stream does: decimal only. Null, unlike in a scan, also for half an exponent and for
/// what is beyond the largest float.
const char* extractNumber(const char* text, const char* end, float& value);

/// Scans up to three numbers from a table row, as a C scan with "%f %f %f" does. A column that does not convert, and
/// all behind it, keep what `values` held: a short row repeats the one before it.
void scanRow(std::string_view line, float (&values)[3]);

/// Powers of ten that a double holds exactly.
inline constexpr auto kPowersOfTen = [] {
  std::array<double, 20> powers = {1.0};
  for (size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10.0;
  return powers;
}();

/// What nearly every number of a file is, without the care for the others: reads digits with or without a point and a
/// minus sign, to the nearest float, and returns where they end. Null for what begins otherwise, and for the rare number
/// that needs more care than this. There must be a byte that is no digit behind the text.
///
/// The digits as a whole number and the power of ten by which they are divided are exact in double precision, so that
/// the quotient is the double nearest to the number (Clinger, "How to Read Floating Point Numbers Accurately", 1990). The
/// float nearest to that is also nearest to the number, unless the double lies half-way between two floats: then it may
/// stand for a number to either side.
inline const char* scanDecimal(const char* text, float& value) {
  constexpr uint64_t kMostExact = uint64_t{1} << 53;
  constexpr uint64_t kBelowFloat = (1u << 29) - 1, kHalf = 1u << 28;  // of the 52 bits of a double, a float has 23
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
  if (count == 0 || count > 19 || digits > kMostExact) return nullptr;  // 19: what 64 bits hold for certain
  const double nearest = static_cast<double>(digits) / kPowersOfTen[static_cast<size_t>(behindPoint)];
  if ((std::bit_cast<uint64_t>(nearest) & kBelowFloat) == kHalf) return nullptr;
  value = static_cast<float>(negative ? -nearest : nearest);
  return text;
}

}  // namespace Lumvane
