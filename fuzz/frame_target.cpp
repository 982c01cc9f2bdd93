// The input is a frame to grade: its shape, the table, the strength and the set of vector instructions, then the values
// that table and pixels are made of.

#include <cmath>
#include <cstring>

#include "fuzz/graded_frame.h"
#include "fuzz/targets.h"

namespace {

// Of what is not there any more it takes zeros.
class Bytes {
 public:
  Bytes(const uint8_t* data, size_t size) : next_(data), end_(data + size) {}
  int32_t take() { return next_ == end_ ? 0 : *next_++; }
  std::vector<uint8_t> rest() const { return {next_, end_}; }

 private:
  const uint8_t* next_;
  const uint8_t* end_;
};

// Packed rows, or rows with something between them, or ones that overlap, to either side.
int32_t stride(int32_t form, int32_t width, int32_t bytes) {
  const int32_t magnitude = form & 2 ? 4 * width + bytes : 1 + bytes * width / 64;
  return (form & 3) == 0 ? 0 : form & 4 ? -magnitude : magnitude;
}

// Single-precision values over and over: bit patterns as they come, or bytes on the scale of colours.
void fillLattice(Lumvane::CubeLut& lut, bool bitPatterns, const std::vector<uint8_t>& bytes) {
  std::vector<float> values;
  for (size_t i = 0; i < bytes.size() && values.size() < 1021; i += bitPatterns ? 4 : 1) {
    uint8_t four[4] = {};
    std::memcpy(four, &bytes[i], std::min<size_t>(4, bytes.size() - i));
    values.push_back(static_cast<float>(four[0]) * 1.25f - 20.5f);
    if (bitPatterns) std::memcpy(&values.back(), four, 4);
  }
  if (values.empty()) values.push_back(0.0f);
  float* const lattice = &lut.lattice[0][0][0][0];
  constexpr size_t kFloats = sizeof lut.lattice / sizeof(float);
  std::copy(values.begin(), values.end(), lattice);
  for (size_t filled = values.size(); filled < kFloats; filled *= 2) {
    std::memcpy(lattice + filled, lattice, std::min(filled, kFloats - filled) * sizeof(float));
  }
  lut.latticeEnd = NAN;  // must not reach a pixel
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Bytes bytes(data, size);
  const auto target = static_cast<size_t>(bytes.take());
  const int32_t forms = bytes.take(), moreForms = bytes.take();
  fuzz::FrameCase test;
  test.width = 1 + bytes.take();
  test.height = 1 + bytes.take() % 80;
  test.dstStride = stride(forms, test.width, bytes.take());
  test.srcStride = stride(forms >> 3, test.width, bytes.take());
  test.strength = bytes.take() - 20;
  test.inPlace = forms >> 6 & 1;
  static auto lut = std::make_unique<Lumvane::CubeLut>();
  lut->latticeSize = 2 + bytes.take() % 64;
  lut->status = Lumvane::statusOk;
  lut->fillInterpolationTables();
  test.pixels = bytes.rest();
  fillLattice(*lut, moreForms & 1, test.pixels);

  // Bands of more pixels than this are written side by side: whose bytes stay where their rows overlap is open then.
  const bool inBands = test.width * test.height > 10000;
  if (inBands && test.dstStride != 0 && std::abs(test.dstStride) < 4 * test.width) return 0;
  fuzz::onTarget(target, [&] { fuzz::checkGradedFrame(lut, test); });
  return 0;
}
