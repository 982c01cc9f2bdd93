#pragma once

#include <array>
#include <bit>
#include <cstdint>

namespace Lumvane {

/// Powers of ten that a double holds exactly.
inline constexpr auto kPowersOfTen = [] {
  std::array<double, 20> powers = {1.0};
  for (size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10.0;
  return powers;
}();

/// Reads digits with or without a point and a minus sign, to the nearest float, and returns where they end. Null for
/// what begins otherwise, and for the rare number that needs more care than this. There must be a byte that is no digit
/// behind the text.
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
