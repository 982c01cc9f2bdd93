#include "hdr/hdr_shared.h"

#include <memory>

namespace Lumvane {
namespace {

// Both lattices stay until the process ends, the caches until the library is unloaded.
HdrLattice hlgLattice = nullptr;
HdrLattice pqLattice = nullptr;
HdrCache hlgCache;
HdrCache pqCache;
int32_t hlgLatticeSize = 0;
int32_t pqLatticeSize = 0;

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

void dropLattice(HdrLattice& lattice) {
  if (lattice != nullptr) FreeLattice()(lattice);
  lattice = nullptr;
}

}  // namespace

HdrTransferData hdrTransferData(bool pq) {
  if (pq) return {pqLattice, pqLatticeSize, pqCache};
  return {hlgLattice, hlgLatticeSize, hlgCache};
}

bool hdrDataLoaded() { return hlgLattice != nullptr && pqLattice != nullptr; }

void allocateHdrData() {
  if (hlgLattice == nullptr) hlgLattice = allocateLattice();
  if (pqLattice == nullptr) pqLattice = allocateLattice();
  hlgCache.resize(kCacheEntries);
  pqCache.resize(kCacheEntries);
}

void dropHdrData() {
  dropLattice(hlgLattice);
  dropLattice(pqLattice);
  hlgLatticeSize = pqLatticeSize = 0;
  HdrCache().swap(hlgCache);
  HdrCache().swap(pqCache);
}

}  // namespace Lumvane
