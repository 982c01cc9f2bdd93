// Creates HDR converters. The first one of the process loads the HDR LUT files.
#pragma once

#include <cstdint>
#include <istream>
#include <memory>
#include <string>

#include "hdr/video_adjust_color.h"

namespace Lumvane {

/// Creates an object for frames of this size; the first one of the process loads the LUT files. Null for a null
/// directory. Throws std::bad_alloc when memory or file descriptors run out, for negative sizes, and for frames whose
/// number of BGRA bytes does not fit 31 bits.
std::unique_ptr<VideoAdjustColor> createVideoAdjustColor(const char16_t* lutDirectory, int32_t reservedMode,
                                                         int32_t limitedRange, int32_t usePq, int32_t width,
                                                         int32_t height);

/// Reads the .cube file at `path` into the shared data of a transfer function, 0 for HLG and anything else for PQ, and
/// computes its cache. False if the file cannot be opened or has an error: the rows before the error are kept, and the
/// cache is computed from them, except for sizes above 65.
bool loadHdrCube(VideoAdjustColor& object, const std::u16string& path, int transfer);

/// The same, from an open stream.
bool readHdrCube(VideoAdjustColor& object, std::istream& stream, int transfer);

/// The same without computing the cache.
bool readHdrLattice(VideoAdjustColor& object, std::istream& stream, int transfer);

/// Computes the cache of a transfer function from its lattice, with the size and the tables of `object`. Does nothing
/// if the object has not read a size yet.
void fillHdrCache(VideoAdjustColor& object, int transfer);

}  // namespace Lumvane
