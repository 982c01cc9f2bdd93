#include "hdr/hdr_shared.h"

#include <memory>

#include "base/unload.h"

namespace Lumvane {
namespace {

struct Transfer {
  HdrLattice lattice = nullptr;
  int32_t latticeSize = 0;
  HdrCache cache;
  bool ordinary = false;
};
constinit Transfer* transfers = nullptr;  // HLG and PQ, once asked for

Transfer& transferOf(bool pq) {
  static Transfer* const both = transfers = new Transfer[2];
  return both[pq];
}

// The rows are contiguous and followed by one more float, so that kernels can use the lattice through a LatticeView.
HdrLattice allocateLattice() {
  constexpr size_t kRowFloats = kLatticeStride * 3, kRows = kLatticeStride * kLatticeStride;
  auto points = std::make_unique<float[]>(kRows * kRowFloats + 1);
  auto rows = std::make_unique<float*[]>(kRows);
  auto planes = std::make_unique<float**[]>(kLatticeStride);
  for (size_t i = 0; i < kRows; ++i) rows[i] = &points[i * kRowFloats];
  for (size_t i = 0; i < kLatticeStride; ++i) planes[i] = &rows[i * kLatticeStride];
  points.release(), rows.release();
  return planes.release();
}

void dropLattice(HdrLattice& lattice) {
  if (lattice == nullptr) return;
  delete[] lattice[0][0];
  delete[] lattice[0];
  delete[] lattice;
  lattice = nullptr;
}

LUMVANE_WHEN_UNLOADED void releaseHdrData() {
  if (processExiting || transfers == nullptr) return;
  dropHdrData();
  delete[] transfers;
}

}  // namespace

HdrTransferData hdrTransferData(bool pq) {
  Transfer& transfer = transferOf(pq);
  return {transfer.lattice, transfer.latticeSize, transfer.cache, transfer.ordinary};
}

bool hdrDataLoaded() { return transferOf(false).lattice != nullptr && transferOf(true).lattice != nullptr; }

void allocateHdrData() {
  for (const bool pq : {false, true}) {
    if (transferOf(pq).lattice == nullptr) transferOf(pq).lattice = allocateLattice();
  }
  for (const bool pq : {false, true}) transferOf(pq).cache.resize(kCacheEntries);
}

void dropHdrData() {
  for (const bool pq : {false, true}) {
    Transfer& transfer = transferOf(pq);
    dropLattice(transfer.lattice);
    transfer.latticeSize = 0;
    transfer.ordinary = false;
    HdrCache().swap(transfer.cache);
  }
}

}  // namespace Lumvane
