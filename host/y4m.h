// Progressive 8-bit 4:2:0 YUV4MPEG2 streams, the usual format for piping raw frames between programs.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <opencv2/core.hpp>
#include <string>

namespace host {

class OutputFile;

/// A frame: planes Y, Cb (U), Cr (V), in this order, chroma (width + 1) / 2 x (height + 1) / 2, rows packed.
struct VideoFrame {
  using Plane = cv::Mat_<uint8_t>;

  VideoFrame(int width, int height)
      : planes{Plane(height, width), Plane((height + 1) / 2, (width + 1) / 2), Plane(planes[1].size())} {}

  Plane planes[3];
};

/// The header of a stream.
struct VideoFormat {
  int width = 0;
  int height = 0;
  std::string rate = "25:1";   ///< frames per second
  std::string aspect = "0:0";  ///< pixel aspect ratio
  std::string range;           ///< "FULL", "LIMITED", or empty if not tagged
};

/// Reads a stream from a file, or from standard input for "-". All members throw an Error with the file's name.
class VideoReader {
 public:
  explicit VideoReader(const std::filesystem::path& path);
  const VideoFormat& format() const { return format_; }

  /// Returns false at the end of the stream.
  bool read(VideoFrame& frame);

  /// Returns the number of remaining frames of this size; 0 if unknown, as for a pipe.
  size_t framesAhead(const VideoFrame& frame);

 private:
  [[noreturn]] void fail(const std::string& reason) const;

  std::filesystem::path path_;
  std::ifstream file_;
  std::istream& stream_;
  VideoFormat format_;
};

/// Write the header of a stream, then its frames.
void writeVideoHeader(OutputFile& file, const VideoFormat& format);
void writeVideoFrame(OutputFile& file, const VideoFrame& frame);

}  // namespace host
