#include "host/y4m.h"

#include <charconv>
#include <sstream>
#include <stdexcept>

namespace host {
namespace {

constexpr int64_t kMostPixels = int64_t{1} << 28;  // 16K frames; what is beyond is a damaged header
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

void CloseVideoFile::operator()(FILE* file) const {
  if (file != stdin && file != stdout) std::fclose(file);
}

VideoReader::VideoReader(const std::string& path)
    : path_(path), file_(path == "-" ? stdin : std::fopen(path.c_str(), "rb")) {
  if (!file_) fail("cannot be read");
  std::istringstream words(readLine());
  std::string word;
  words >> word;
  if (word != "YUV4MPEG2") fail("is no YUV4MPEG2 stream");
  while (words >> word) {
    const char tag = word[0];
    const std::string value = word.substr(1);
    if (tag == 'W') format_.width = numberIn(value);
    if (tag == 'H') format_.height = numberIn(value);
    if (tag == 'F') format_.rate = value;
    if (tag == 'A') format_.aspect = value;
    if (tag == 'X' && value.rfind("COLORRANGE=", 0) == 0) format_.range = value.substr(value.find('=') + 1);
    if (tag == 'I' && value != "p" && value != "?") fail("is interlaced; only whole frames are taken");
    if (tag == 'C' && !isTakenColourSpace(value)) {
      fail("has pixels of the form C" + value + "; only 8-bit 4:2:0 is taken");
    }
  }
  if (format_.width < 1 || format_.height < 1 || int64_t{format_.width} * format_.height > kMostPixels) {
    fail("has no usable size");
  }
}

bool VideoReader::read(VideoFrame& frame) {
  const std::string head = readLine();
  if (head.empty() && std::feof(file_.get())) return false;
  if (head.rfind("FRAME", 0) != 0) fail("has no frame where one should begin");
  for (std::vector<uint8_t>& plane : frame.planes) {
    if (std::fread(plane.data(), 1, plane.size(), file_.get()) != plane.size()) fail("ends within a frame");
  }
  return true;
}

std::string VideoReader::readLine() {
  std::string line;
  for (int c; (c = std::fgetc(file_.get())) != EOF && c != '\n' && line.size() < kLongestLine;) {
    line += static_cast<char>(c);
  }
  return line;
}

void VideoReader::fail(const std::string& what) const { throw std::runtime_error("'" + path_ + "' " + what); }

VideoWriter::VideoWriter(const std::string& path, const VideoFormat& format)
    : path_(path), file_(path == "-" ? stdout : std::fopen(path.c_str(), "wb")) {
  if (!file_) fail();
  std::fprintf(file_.get(), "YUV4MPEG2 W%d H%d F%s Ip A%s C420mpeg2 XYSCSS=420MPEG2 XCOLORRANGE=%s\n", format.width,
               format.height, format.rate.c_str(), format.aspect.c_str(), format.range.c_str());
}

void VideoWriter::write(const VideoFrame& frame) {
  std::fputs("FRAME\n", file_.get());
  for (const std::vector<uint8_t>& plane : frame.planes) {
    if (std::fwrite(plane.data(), 1, plane.size(), file_.get()) != plane.size()) fail();
  }
}

void VideoWriter::close() {
  const bool written = std::fflush(file_.get()) == 0 && std::ferror(file_.get()) == 0;
  FILE* file = file_.release();
  const bool closed = file == stdout || std::fclose(file) == 0;
  if (!written || !closed) fail();
}

void VideoWriter::fail() const { throw std::runtime_error("cannot write video '" + path_ + "'"); }

}  // namespace host
