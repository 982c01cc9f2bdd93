// The input is a .3dl file.

#include "fuzz/reader_target.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const fuzz::PlainTable expected = fuzz::readPlain3dl(text);
  auto& lut = fuzz::newTable();
  std::istringstream stream(text);
  fuzz::require(lut->read3dl(stream) == expected.status && lut->status == expected.status, "the status");
  fuzz::require(lut->latticeSize == expected.size, "the size");
  fuzz::checkPoints(expected, [&](int red, int green, int blue) { return lut->lattice[red][green][blue]; });
  if (expected.status != Lumvane::statusOk) return 0;
  fuzz::checkInterpolationTables(lut->latticeSize, lut->fraction, lut->cell);
  fuzz::gradeOnEveryTarget(lut);
  return 0;
}
