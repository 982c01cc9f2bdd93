// YUV4MPEG2 streams of 8 bits and 4:2:0, not interlaced, the form in which video programs pipe raw frames to one another.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "host/output_file.h"

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

/// A file to read, closed at the end unless it is the standard input.
struct CloseVideoFile {
  void operator()(FILE* file) const;
};
using VideoFile = std::unique_ptr<FILE, CloseVideoFile>;

/// Reads a stream from a file, or from the standard input for "-". All throw a Fault with the file's name.
class VideoReader {
 public:
  explicit VideoReader(const std::string& path);
  const VideoFormat& format() const { return format_; }

  /// False at the end of the stream.
  bool read(VideoFrame& frame);

  /// How many frames there are to come; 0 when that cannot be told, as for a pipe.
  size_t framesAhead() const;

 private:
  std::string readLine();
  [[noreturn]] void fail(const std::string& what) const;

  std::string path_;
  VideoFile file_;
  VideoFormat format_;
};

/// Writes a stream to a file, or to the standard output for "-". All throw a Fault with the file's name.
class VideoWriter {
 public:
  VideoWriter(const std::string& path, const VideoFormat& format);
  void write(const VideoFrame& frame);

  /// Has to be called at the end: without it there is no file.
  void finish() { file_.finish(); }

 private:
  OutputFile file_;
};

}  // namespace host
