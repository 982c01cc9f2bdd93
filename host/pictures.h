#pragma once

#include <filesystem>
#include <functional>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace host {

/// Reads a picture as 8-bit BGRA, upright. Throws an Error with the file's name when that fails.
cv::Mat readPicture(const std::filesystem::path& path);

/// Writes a BGRA picture, without its alpha when it is opaque or the format has none. Throws an Error with the
/// file's name when that fails.
void writePicture(const std::filesystem::path& path, const cv::Mat& picture);

/// The pictures in a folder, by their extensions and sorted by name.
std::vector<std::filesystem::path> picturesIn(const std::filesystem::path& folder);

/// Two BGRA pictures of one size side by side, the first on the left, translucent areas over a checkerboard.
cv::Mat sideBySide(const cv::Mat& left, const cv::Mat& right);

/// Makes a BGRA picture of another of the same size.
using Edit = std::function<cv::Mat(const cv::Mat&)>;

/// Takes pictures through `edit`, with a progress bar for several of them. `paths` are pictures or one folder, then the
/// output; with `compare` there is also a picture of before and after. Throws an Error with the file's name when one
/// cannot be read or written.
void editPictures(const std::vector<std::string>& paths, bool compare, const Edit& edit);

}  // namespace host
