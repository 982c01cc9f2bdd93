#include "host/pictures.h"

#include <algorithm>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <set>
#include <string>
#include <string_view>

#include "host/files.h"
#include "host/platform.h"

namespace host {
namespace {

namespace fs = std::filesystem;

// The library that decodes makes up what is missing of a JPEG file. One that was cut off has no end marker behind its
// header, a row of segments (ITU-T T.81, annex B): a marker, 0xff and a byte, and a length in two bytes, high byte
// first, that counts itself. A thumbnail, with an end marker of its own, lies inside a segment. Marker 0xda begins the
// picture.
bool isCutOffJpeg(const std::vector<uint8_t>& bytes) {
  if (bytes.size() < 3 || bytes[0] != 0xff || bytes[1] != 0xd8 || bytes[2] != 0xff) return false;
  size_t at = 2;
  while (at + 3 < bytes.size() && bytes[at + 1] != 0xda) {
    at += bytes[at + 1] == 0xff ? 1u : 2u + bytes[at + 2] * 256u + bytes[at + 3];  // 0xff may be repeated
  }
  const std::string_view picture(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  return picture.find("\xff\xd9", at) == std::string_view::npos;
}

cv::Mat overCheckerboard(const cv::Mat& picture) {
  cv::Mat out = picture.clone();
  out.forEach<cv::Vec4b>([](cv::Vec4b& pixel, const int* at) {
    const int board = (at[0] / 16 + at[1] / 16) % 2 == 0 ? 200 : 150;
    for (int c = 0; c < 3; ++c) {
      pixel[c] = static_cast<uint8_t>((pixel[c] * pixel[3] + board * (255 - pixel[3]) + 127) / 255);
    }
    pixel[3] = 255;
  });
  return out;
}

}  // namespace

cv::Mat readPicture(const fs::path& path) {
  const std::string failed = "cannot read picture";
  const auto refuse = [&](const std::string& reason) { throw Error(ExitCode::kInput, failed, path, reason); };
  std::ifstream file = openInput(failed, path);
  const std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (bytes.empty()) refuse("it is empty");
  if (isCutOffJpeg(bytes)) refuse("it is cut off, the file ends ahead of the picture");
  cv::Mat picture;
  try {
    picture = cv::imdecode(bytes, cv::IMREAD_UNCHANGED);
    // Only the colour mode heeds the orientation that cameras note in a file; only the unchanged one keeps alpha.
    if (!picture.empty() && picture.channels() != 4) picture = cv::imdecode(bytes, cv::IMREAD_COLOR);
  } catch (const cv::Exception& error) {
    refuse(isOutOfMemory(error) ? kOutOfMemory : "it is damaged or too large (" + error.err + ")");
  }
  if (picture.empty()) refuse("it is damaged, or no picture of a format that is known here");
  if (picture.depth() == CV_16U) picture.convertTo(picture, CV_8U, 1.0 / 257.0);
  if (picture.depth() != CV_8U) refuse("its pixels have neither 8 nor 16 bits");
  if (picture.channels() == 3) cv::cvtColor(picture, picture, cv::COLOR_BGR2BGRA);
  return picture;
}

void writePicture(const fs::path& path, const cv::Mat& picture) {
  const auto refuse = [&](const std::string& reason) {
    throw Error(ExitCode::kOutput, "cannot write picture", path, reason);
  };
  const std::string extension = lowerCaseExtension(path);
  cv::Mat out = picture, alpha;
  cv::extractChannel(picture, alpha, 3);
  const bool holdsAlpha = extension == ".png" || extension == ".webp" || extension == ".tif" || extension == ".tiff";
  if (!holdsAlpha || cv::countNonZero(alpha != 255) == 0) cv::cvtColor(picture, out, cv::COLOR_BGRA2BGR);
  std::vector<uint8_t> bytes;
  try {
    if (!cv::imencode(extension, out, bytes, {cv::IMWRITE_JPEG_QUALITY, 95})) {
      refuse(extension + " holds no " + std::to_string(out.cols) + " x " + std::to_string(out.rows) + " pixels");
    }
  } catch (const cv::Exception& error) {
    refuse(error.err);
  }
  OutputFile file(path);
  file.write(bytes.data(), bytes.size());
  file.finish();
}

std::vector<fs::path> picturesIn(const fs::path& folder) {
  const std::set<std::string> known = {".png", ".jpg", ".jpeg", ".tif", ".tiff", ".webp", ".bmp"};
  std::error_code error;
  std::vector<fs::path> pictures;
  const fs::directory_iterator entries(folder, error);
  if (error) throw Error(ExitCode::kInput, "cannot read the folder", folder, error.message());
  for (const auto& entry : entries) {
    if (entry.is_regular_file(error) && known.count(lowerCaseExtension(entry.path())) != 0) {
      pictures.push_back(entry.path());
    }
  }
  std::sort(pictures.begin(), pictures.end());
  return pictures;
}

cv::Mat sideBySide(const cv::Mat& left, const cv::Mat& right) {
  cv::Mat out;
  cv::hconcat(overCheckerboard(left), overCheckerboard(right), out);
  cv::line(out, {left.cols, 0}, {left.cols, left.rows - 1}, cv::Scalar::all(255), 2);
  return out;
}

}  // namespace host
