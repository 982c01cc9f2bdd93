#include "hdr/hdr_shared.h"

#include <memory>

#include "base/unload.h"

namespace Lumvane {
namespace {

struct Transfer {
  HdrLattice lattice = nullptr;
  int32_t latticeSize = 0;
  HdrCache cache;
};
constinit Lasting<Transfer[2]> transfers;  // HLG and PQ

struct FreeLattice {
  void operator()(HdrLattice lattice) const {
    for (int x = 0; x < kLatticeStride && lattice[x] != nullptr; ++x) {
      for (int y = 0; y < kLatticeStride; ++y) delete[] lattice[x][y];
      delete[] lattice[x];
    }
    delete[] lattice;
  }
};

HdrLattice allocateLattice() {
  std::unique_ptr<float**[], FreeLattice> lattice(new float** [kLatticeStride] {});
  for (int x = 0; x < kLatticeStride; ++x) {
    lattice[x] = new float* [kLatticeStride] {};
    for (int y = 0; y < kLatticeStride; ++y) lattice[x][y] = new float[kLatticeStride * 3]{};
  }
  return lattice.release();
}

LUMVANE_WHEN_UNLOADED void releaseHdrData() {
  if (!processEnds) dropHdrData();
}

}  // namespace

HdrTransferData hdrTransferData(bool pq) {
  Transfer& transfer = transfers.object[pq];
  return {transfer.lattice, transfer.latticeSize, transfer.cache};
}

bool hdrDataLoaded() { return transfers.object[0].lattice != nullptr && transfers.object[1].lattice != nullptr; }

void allocateHdrData() {
  for (Transfer& transfer : transfers.object) {
    if (transfer.lattice == nullptr) transfer.lattice = allocateLattice();
  }
  for (Transfer& transfer : transfers.object) transfer.cache.resize(kCacheEntries);
}

void dropHdrData() {
  for (Transfer& transfer : transfers.object) {
    if (transfer.lattice != nullptr) FreeLattice()(transfer.lattice);
    transfer.lattice = nullptr;
    transfer.latticeSize = 0;
    HdrCache().swap(transfer.cache);
  }
}

}  // namespace Lumvane
