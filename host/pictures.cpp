#include "host/pictures.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>
#include <system_error>

namespace host {
namespace {

std::string lowerCaseExtension(const std::filesystem::path& path) {
  std::string extension = path.extension().string();
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

}  // namespace

cv::Mat readPicture(const std::filesystem::path& path) {
  if (!std::filesystem::exists(path)) throw std::runtime_error("there is no picture '" + path.string() + "'");
  const std::runtime_error unreadable("cannot read picture '" + path.string() + "'");
  if (!std::filesystem::is_regular_file(path)) throw unreadable;
  cv::Mat picture = cv::imread(path.string(), cv::IMREAD_UNCHANGED);
  // Only the colour mode heeds the orientation that cameras note in a file; only the unchanged one keeps alpha.
  if (picture.channels() != 4) picture = cv::imread(path.string(), cv::IMREAD_COLOR);
  if (picture.empty()) throw unreadable;
  if (picture.depth() == CV_16U) picture.convertTo(picture, CV_8U, 1.0 / 257.0);
  if (picture.depth() != CV_8U) throw unreadable;
  if (picture.channels() == 3) cv::cvtColor(picture, picture, cv::COLOR_BGR2BGRA);
  return picture;
}

void writePicture(const std::filesystem::path& path, const cv::Mat& picture) {
  const std::string extension = lowerCaseExtension(path);
  const bool holdsAlpha = extension == ".png" || extension == ".webp" || extension == ".tif" || extension == ".tiff";
  cv::Mat out = picture;
  if (!holdsAlpha || isOpaque(picture)) cv::cvtColor(picture, out, cv::COLOR_BGRA2BGR);
  std::vector<uint8_t> bytes;
  try {
    cv::imencode(extension, out, bytes, {cv::IMWRITE_JPEG_QUALITY, 95});
  } catch (const cv::Exception&) {
    throw std::runtime_error("cannot write picture '" + path.string() + "': no format has this extension");
  }
  // Under another name first, so that whatever goes wrong leaves no half picture and no older one lost.
  std::filesystem::path unfinished = path;
  unfinished += ".part";
  std::ofstream file(unfinished, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  file.close();
  std::error_code error;
  if (file) std::filesystem::rename(unfinished, path, error);
  if (!file || error) {
    std::filesystem::remove(unfinished, error);
    throw std::runtime_error("cannot write picture '" + path.string() + "'");
  }
}

std::vector<std::filesystem::path> picturesIn(const std::filesystem::path& folder) {
  constexpr std::array kExtensions = {".png", ".jpg", ".jpeg", ".tif", ".tiff", ".webp", ".bmp"};
  std::vector<std::filesystem::path> pictures;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::string extension = lowerCaseExtension(entry.path());
    if (entry.is_regular_file() && std::find(kExtensions.begin(), kExtensions.end(), extension) != kExtensions.end()) {
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
