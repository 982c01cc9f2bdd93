// YUV4MPEG2 streams of 8 bits and 4:2:0, not interlaced: the form in which programs pipe raw frames to one another.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <opencv2/core.hpp>
#include <string>

namespace host {

class OutputFile;

/// One frame: planes Y, Cb (U), Cr (V), in this order, the latter two (width + 1) / 2 x (height + 1) / 2, rows packed.
struct VideoFrame {
  using Plane = cv::Mat_<uint8_t>;

  VideoFrame(int width, int height)
      : planes{Plane(height, width), Plane((height + 1) / 2, (width + 1) / 2), Plane(planes[1].size())} {}

  Plane planes[3];
};

/// What the head of a stream says.
struct VideoFormat {
  int width = 0;
  int height = 0;
  std::string rate = "25:1";   ///< frames per second
  std::string aspect = "0:0";  ///< of a pixel
  std::string range;           ///< "FULL", "LIMITED", or empty when the stream does not say
};

/// Reads a stream from a file, or from the standard input for "-". All throw an Error with the file's name.
class VideoReader {
 public:
  explicit VideoReader(const std::filesystem::path& path);
  const VideoFormat& format() const { return format_; }

  /// False at the end of the stream.
  bool read(VideoFrame& frame);

  /// How many frames like this there are to come; 0 when that cannot be told, as for a pipe.
  size_t framesAhead(const VideoFrame& frame);

 private:
  [[noreturn]] void fail(const std::string& reason) const;

  std::filesystem::path path_;
  std::ifstream file_;
  std::istream& stream_;
  VideoFormat format_;
};

/// Writes the header of a stream, and its frames after it.
void writeVideoHead(OutputFile& file, const VideoFormat& format);
void writeVideoFrame(OutputFile& file, const VideoFrame& frame);

}  // namespace host
