#include "host/pictures.h"

#include <algorithm>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <set>
#include <string>

#include "host/files.h"
#include "host/picture_file.h"
#include "host/platform.h"

namespace host {
namespace {

namespace fs = std::filesystem;

// Composites a picture over a checkerboard of two greys.
cv::Mat overCheckerboard(const cv::Mat& picture, int light, int dark) {
  cv::Mat out = picture.clone();
  out.forEach<cv::Vec4b>([light, dark](cv::Vec4b& pixel, const int* at) {
    const int board = (at[0] / 16 + at[1] / 16) % 2 == 0 ? light : dark;
    for (int c = 0; c < 3; ++c) {
      pixel[c] = static_cast<uint8_t>((pixel[c] * pixel[3] + board * (255 - pixel[3]) + 127) / 255);
    }
    pixel[3] = 255;
  });
  return out;
}

}  // namespace

Picture readPicture(const fs::path& path) {
  const std::string failed = "cannot read picture";
  const auto refuse = [&](const std::string& reason) { throw Error(ExitCode::kInput, failed, path, reason); };
  std::ifstream file = openInput(failed, path);
  if (std::set<std::string>{".mp4", ".m4v", ".mov", ".mkv", ".webm", ".avi", ".mxf", ".y4m"}.count(
          lowerCaseExtension(path)) != 0) {
    refuse("it is a video; use the plug-ins for those: see docs/plugins.md");
  }
  const std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (bytes.empty()) refuse("it is empty");
  const PictureFile metadata = readMetadata({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  if (metadata.cutOff) refuse("it is cut off: the file ends before the picture does");
  cv::Mat picture;
  try {
    picture = cv::imdecode(bytes, cv::IMREAD_UNCHANGED);
    // Only IMREAD_COLOR applies the EXIF orientation; only IMREAD_UNCHANGED keeps alpha.
    if (!picture.empty() && picture.channels() != 4) picture = cv::imdecode(bytes, cv::IMREAD_COLOR);
  } catch (const cv::Exception& error) {
    refuse(isOutOfMemory(error) ? kOutOfMemory : "it is damaged or too large (" + error.err + ")");
  }
  if (picture.empty()) refuse("it is damaged, or its format is not supported");
  if (picture.depth() == CV_16U) picture.convertTo(picture, CV_8U, 1.0 / 257.0);
  if (picture.depth() != CV_8U) refuse("its pixels have neither 8 nor 16 bits");
  if (picture.channels() == 3) cv::cvtColor(picture, picture, cv::COLOR_BGR2BGRA);
  if (!metadata.profile.empty()) convertToSrgb(picture, metadata.profile);
  return {picture, metadata.quality, metadata.sampling};
}

void writePicture(const fs::path& path, const Picture& picture) {
  const auto refuse = [&](const std::string& reason) {
    throw Error(ExitCode::kOutput, "cannot write picture", path, reason);
  };
  const std::string extension = lowerCaseExtension(path);
  cv::Mat out = picture.pixels, alpha;
  cv::extractChannel(out, alpha, 3);
  const bool isOpaque = cv::countNonZero(alpha != 255) == 0;
  const bool holdsAlpha = extension == ".png" || extension == ".webp" || extension == ".tif" || extension == ".tiff";
  if (!holdsAlpha && !isOpaque) {
    note(extension + " cannot hold alpha; composited over white: '" + toName(path) + "'");
    out = overCheckerboard(out, 255, 255);
  }
  if (!holdsAlpha || isOpaque) cv::cvtColor(out, out, cv::COLOR_BGRA2BGR);
  std::vector<uint8_t> bytes;
  try {
    if (extension == ".jpg" || extension == ".jpeg") {
      bytes = encodeJpeg(out, picture.quality, picture.sampling);
    } else if (!cv::imencode(extension, out, bytes)) {
      bytes.clear();
    }
  } catch (const cv::Exception& error) {
    refuse(error.err);
  }
  if (bytes.empty()) {
    refuse(extension + " cannot hold " + std::to_string(out.cols) + " x " + std::to_string(out.rows) + " pixels");
  }
  OutputFile file(path);
  file.write(bytes.data(), bytes.size());
  file.finish();
}

std::vector<std::string> pictureExtensions() {
  std::vector<std::string> known = {".png", ".jpg", ".jpeg", ".tif", ".tiff", ".webp", ".bmp", ".ppm", ".pgm"};
  std::erase_if(known, [](const std::string& extension) { return !cv::haveImageWriter(extension); });
  return known;
}

std::vector<fs::path> picturesIn(const fs::path& folder) {
  const std::vector<std::string> known = pictureExtensions();
  std::error_code error;
  std::vector<fs::path> pictures;
  size_t others = 0;
  const fs::directory_iterator entries(folder, error);
  if (error) throw Error(ExitCode::kInput, "cannot read folder", folder, error.message());
  for (const auto& entry : entries) {
    // Hidden files belong to systems and programs, such as ._photo.jpg beside photo.jpg.
    if (!entry.is_regular_file(error) || toName(entry.path().filename())[0] == '.') continue;
    if (std::count(known.begin(), known.end(), lowerCaseExtension(entry.path())) != 0) {
      pictures.push_back(entry.path());
    } else {
      ++others;
    }
  }
  if (others != 0) {
    note(std::to_string(others) + (others == 1 ? " other file" : " other files") + " left out of '" + toName(folder) +
         "'");
  }
  std::sort(pictures.begin(), pictures.end());
  return pictures;
}

cv::Mat sideBySide(const cv::Mat& left, const cv::Mat& right) {
  cv::Mat out;
  cv::hconcat(overCheckerboard(left, 200, 150), overCheckerboard(right, 200, 150), out);
  cv::line(out, {left.cols, 0}, {left.cols, left.rows - 1}, cv::Scalar::all(255), 2);
  return out;
}

}  // namespace host
