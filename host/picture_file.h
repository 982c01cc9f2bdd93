#pragma once

#include <opencv2/core.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// What a picture file says that its decoder does not tell.
struct PictureFile {
  std::string profile;  ///< ICC profile of its colours; empty without one
  bool cutOff = false;  ///< JPEG: it ends before the picture does, and the decoder fills the rest
  int quality = 95;     ///< JPEG: 1 to 100, as the usual encoders count it
  int sampling = 0x11;  ///< JPEG: pixels across and down for one of chroma, a digit each; 0x22 for 4:2:0
};

/// Looks into a JPEG, PNG, TIFF or WebP file. Of what is damaged or of another format, nothing is told.
PictureFile lookInto(std::string_view bytes);

/// Converts 8-bit BGRA pixels, rows packed, from the colours of an ICC profile of RGB to sRGB, which the effects and viewers take
/// pictures for. Profiles that are sRGB, within a step of rounding, and those that cannot be used change nothing.
void convertToSrgb(cv::Mat& bgra, const std::string& profile);

/// A JPEG file of BGR pixels, rows packed; empty when it cannot hold them.
std::vector<uint8_t> encodeJpeg(const cv::Mat& bgr, int quality, int sampling);

}  // namespace host
