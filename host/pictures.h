#pragma once

#include <filesystem>
#include <opencv2/core.hpp>
#include <vector>

namespace host {

/// Reads a picture as 8-bit BGRA, upright. Throws a Fault with the file's name when that fails.
cv::Mat readPicture(const std::filesystem::path& path);

/// Writes a BGRA picture, without its alpha when it is opaque or the format has none. Throws a Fault with the
/// file's name when that fails.
void writePicture(const std::filesystem::path& path, const cv::Mat& picture);

/// The pictures in a folder, by their extensions and sorted by name.
std::vector<std::filesystem::path> picturesIn(const std::filesystem::path& folder);

/// Two BGRA pictures of one size side by side, the first on the left, translucent areas over a checkerboard.
cv::Mat sideBySide(const cv::Mat& left, const cv::Mat& right);

}  // namespace host
