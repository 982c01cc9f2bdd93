#include "host/y4m.h"

#include <charconv>
#include <sstream>
#include <stdexcept>

namespace host {
namespace {

constexpr int kLargestSide = 32768;
constexpr size_t kLongestLine = 4096;

int numberIn(const std::string& text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() ? number : 0;
}

// 8 bits and 4:2:0, wherever the chroma is sited.
bool isTakenColourSpace(const std::string& name) {
  return name == "420" || name == "420jpeg" || name == "420mpeg2" || name == "420paldv";
}

}  // namespace

VideoFrame::VideoFrame(int width, int height) {
  const auto chroma = static_cast<size_t>((width + 1) / 2) * static_cast<size_t>((height + 1) / 2);
  planes[0].resize(static_cast<size_t>(width) * static_cast<size_t>(height));
  planes[1].resize(chroma);
  planes[2].resize(chroma);
}

VideoReader::VideoReader(const std::string& path)
    : path_(path), file_(path == "-" ? stdin : std::fopen(path.c_str(), "rb")) {
  if (file_ == nullptr) fail("cannot be read");
  std::istringstream words(readLine());
  std::string word;
  words >> word;
  if (word != "YUV4MPEG2") fail("is no YUV4MPEG2 stream");
  while (words >> word) {
    const std::string value = word.substr(1);
    switch (word[0]) {
      case 'W':
        format_.width = numberIn(value);
        break;
      case 'H':
        format_.height = numberIn(value);
        break;
      case 'F':
        format_.rate = value;
        break;
      case 'A':
        format_.aspect = value;
        break;
      case 'I':
        format_.interlacing = value;
        break;
      case 'C':
        if (!isTakenColourSpace(value)) fail("has pixels of the form C" + value + "; only 8-bit 4:2:0 is taken");
        break;
      default:
        break;
    }
  }
  if (format_.width < 1 || format_.height < 1 || format_.width > kLargestSide || format_.height > kLargestSide) {
    fail("has no usable size");
  }
}

VideoReader::~VideoReader() {
  if (file_ != nullptr && file_ != stdin) std::fclose(file_);
}

bool VideoReader::read(VideoFrame& frame) {
  const std::string head = readLine();
  if (head.empty() && std::feof(file_)) return false;
  if (head.rfind("FRAME", 0) != 0) fail("has no frame where one should begin");
  for (std::vector<uint8_t>& plane : frame.planes) {
    if (std::fread(plane.data(), 1, plane.size(), file_) != plane.size()) fail("ends within a frame");
  }
  return true;
}

std::string VideoReader::readLine() {
  std::string line;
  for (int c; (c = std::fgetc(file_)) != EOF && c != '\n' && line.size() < kLongestLine;) {
    line += static_cast<char>(c);
  }
  return line;
}

void VideoReader::fail(const std::string& what) const { throw std::runtime_error("'" + path_ + "' " + what); }

VideoWriter::VideoWriter(const std::string& path, const VideoFormat& format, bool limitedRange)
    : path_(path), file_(path == "-" ? stdout : std::fopen(path.c_str(), "wb")) {
  if (file_ == nullptr) fail();
  std::fprintf(file_, "YUV4MPEG2 W%d H%d F%s I%s A%s C420mpeg2 XYSCSS=420MPEG2 XCOLORRANGE=%s\n", format.width,
               format.height, format.rate.c_str(), format.interlacing.c_str(), format.aspect.c_str(),
               limitedRange ? "LIMITED" : "FULL");
}

VideoWriter::~VideoWriter() {
  if (file_ != nullptr && file_ != stdout) std::fclose(file_);
}

void VideoWriter::write(const VideoFrame& frame) {
  std::fputs("FRAME\n", file_);
  for (const std::vector<uint8_t>& plane : frame.planes) {
    if (std::fwrite(plane.data(), 1, plane.size(), file_) != plane.size()) fail();
  }
}

void VideoWriter::close() {
  const bool written = std::fflush(file_) == 0 && std::ferror(file_) == 0;
  const bool closed = file_ == stdout || std::fclose(file_) == 0;
  file_ = nullptr;
  if (!written || !closed) fail();
}

void VideoWriter::fail() const { throw std::runtime_error("cannot write video '" + path_ + "'"); }

}  // namespace host
