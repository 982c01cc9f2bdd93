#include "host/picture_file.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numeric>
#include <opencv2/imgcodecs.hpp>
#include <stdexcept>

#ifdef LUMVANE_HOST_PROFILES
#include <lcms2.h>
#include <turbojpeg.h>
#include <zlib.h>
#endif

namespace host {
namespace {

using std::operator""sv;

// Functions in this file read with at() and substr(), which throw std::out_of_range if a file is truncated.
size_t number(std::string_view bytes, size_t at, size_t size, bool bigEndian) {
  size_t value = 0;
  for (size_t i = 0; i < size; ++i) {
    value = value << 8 | static_cast<unsigned char>(bytes.at(at + (bigEndian ? i : size - 1 - i)));
  }
  return value;
}

// Estimates the quality, 1 to 100, from a luma quantisation table; at 50 its sum is 3688 (ITU-T T.81, table K.1).
int jpegQuality(std::string_view steps) {
  const auto add = [](double sum, char step) { return sum + static_cast<unsigned char>(step); };
  const double scale = std::accumulate(steps.begin(), steps.end(), 0.0, add) / 36.88;
  return static_cast<int>(std::lround(std::clamp(scale <= 100.0 ? 100.4 - scale / 2 : 5000.0 / scale, 1.0, 100.0)));
}

// The header is a sequence of segments (ITU-T T.81, annex B): a marker, 0xff and a byte, and a two-byte length that
// includes itself. Thumbnails, with their own end marker, lie inside segments. Marker 0xda starts the image data.
void readJpegMetadata(std::string_view bytes, PictureFile& file) {
  file.cutOff = true;
  size_t at = 2;
  for (size_t marker; (marker = number(bytes, at + 1, 1, true)) != 0xda;) {
    if (marker == 0xff) {  // fill byte
      ++at;
      continue;
    }
    const size_t length = std::max<size_t>(number(bytes, at + 2, 2, true), 2);
    const std::string_view segment = bytes.substr(at + 4, length - 2);
    if (marker == 0xe2 && segment.starts_with("ICC_PROFILE\0"sv)) file.profile += segment.substr(14);
    if (marker == 0xdb && segment.size() >= 65 && segment[0] == 0) file.quality = jpegQuality(segment.substr(1, 64));
    if ((marker == 0xc0 || marker == 0xc1 || marker == 0xc2) && segment.size() >= 15) {  // three components
      file.sampling = static_cast<unsigned char>(segment[7]);
    }
    at += 2 + length;
  }
  file.cutOff = bytes.find("\xff\xd9", at) == bytes.npos;
}

// Returns the contents of the named chunk of a PNG or WebP file.
std::string_view findChunk(std::string_view bytes, std::string_view name, bool isPng) {
  for (size_t at = isPng ? 8 : 12;;) {
    const size_t length = number(bytes, isPng ? at : at + 4, 4, isPng);
    if (bytes.substr(isPng ? at + 4 : at, 4) == name) return bytes.substr(at + 8, length);
    at += isPng ? length + 12 : length + length % 2 + 8;
  }
}

#ifdef LUMVANE_HOST_PROFILES
std::string unpacked(std::string_view packed) {
  uLongf size = 1 << 22;  // display and camera profiles have a few KB
  std::string out(size, '\0');
  const auto* const source = reinterpret_cast<const Bytef*>(packed.data());
  const int result = uncompress(reinterpret_cast<Bytef*>(out.data()), &size, source, packed.size());
  out.resize(result == Z_OK ? size : 0);
  return out;
}
#endif

std::string_view tiffProfile(std::string_view bytes) {
  const bool bigEndian = bytes[0] == 'M';
  const size_t directory = number(bytes, 4, 4, bigEndian);
  for (size_t i = 0; i < number(bytes, directory, 2, bigEndian); ++i) {
    const size_t entry = directory + 2 + 12 * i;
    if (number(bytes, entry, 2, bigEndian) != 34675) continue;
    return bytes.substr(number(bytes, entry + 8, 4, bigEndian), number(bytes, entry + 4, 4, bigEndian));
  }
  return "";
}

}  // namespace

PictureFile readMetadata(std::string_view bytes) {
  PictureFile file;
  try {
    if (bytes.starts_with("\xff\xd8\xff")) readJpegMetadata(bytes, file);
    if (bytes.starts_with("RIFF")) file.profile = findChunk(bytes, "ICCP", false);
    if (bytes.starts_with("II*\0"sv) || bytes.starts_with("MM\0*"sv)) file.profile = tiffProfile(bytes);
#ifdef LUMVANE_HOST_PROFILES
    if (bytes.starts_with("\x89PNG")) {  // a name, a zero and the compression method
      const std::string_view part = findChunk(bytes, "iCCP", true);
      file.profile = unpacked(part.substr(part.find('\0') + 2));
    }
#endif
  } catch (const std::out_of_range&) {
    return file;
  }
  return file;
}

#ifdef LUMVANE_HOST_PROFILES
void convertToSrgb(cv::Mat& bgra, const std::string& profile) {
  const auto size = static_cast<cmsUInt32Number>(profile.size());
  const std::shared_ptr<void> source(cmsOpenProfileFromMem(profile.data(), size), cmsCloseProfile);
  const std::shared_ptr<void> target(cmsCreate_sRGBProfile(), cmsCloseProfile);
  if (!source || cmsGetColorSpace(source.get()) != cmsSigRgbData) return;
  const std::unique_ptr<void, decltype(&cmsDeleteTransform)> transform(
      cmsCreateTransform(source.get(), TYPE_BGRA_8, target.get(), TYPE_BGRA_8, INTENT_RELATIVE_COLORIMETRIC,
                         cmsFLAGS_COPY_ALPHA | cmsFLAGS_BLACKPOINTCOMPENSATION),
      cmsDeleteTransform);
  if (!transform) return;
  const auto convert = [&](cv::Mat& pixels) {
    cmsDoTransform(transform.get(), pixels.data, pixels.data, static_cast<cmsUInt32Number>(pixels.total()));
  };
  cv::Mat sample(16, 64, CV_8UC4);
  cv::RNG(1).fill(sample, cv::RNG::UNIFORM, 0, 256);
  const cv::Mat before = sample.clone();
  convert(sample);
  if (cv::norm(before, sample, cv::NORM_INF) > 1.0) convert(bgra);
}

std::vector<uint8_t> encodeJpeg(const cv::Mat& bgr, int quality, int sampling) {
  const int chroma = sampling == 0x22   ? TJSAMP_420
                     : sampling == 0x21 ? TJSAMP_422
                     : sampling == 0x12 ? TJSAMP_440
                     : sampling == 0x41 ? TJSAMP_411
                                        : TJSAMP_444;
  const std::unique_ptr<void, decltype(&tjDestroy)> encoder(tjInitCompress(), tjDestroy);
  unsigned char* bytes = nullptr;
  unsigned long size = 0;
  const int result = tjCompress2(encoder.get(), bgr.data, bgr.cols, 0, bgr.rows, TJPF_BGR, &bytes, &size, chroma,
                                 quality, TJFLAG_ACCURATEDCT);
  const std::unique_ptr<unsigned char, decltype(&tjFree)> owner(bytes, tjFree);
  if (result != 0) return {};
  return {bytes, bytes + size};
}
#else
void convertToSrgb(cv::Mat&, const std::string&) {}

std::vector<uint8_t> encodeJpeg(const cv::Mat& bgr, int quality, int) {
  std::vector<uint8_t> bytes;
  if (!cv::imencode(".jpg", bgr, bytes, {cv::IMWRITE_JPEG_QUALITY, quality})) bytes.clear();
  return bytes;
}
#endif

}  // namespace host
