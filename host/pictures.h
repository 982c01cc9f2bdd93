#pragma once

#include <filesystem>
#include <functional>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace host {

struct Picture {
  cv::Mat pixels;       ///< 8-bit BGRA, upright, sRGB
  int quality = 95;     ///< of the JPEG file it was read from, or is written to
  int sampling = 0x11;  ///< likewise; see PictureFile
};

/// Reads a picture. Throws an Error with the file's name if that fails.
Picture readPicture(const std::filesystem::path& path);

/// Writes a picture, without alpha if it is opaque. If it is not and the format has no alpha, composites it over white
/// and prints a note. Throws an Error with the file's name if that fails.
void writePicture(const std::filesystem::path& path, const Picture& picture);

/// Returns the extensions of the supported formats, such as ".png".
std::vector<std::string> pictureExtensions();

/// Returns the pictures in a folder, by extension and sorted by name, without hidden files. Prints a note with the
/// number of other files.
std::vector<std::filesystem::path> picturesIn(const std::filesystem::path& folder);

/// Returns two BGRA pictures of the same size side by side, translucent areas over a checkerboard.
cv::Mat sideBySide(const cv::Mat& left, const cv::Mat& right);

/// Returns an edited copy of a BGRA picture, in the same size.
using Edit = std::function<cv::Mat(const cv::Mat&)>;

/// Applies `edit` to pictures, with a progress line if there are several. `paths` are pictures or one folder, then the
/// output; `compare` adds a picture of before and after. `quality` is that of JPEG files, 0 for that of the input.
/// Throws an Error with the file's name if one cannot be read or written.
void editPictures(const std::vector<std::string>& paths, bool compare, int quality, const Edit& edit);

}  // namespace host
