#pragma once

#include <array>
#include <cstddef>

namespace Lumvane {

/// exp(-k / kStepsPerUnit) for k = 0, 1, ..., rounded to double precision.
class ExponentialTable {
 public:
  static constexpr int kStepsPerUnit = 256;
  static constexpr size_t kSize = 8192;  // down to exp(-32); a power of 2, so that masks keep indices in range

  // Repeated multiplication, carried to about 100 bits, so the error stays below each entry's last bit. A C library's
  // exponential cannot be called at compile time.
  constexpr ExponentialTable() {
    constexpr double kFactor = 0x1.fe00ffaabffbcp-1;        // exp(-1 / 256)
    constexpr double kFactorRest = -0x1.c72970f73da82p-56;  // the remainder of kFactor
    double entry = 1.0, rest = 0.0;
    for (double& stored : entries_) {
      stored = entry;
      const double product = entry * kFactor;
      const double error = productError(entry, kFactor, product) + (entry * kFactorRest + rest * kFactor);
      entry = product + error;
      rest = error - (entry - product);
    }
  }

  constexpr const double* data() const { return entries_.data(); }

 private:
  // The rounding error of a product, after Dekker: each factor is split into halves whose products are exact.
  static constexpr double productError(double a, double b, double product) {
    const double upperA = upperHalf(a), lowerA = a - upperA;
    const double upperB = upperHalf(b), lowerB = b - upperB;
    return lowerA * lowerB - (((product - upperA * upperB) - lowerA * upperB) - upperA * lowerB);
  }
  static constexpr double upperHalf(double a) {
    const double scaled = a * 134217729.0;  // 2^27 + 1
    return scaled - (scaled - a);
  }

  std::array<double, kSize> entries_ = {};
};

inline constexpr ExponentialTable kExponentials;

}  // namespace Lumvane
