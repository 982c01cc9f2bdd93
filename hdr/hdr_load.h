// How video colour adjusts are made, and the load of the HDR LUT files inside the first create of the process.
#pragma once

#include <cstdint>
#include <istream>
#include <memory>
#include <string>

#include "hdr/video_adjust_color.h"

namespace Lumvane {

/// Makes an object for frames of this size; the first one of the process loads the LUT files. Null for a null
/// directory. Throws std::bad_alloc when memory runs out, for negative sizes, and for frames whose BGRA bytes do not
/// fit 31 bits.
std::unique_ptr<VideoAdjustColor> createVideoAdjustColor(const char16_t* lutDirectory, int32_t reservedMode,
                                                         int32_t limitedRange, int32_t usePq, int32_t width,
                                                         int32_t height);

/// Reads the .cube file at `path` into the shared data of a transfer function, 0 for HLG and anything else for PQ, and
/// computes its cache. False when the file cannot be opened or something is wrong with it; what was read up to there
/// then stays, and the cache is computed from it, except for sizes above 65.
bool loadHdrCube(VideoAdjustColor& object, const std::u16string& path, int transfer);

/// The same from the start of an open stream.
bool readHdrCube(VideoAdjustColor& object, std::istream& stream, int transfer);

/// The reading alone, without the cache.
bool readHdrLattice(VideoAdjustColor& object, std::istream& stream, int transfer);

/// Computes the cache of a transfer function from its lattice, with the size and the tables of `object`. Leaves it as
/// it is as long as no size is known.
void fillHdrCache(VideoAdjustColor& object, int transfer);

}  // namespace Lumvane
