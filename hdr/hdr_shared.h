// The LUT data that all HDR converters of the process share. It is loaded once, by the first of them, then only read
// until the library is unloaded.
#pragma once

#include <cstdint>
#include <vector>

#include "apply/hdr_cache.h"

namespace Lumvane {

/// The data of one transfer function.
struct HdrTransferData {
  HdrLattice lattice = nullptr;  ///< null before the load
  int32_t latticeSize = 0;    ///< points per axis according to the file's header; 0 without a file, above 65 if refused
  HdrCache cache;             ///< empty before the load, then one entry for each colour
  bool ordinary = false;      ///< kernels may use the lattice instead of the cache: see HdrLatticeRow
  std::vector<float> points;  ///< the memory of `lattice`
  std::vector<float*> rows;
  std::vector<float**> planes;
};

/// Returns the data of PQ or of HLG.
HdrTransferData& hdrTransferData(bool pq);

/// True once both lattices exist: the only sign that the files have been loaded.
bool hdrDataLoaded();

/// Allocates missing lattices and caches, filled with zeros.
void allocateHdrData();

/// Returns the data to its state before the load.
void dropHdrData();

}  // namespace Lumvane
