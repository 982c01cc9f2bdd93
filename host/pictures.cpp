#include "host/pictures.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <string>
#include <system_error>

#include "host/fault.h"
#include "host/jpeg_end.h"
#include "host/output_file.h"
#include "host/paths.h"

namespace host {
namespace {

std::string lowerCaseExtension(const std::filesystem::path& path) {
  std::string extension = toName(path.extension());
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension;
}

bool isOpaque(const cv::Mat& picture) {
  cv::Mat alpha;
  cv::extractChannel(picture, alpha, 3);
  double least = 0.0;
  cv::minMaxLoc(alpha, &least);
  return least == 255.0;
}

cv::Mat overCheckerboard(const cv::Mat& picture) {
  constexpr int kSquare = 16;
  cv::Mat out(picture.size(), CV_8UC4, cv::Scalar::all(255));
  for (int y = 0; y < picture.rows; ++y) {
    for (int x = 0; x < picture.cols; ++x) {
      const auto& pixel = picture.at<cv::Vec4b>(y, x);
      const int board = (x / kSquare + y / kSquare) % 2 == 0 ? 200 : 150;
      for (int c = 0; c < 3; ++c) {
        out.at<cv::Vec4b>(y, x)[c] = static_cast<uint8_t>((pixel[c] * pixel[3] + board * (255 - pixel[3]) + 127) / 255);
      }
    }
  }
  return out;
}

std::vector<uint8_t> readBytes(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw Fault(ExitCode::kInput,
                "cannot read picture '" + toName(path) + "': " + std::generic_category().message(errno));
  }
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace

cv::Mat readPicture(const std::filesystem::path& path) {
  const auto refuse = [&](const std::string& reason) {
    throw Fault(ExitCode::kInput, "cannot read picture '" + toName(path) + "': " + reason);
  };
  std::error_code notSeen;
  if (std::filesystem::is_directory(path, notSeen)) refuse("it is a folder");
  const std::vector<uint8_t> bytes = readBytes(path);
  if (bytes.empty()) refuse("it is empty");
  if (isCutOffJpeg(bytes)) refuse("it is cut off, the file ends ahead of the picture");
  cv::Mat picture;
  try {
    picture = cv::imdecode(bytes, cv::IMREAD_UNCHANGED);
    // Only the colour mode heeds the orientation that cameras note in a file; only the unchanged one keeps alpha.
    if (!picture.empty() && picture.channels() != 4) picture = cv::imdecode(bytes, cv::IMREAD_COLOR);
  } catch (const cv::Exception& error) {
    if (error.code == cv::Error::StsNoMem) throw;
    refuse("it is damaged or too large (" + error.err + ")");
  }
  if (picture.empty()) refuse("it is damaged, or no picture of a format that is known here");
  if (picture.depth() == CV_16U) picture.convertTo(picture, CV_8U, 1.0 / 257.0);
  if (picture.depth() != CV_8U) refuse("its pixels have neither 8 nor 16 bits");
  if (picture.channels() == 3) cv::cvtColor(picture, picture, cv::COLOR_BGR2BGRA);
  return picture;
}

void writePicture(const std::filesystem::path& path, const cv::Mat& picture) {
  const std::string extension = lowerCaseExtension(path);
  const bool holdsAlpha = extension == ".png" || extension == ".webp" || extension == ".tif" || extension == ".tiff";
  cv::Mat out = picture;
  if (!holdsAlpha || isOpaque(picture)) cv::cvtColor(picture, out, cv::COLOR_BGRA2BGR);
  const auto refuse = [&](const std::string& reason) {
    throw Fault(ExitCode::kOutput, "cannot write picture '" + toName(path) + "': " + reason);
  };
  if (!cv::haveImageWriter("picture" + extension)) refuse("no format has this extension");
  std::vector<uint8_t> bytes;
  bool encoded = false;
  try {
    encoded = cv::imencode(extension, out, bytes, {cv::IMWRITE_JPEG_QUALITY, 95});
  } catch (const cv::Exception& error) {
    if (error.code == cv::Error::StsNoMem) throw;
  }
  if (!encoded) {
    refuse(extension + " holds no " + std::to_string(out.cols) + " x " + std::to_string(out.rows) +
           " pixels in 8-bit colour");
  }
  OutputFile file(path);
  file.write(bytes.data(), bytes.size());
  file.finish();
}

std::vector<std::filesystem::path> picturesIn(const std::filesystem::path& folder) {
  constexpr std::array kExtensions = {".png", ".jpg", ".jpeg", ".tif", ".tiff", ".webp", ".bmp"};
  std::error_code error;
  const std::filesystem::directory_iterator entries(folder, error);
  if (error) {
    throw Fault(ExitCode::kInput, "cannot read the folder '" + toName(folder) + "': " + error.message());
  }
  std::vector<std::filesystem::path> pictures;
  for (const auto& entry : entries) {
    const std::string extension = lowerCaseExtension(entry.path());
    if (entry.is_regular_file(error) &&
        std::find(kExtensions.begin(), kExtensions.end(), extension) != kExtensions.end()) {
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
