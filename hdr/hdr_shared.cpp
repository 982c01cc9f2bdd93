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
bool hlgOrdinary = false;
bool pqOrdinary = false;

// The rows lie one behind the other, with a float behind the last of them, so that kernels can take the lattice for a
// LatticeView.
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

}  // namespace

HdrTransferData hdrTransferData(bool pq) {
  if (pq) return {pqLattice, pqLatticeSize, pqCache, pqOrdinary};
  return {hlgLattice, hlgLatticeSize, hlgCache, hlgOrdinary};
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
  hlgOrdinary = pqOrdinary = false;
  HdrCache().swap(hlgCache);
  HdrCache().swap(pqCache);
}

}  // namespace Lumvane
