#pragma once

#include <opencv2/core.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// Metadata of a picture file that its decoder does not return.
struct PictureFile {
  std::string profile;  ///< ICC profile; empty if none
  bool cutOff = false;  ///< JPEG: truncated; the decoder fills the rest
  int quality = 95;     ///< JPEG: 1 to 100, on the scale of common encoders
  int sampling = 0x11;  ///< JPEG: luma sampling factors, horizontal and vertical digit; 0x22 for 4:2:0
};

/// Reads the metadata of a JPEG, PNG, TIFF or WebP file. What is damaged or of another format keeps its default.
PictureFile readMetadata(std::string_view bytes);

/// Converts 8-bit BGRA pixels, rows packed, from an RGB ICC profile to sRGB, which the effects and viewers assume.
/// Profiles equal to sRGB, within a rounding step, and unusable ones change nothing.
void convertToSrgb(cv::Mat& bgra, const std::string& profile);

/// Returns a JPEG file of BGR pixels, rows packed; empty if the format cannot hold them.
std::vector<uint8_t> encodeJpeg(const cv::Mat& bgr, int quality, int sampling);

}  // namespace host
