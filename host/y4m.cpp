#include "host/y4m.h"

#include <cerrno>
#include <charconv>
#include <sstream>
#include <system_error>

#include "host/fault.h"
#include "host/paths.h"
#include "host/platform.h"

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
  if (file != stdin) std::fclose(file);
}

VideoReader::VideoReader(const std::string& path)
    : path_(path), file_(path == "-" ? stdin : openFile(toPath(path), "rb")) {
  if (file_.get() == stdin) makeBinary(stdin);
  if (!file_) fail("cannot be read: " + std::generic_category().message(errno));
  std::istringstream words(readLine());
  std::string word;
  words >> word;
  if (word.empty() && std::feof(file_.get())) fail("is empty");
  if (word != "YUV4MPEG2") fail("is no YUV4MPEG2 stream; \"lumvane-host hdr --help\" shows how FFmpeg makes one");
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
    fail("has no usable size: 1 to " + std::to_string(kMostPixels) + " pixels are taken");
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
  if (std::ferror(file_.get())) fail("cannot be read: " + std::generic_category().message(errno));
  return line;
}

void VideoReader::fail(const std::string& what) const {
  throw Fault(ExitCode::kInput, (path_ == "-" ? "the standard input" : "'" + path_ + "'") + " " + what);
}

size_t VideoReader::framesAhead() const {
  std::error_code error;
  const auto size = std::filesystem::file_size(toPath(path_), error);
  const long position = std::ftell(file_.get());
  if (path_ == "-" || error || position < 0 || size < static_cast<uintmax_t>(position)) return 0;
  const VideoFrame frame(format_.width, format_.height);
  const size_t frameSize = 6 + frame.planes[0].size() + 2 * frame.planes[1].size();
  return (size - static_cast<uintmax_t>(position)) / frameSize;
}

VideoWriter::VideoWriter(const std::string& path, const VideoFormat& format) : file_(toPath(path)) {
  const std::string head = "YUV4MPEG2 W" + std::to_string(format.width) + " H" + std::to_string(format.height) + " F" +
                           format.rate + " Ip A" + format.aspect +
                           " C420mpeg2 XYSCSS=420MPEG2 XCOLORRANGE=" + format.range + "\n";
  file_.write(head.data(), head.size());
}

void VideoWriter::write(const VideoFrame& frame) {
  file_.write("FRAME\n", 6);
  for (const std::vector<uint8_t>& plane : frame.planes) file_.write(plane.data(), plane.size());
}

}  // namespace host
