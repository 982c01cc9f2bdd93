#include "host/y4m.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <iostream>
#include <set>
#include <sstream>

#include "host/files.h"

namespace host {

VideoReader::VideoReader(const std::filesystem::path& path)
    : path_(path),
      file_(path == "-" ? std::ifstream() : openInput("cannot read", path)),
      stream_(path == "-" ? std::cin : file_) {
  char line[4096] = {};
  stream_.getline(line, sizeof line);
  if (stream_.gcount() == 0) fail("it is empty");
  std::istringstream words(line);
  std::string word;
  words >> word;
  if (word != "YUV4MPEG2" || stream_.fail()) fail("it is not a YUV4MPEG2 stream; see \"lumvane-host hdr --help\"");
  while (words >> word) {
    const char tag = word[0];
    const std::string value = word.substr(1);
    if (tag == 'W') std::from_chars(value.data(), value.data() + value.size(), format_.width);
    if (tag == 'H') std::from_chars(value.data(), value.data() + value.size(), format_.height);
    if (tag == 'F') format_.rate = value;
    if (tag == 'A') format_.aspect = value;
    if (tag == 'X' && value.rfind("COLORRANGE=", 0) == 0) format_.range = value.substr(value.find('=') + 1);
    if (tag == 'I' && value != "p" && value != "?") fail("it is interlaced; only progressive video is accepted");
    // 8-bit 4:2:0 with any chroma siting.
    if (tag == 'C' && std::set<std::string>{"420", "420jpeg", "420mpeg2", "420paldv"}.count(value) == 0) {
      fail("its pixel format is C" + value + "; only 8-bit 4:2:0 is accepted");
    }
  }
  constexpr int64_t kMaxPixels = int64_t{1} << 28;  // 16K frames; more means a damaged header
  if (format_.width < 1 || format_.height < 1 || int64_t{format_.width} * format_.height > kMaxPixels) {
    fail("it has no usable size: 1 to " + std::to_string(kMaxPixels) + " pixels are accepted");
  }
}

bool VideoReader::read(VideoFrame& frame) {
  char line[4096] = {};
  stream_.getline(line, sizeof line);
  if (stream_.bad()) fail(std::strerror(errno));
  if (stream_.gcount() == 0) return false;
  if (std::string(line).rfind("FRAME", 0) != 0) fail("it has no frame header where one is expected");
  for (auto& plane : frame.planes) {
    const auto size = static_cast<std::streamsize>(plane.total());
    if (!stream_.read(reinterpret_cast<char*>(plane.data), size)) fail("it ends within a frame");
  }
  return true;
}

size_t VideoReader::framesAhead(const VideoFrame& frame) {
  std::error_code unknown;
  const auto size = std::filesystem::file_size(path_, unknown);
  if (path_ == "-" || unknown) return 0;
  const size_t frameSize = 6 + frame.planes[0].total() + 2 * frame.planes[1].total();
  return (size - static_cast<size_t>(file_.tellg())) / frameSize;
}

void VideoReader::fail(const std::string& reason) const { throw Error(ExitCode::kInput, "cannot read", path_, reason); }

void writeVideoHeader(OutputFile& file, const VideoFormat& format) {
  const std::string header = "YUV4MPEG2 W" + std::to_string(format.width) + " H" + std::to_string(format.height) +
                             " F" + format.rate + " Ip A" + format.aspect +
                             " C420mpeg2 XYSCSS=420MPEG2 XCOLORRANGE=" + format.range + "\n";
  file.write(header.data(), header.size());
}

void writeVideoFrame(OutputFile& file, const VideoFrame& frame) {
  file.write("FRAME\n", 6);
  for (const auto& plane : frame.planes) file.write(plane.data, plane.total());
}

}  // namespace host
