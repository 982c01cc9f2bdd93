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

/// Three effects on BGRA. The first throws std::runtime_error if it cannot load its file.
Effect lutEffect(const std::filesystem::path& file, const Size& size, int strength = 100);
Effect clarityEffect(const Size& size);
Effect whiteBalanceEffect(const Size& size);
/// HDR of limited range with an HLG transfer, in 4:2:0. The first one of the process loads the files in `luts`; later
/// ones accept any folder.
Effect hdrEffect(const std::filesystem::path& luts, const Size& size);

/// Runs the effect from `src` to `dst`, which must outlive it, with this number of OpenCV's threads.
Side frames(const Effect& effect, const Picture& src, Picture& dst, int threads = 1);

}  // namespace bench
