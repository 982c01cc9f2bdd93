// Other libraries that process frames, behind one interface. Each has an implementation and a stub, which the build uses
// when the library is not installed.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "bench/picture.h"

namespace bench {

class Peer {
 public:
  virtual ~Peer() = default;
  virtual void run() = 0;                ///< processes the frame once
  virtual Picture output() const = 0;    ///< the result of the last run
  virtual std::string name() const = 0;  ///< library, version, options
};

// The next two functions return null if the library, or a part that the job needs, is missing, and throw
// std::runtime_error if the library rejects the job.

/// FFmpeg filters in command-line syntax, slice-threaded on `threads` threads.
std::unique_ptr<Peer> ffmpegFilters(const std::string& chain, const Picture& src, int threads);
/// OpenColorIO's CPU processor for a LUT file and BGRA pixels, on the calling thread.
std::unique_ptr<Peer> openColorIo(const std::filesystem::path& lut, const Picture& src);

/// Return an empty string if the library is missing.
std::string ffmpegVersion();
std::string openColorIoVersion();

/// Loads a LUT file into a processor for 8-bit pixels. OpenColorIO caches files; the second function clears that cache.
void openColorIoLoad(const std::filesystem::path& lut);
void openColorIoClearCache();

}  // namespace bench
