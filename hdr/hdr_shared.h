// The LUT data that all video colour adjusts of the process share. It is loaded once, by the first of them, and only
// read from then on, until the library is unloaded.
#pragma once

#include <cstdint>

#include "apply/hdr_cache.h"

namespace Lumvane {

/// What belongs to one transfer function.
struct HdrTransferData {
  HdrLattice& lattice;   ///< null before the load
  int32_t& latticeSize;  ///< points per axis as the file's header says; 0 without a file, above 65 when refused
  HdrCache& cache;       ///< empty before the load, then one entry for each colour
  bool& ordinary;        ///< kernels may take the lattice in place of the cache: see HdrLatticeRow
};

/// The data of PQ, or of HLG.
HdrTransferData hdrTransferData(bool pq);

/// True once both lattices exist: the only record that the load has happened.
bool hdrDataLoaded();

/// Allocates the lattices and the caches that are missing, filled with zeros.
void allocateHdrData();

/// Takes the data back to its state before the load.
void dropHdrData();

}  // namespace Lumvane
