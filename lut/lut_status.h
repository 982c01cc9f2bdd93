#pragma once

#include <cstdint>

namespace Lumvane {

/// The result of loading a LUT file or processing a frame. These codes never leave the library.
enum LutStatus : int32_t {
  statusOk = 0,
  statusUnloaded = 1,         ///< no reader has run yet
  statusReadFailed = 10,      ///< a line could not be read, or a header line did not convert
  statusEndOfFile = 12,       ///< the file ended where another line was required
  statusLineTooLong = 13,     ///< no line terminator within the first 252 bytes
  statusDomainInverted = 22,  ///< a domain minimum is not below its maximum
  statusSizeInvalid = 23,     ///< the lattice size is missing or out of range
  statusTooFewColumns = 24,   ///< fewer than 3 mesh entries
};

}  // namespace Lumvane
