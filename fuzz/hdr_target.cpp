// The input is a .cube file for HDR. Its last byte also sets the points per axis that the object has read before, in the
// low 7 bits, and the transfer, in the high bit.

#include <sstream>

#include "apply/parallel_hdr_lut.h"
#include "fuzz/checks.h"
#include "hdr/hdr_load.h"
#include "hdr/hdr_shared.h"

using namespace Lumvane;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const uint8_t last = size == 0 ? 0 : data[size - 1];
  const int32_t before = last & 127;
  const int transfer = last >> 7;
  const fuzz::PlainTable expected = fuzz::readPlainCube(text);
  const int32_t expectedSize = expected.size == 0 ? before : expected.size;

  allocateHdrData();
  HdrTransferData& shared = hdrTransferData(transfer != 0);
  constexpr int kRows = kLatticeStride * kLatticeStride, kFloats = kLatticeStride * 3;
  const auto row = [&shared](int i) { return shared.lattice[i / kLatticeStride][i % kLatticeStride]; };
  shared.latticeSize = 0;
  for (int i = 0; i < kRows; ++i) std::fill_n(row(i), kFloats, 0.0f);
  VideoAdjustColor object;
  object.latticeSize = before;
  object.loadOk = true;
  if (before >= 2 && before <= kLatticeStride) fillInterpolationTables(before, object.fraction, object.cell);
  std::istringstream stream(text);
  const bool ok = readHdrLattice(object, stream, transfer);
  fuzz::result = [ok, ownSize = object.latticeSize, sharedSize = shared.latticeSize, row] {
    uint64_t digest = fuzz::digestOf(row(0), kFloats);
    for (int i = 1; i < kRows; ++i) digest = fuzz::digestOf(row(i), kFloats, digest);
    return (std::ostringstream() << ok << ' ' << ownSize << ' ' << sharedSize << ' ' << std::hex << digest).str();
  };
  const bool refused = expectedSize > kLatticeStride;
  fuzz::require(ok == (expected.status == statusOk && !refused) && ok == object.loadOk, "the result is as expected");
  fuzz::require(object.latticeSize == expectedSize, "the size is as expected");
  fuzz::require(shared.latticeSize == (expected.hasLines ? expectedSize : 0), "the shared size is as expected");
  if (refused) return 0;
  fuzz::checkPoints(expected, [&](int b, int g, int r) { return shared.lattice[r][g] + b * 3; });
  fuzz::require(!ok || object.cell[255] == expectedSize - 1, "the tables match the size");
  if (object.latticeSize == 0) return 0;

  // The colours of one red take a hundred times as long as a small file, so they are checked for one input in 8, with
  // one vector instruction set. A hash of the bytes selects input, red and set, so that the fuzzer cannot steer them.
  const uint64_t hash = fuzz::digestOf(data, size);
  if (hash >> 13 & 7) return 0;
  const auto red = static_cast<uint8_t>(hash >> 24);
  const HdrLatticeView view = {object.latticeSize, object.fraction, object.cell, shared.lattice};
  const parallelCacheCubeLut_ fill(1, view, shared.cache);
  fuzz::onTarget(hash >> 16, [&] { fill(cv::Range(red, red + 1)); });
  for (uint32_t i = 0; i < 65536; i += 61) {
    const auto green = static_cast<uint8_t>(i >> 8), blue = static_cast<uint8_t>(i);
    const RGB8 expectedColour = hdrColour(view, red, green, blue);
    const RGB8& found = shared.cache[cacheEntry(red, green, blue)];
    fuzz::require(std::equal(found.component, found.component + 3, expectedColour.component),
                  "the cache has the colour of the lattice");
  }
  return 0;
}
