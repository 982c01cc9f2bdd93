// The input is a .3dl file.

#include "fuzz/checks.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  return fuzz::checkReader(data, size, &Lumvane::CubeLut::read3dl, fuzz::readPlain3dl,
                           [](const auto& lut, int red, int green, int blue) { return lut.lattice[red][green][blue]; });
}
