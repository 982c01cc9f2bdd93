// The input is a YUV4MPEG2 stream. The reader returns its frames unchanged, or throws an Error.

#include "fuzz/checks.h"
#include "host/files.h"
#include "host/y4m.h"
#include "tests/inputs.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  static const test::TemporaryFile file("stream.y4m", "");
  const std::filesystem::path path = file.utf16();
  std::ofstream(path, std::ios::binary) << text;
  size_t frames = 0;
  try {
    host::VideoReader reader(path);
    const host::VideoFormat& format = reader.format();
    fuzz::require(format.width > 0 && format.height > 0, "the size is positive");
    if (int64_t{format.width} * format.height > 1 << 20) return 0;
    host::VideoFrame frame(format.width, format.height);
    const size_t claimed = reader.framesAhead(frame);
    size_t at = std::min(text.find('\n'), size - 1) + 1;  // without frames the header may lack its newline
    for (; reader.read(frame); ++frames) {
      at = text.find('\n', at) + 1;
      for (const auto& plane : frame.planes) {
        fuzz::require(text.compare(at, plane.total(), reinterpret_cast<const char*>(plane.data), plane.total()) == 0,
                      "frames have the bytes of the stream");
        at += plane.total();
      }
    }
    fuzz::require(at == size && frames <= claimed, "the whole stream is read");
  } catch (const host::Error&) {
  }
  fuzz::result = [frames] { return std::to_string(frames) + " frames"; };
  return 0;
}
