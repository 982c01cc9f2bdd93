// YUV4MPEG2 streams of 8 bits and 4:2:0, not interlaced, the form in which video programs pipe raw frames to one another.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace host {

/// One frame: planes Y, Cb (U), Cr (V), in this order, the latter two (width + 1) / 2 x (height + 1) / 2, rows packed.
struct VideoFrame {
  std::vector<uint8_t> planes[3];

  VideoFrame(int width, int height);
};

/// What the head of a stream says.
struct VideoFormat {
  int width = 0;
  int height = 0;
  std::string rate = "25:1";   ///< frames per second
  std::string aspect = "0:0";  ///< of a pixel
  std::string range;           ///< "FULL", "LIMITED", or empty when the stream does not say
};

/// An open file, closed at the end unless it is a standard stream.
struct CloseVideoFile {
  void operator()(FILE* file) const;
};
using VideoFile = std::unique_ptr<FILE, CloseVideoFile>;

/// Reads a stream from a file, or from the standard input for "-". All throw std::runtime_error with the file's name.
class VideoReader {
 public:
  explicit VideoReader(const std::string& path);
  const VideoFormat& format() const { return format_; }

  /// False at the end of the stream.
  bool read(VideoFrame& frame);

 private:
  std::string readLine();
  [[noreturn]] void fail(const std::string& what) const;

  std::string path_;
  VideoFile file_;
  VideoFormat format_;
};

/// Writes a stream to a file, or to the standard output for "-". All throw std::runtime_error with the file's name.
class VideoWriter {
 public:
  VideoWriter(const std::string& path, const VideoFormat& format);
  void write(const VideoFrame& frame);

  /// Has to be called at the end: it tells whether everything was written.
  void close();

 private:
  [[noreturn]] void fail() const;

  std::string path_;
  VideoFile file_;
};

}  // namespace host
