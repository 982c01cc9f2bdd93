#pragma once

#include <filesystem>
#include <functional>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace host {

struct Picture {
  cv::Mat pixels;       ///< 8-bit BGRA, upright, sRGB
  int quality = 95;     ///< of the JPEG file that it is from, or is to become
  int sampling = 0x11;  ///< of that file's chroma; see PictureFile
};

/// Reads a picture. Throws an Error with the file's name when that fails.
Picture readPicture(const std::filesystem::path& path);

/// Writes a picture, without its alpha when it is opaque; laid on white, with a word, when it is not and the format has
/// no alpha. Throws an Error with the file's name when that fails.
void writePicture(const std::filesystem::path& path, const Picture& picture);

/// Of the formats that are read and written, as ".png".
std::vector<std::string> pictureExtensions();

/// The pictures in a folder, by their extensions and sorted by name; hidden files are left out. Tells how many others
/// there are.
std::vector<std::filesystem::path> picturesIn(const std::filesystem::path& folder);

/// Two BGRA pictures of one size side by side, the first on the left, translucent areas over a checkerboard.
cv::Mat sideBySide(const cv::Mat& left, const cv::Mat& right);

/// Makes a BGRA picture of another of the same size.
using Edit = std::function<cv::Mat(const cv::Mat&)>;

/// Takes pictures through `edit`, with a progress bar for several of them. `paths` are pictures or one folder, then the
/// output; with `compare` there is also a picture of before and after. `quality` is that of JPEG files, 0 for that of the
/// input. Throws an Error with the file's name when one
/// cannot be read or written.
void editPictures(const std::vector<std::string>& paths, bool compare, int quality, const Edit& edit);

}  // namespace host
