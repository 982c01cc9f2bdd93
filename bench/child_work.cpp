#include <cstdio>
#include <fstream>
#include <opencv2/core/utility.hpp>
#include <stdexcept>

#include "bench/child.h"
#include "bench/effects.h"
#include "bench/frames.h"
#include "bench/peer.h"

namespace bench {
namespace {

// A frame with planes that serve both as BGRA and as 4:2:0.
Picture hostFrame(const Size& size) {
  Picture out = {"", size.width, size.height, std::vector<std::vector<uint8_t>>(3)};
  const size_t pixels = size_t{1} * size.width * size.height;
  out.planes[0].resize(4 * pixels);
  for (size_t i = 0; i < 4 * pixels; ++i) out.planes[0][i] = static_cast<uint8_t>(i % 251);
  out.planes[1].assign((pixels + 3) / 4, 64);
  out.planes[2].assign((pixels + 3) / 4, 192);
  return out;
}

// Peak resident set in MB. From /proc rather than getrusage, whose peak includes the process that started this one.
double peakMegabytes() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    double kilobytes;
    if (word == "VmHWM:" && status >> kilobytes) return kilobytes * 1024e-6;
  }
  throw std::runtime_error("no VmHWM in /proc/self/status");
}

void memory(const std::string& effect, const std::filesystem::path& luts, const Size& size) {
  const Picture src = hostFrame(size);
  Picture dst = src;
  if (effect == "LUT") lutEffect(luts / "HDR_HLG.cube", size)(src, dst);
  if (effect == "clarity") clarityEffect(size)(src, dst);
  if (effect == "white balance") whiteBalanceEffect(size)(src, dst);
  if (effect == "HDR") hdrEffect(luts, size)(src, dst);
  std::printf("%.3f\n", peakMegabytes());
}

// Prints the time of the first frame and the median of the next ones, in ms.
void firstFrame(const std::filesystem::path& file, const Size& size) {
  const Effect lut = lutEffect(file, size);
  const Picture src = photoLikeFrame(size);
  Picture dst = src;
  const auto frame = [&] { return millisecondsOf([&] { lut(src, dst); }); };
  const double first = frame();
  std::vector<double> later;
  for (int i = 0; i < 5; ++i) later.push_back(frame());
  std::printf("%.4f %.4f\n", first, summary(later).milliseconds);
}

}  // namespace

void childWork(const std::vector<std::string>& words) {
  const std::string& work = words.at(0);
  cv::setNumThreads(std::stoi(words.at(1)));
  const std::filesystem::path path = words.at(2);
  const Size size = {"", std::stoi(words.at(3)), std::stoi(words.at(4))};
  if (work == "memory") return memory(words.at(5), path, size);
  if (work == "first frame") return firstFrame(path, size);
  Effect hdr;  // destroying it is not timed
  if (work == "first HDR create") {
    std::printf("%.4f\n", millisecondsOf([&] { hdr = hdrEffect(path, size); }));
  } else if (work == "OpenColorIO load") {
    std::printf("%.4f\n", millisecondsOf([&] { openColorIoLoad(path); }));
  } else {
    throw std::runtime_error("unknown job: " + work);
  }
}

}  // namespace bench
