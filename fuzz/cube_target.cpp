// The input is a .cube file.

#include "fuzz/checks.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  return fuzz::checkReader(data, size, &Lumvane::CubeLut::readCube, fuzz::readPlainCube,
                           [](const auto& lut, int blue, int green, int red) { return lut.lattice[red][green][blue]; });
}
