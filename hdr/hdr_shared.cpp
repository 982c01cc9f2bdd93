#include "hdr/hdr_shared.h"

#include "base/unload.h"

namespace Lumvane {
namespace {

constinit HdrTransferData* transfers = nullptr;  // HLG and PQ, once asked for

// The rows are contiguous and followed by one more float, so that kernels can use the lattice through a LatticeView.
void allocateLattice(HdrTransferData& data) {
  constexpr size_t kRowFloats = kLatticeStride * 3, kRows = kLatticeStride * kLatticeStride;
  data.points.resize(kRows * kRowFloats + 1);
  data.rows.resize(kRows);
  data.planes.resize(kLatticeStride);
  for (size_t i = 0; i < kRows; ++i) data.rows[i] = &data.points[i * kRowFloats];
  for (size_t i = 0; i < kLatticeStride; ++i) data.planes[i] = &data.rows[i * kLatticeStride];
  data.lattice = data.planes.data();
}

LUMVANE_WHEN_UNLOADED void releaseHdrData() {
  if (!processExiting) delete[] transfers;
}

}  // namespace

HdrTransferData& hdrTransferData(bool pq) {
  static HdrTransferData* const both = transfers = new HdrTransferData[2];
  return both[pq];
}

bool hdrDataLoaded() { return hdrTransferData(false).lattice != nullptr && hdrTransferData(true).lattice != nullptr; }

void allocateHdrData() {
  for (const bool pq : {false, true}) {
    if (hdrTransferData(pq).lattice == nullptr) allocateLattice(hdrTransferData(pq));
  }
  for (const bool pq : {false, true}) hdrTransferData(pq).cache.resize(kCacheEntries);
}

void dropHdrData() {
  for (const bool pq : {false, true}) hdrTransferData(pq) = {};
}

}  // namespace Lumvane
