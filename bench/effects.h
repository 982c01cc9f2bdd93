// The effects as hosts call them.
#pragma once

#include <filesystem>
#include <functional>

#include "bench/picture.h"
#include "bench/timing.h"

namespace bench {

inline constexpr int kSaturation = 20;
inline constexpr int kIntensity = 70;

/// An effect for frames of one size; destroyed with its last copy.
using Effect = std::function<void(const Picture& src, Picture& dst)>;

/// Effects on BGRA frames. lutEffect throws std::runtime_error if it cannot load the file.
Effect lutEffect(const std::filesystem::path& file, const Size& size, int strength = 100);
Effect clarityEffect(const Size& size);
Effect whiteBalanceEffect(const Size& size);
/// HDR on limited-range HLG frames in 4:2:0. The first call of the process loads the files in `luts`; later calls
/// ignore the folder.
Effect hdrEffect(const std::filesystem::path& luts, const Size& size);

/// A side that runs the effect with this many OpenCV threads. `src` and `dst` must outlive it.
Side frames(const Effect& effect, const Picture& src, Picture& dst, int threads = 1);

}  // namespace bench
