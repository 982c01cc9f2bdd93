#pragma once

#include <cstdint>
#include <vector>

namespace host {

/// True for the bytes of a JPEG file that end ahead of the picture's end. The library that decodes them does not tell:
/// it makes up what is missing. Other files are none of its business: false.
bool isCutOffJpeg(const std::vector<uint8_t>& bytes);

}  // namespace host
