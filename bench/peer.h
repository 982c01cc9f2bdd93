// Others' work on a frame, behind one interface. Each library comes in two forms, of which the build takes one: with
// the library, or without it, when it is not installed.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "bench/picture.h"

namespace bench {

class Peer {
 public:
  virtual ~Peer() = default;
  virtual void run() = 0;                ///< works on the frame once
  virtual Picture output() const = 0;    ///< what the last run made of it
  virtual std::string name() const = 0;  ///< library, version, options
};

// The first two give null where the library, or something that the work needs of it, is missing, and throw
// std::runtime_error where the library is there and refuses.

/// FFmpeg's filters, as its command line takes them, each sliced over `threads`.
std::unique_ptr<Peer> ffmpegFilters(const std::string& chain, const Picture& src, int threads);
/// OpenColorIO's processor for a LUT file and BGRA pixels, on the calling thread.
std::unique_ptr<Peer> openColorIo(const std::filesystem::path& lut, const Picture& src);

/// Empty where the library is missing.
std::string ffmpegVersion();
std::string openColorIoVersion();

/// A LUT file to a processor for 8-bit pixels. OpenColorIO keeps files that it has read: the second makes it forget
/// them.
void openColorIoLoad(const std::filesystem::path& lut);
void openColorIoForget();

}  // namespace bench
