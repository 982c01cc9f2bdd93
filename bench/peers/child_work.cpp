#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <opencv2/core/utility.hpp>
#include <stdexcept>

#include "bench/frames.h"
#include "bench/peers/child.h"
#include "bench/peers/peer.h"
#include "bench/peers/timing.h"
#include "lumvane.h"

namespace bench {
namespace {

std::u16string utf16(const std::string& path) { return std::filesystem::path(path).u16string(); }

void* loadedLut(const std::string& path, int width, int height) {
  void* effect = Create3DLutColorAdjustEffect(utf16(path).c_str(), width, height);
  if (effect == nullptr) throw std::runtime_error("cannot load " + path);
  return effect;
}

/// A host's two frames, both in memory for good.
struct Frames {
  int width, height;
  std::vector<uint8_t> src, dst;
  Frames(int w, int h) : width(w), height(h), src(size_t{4} * w * h), dst(src.size(), 1) {
    for (size_t i = 0; i < src.size(); ++i) src[i] = static_cast<uint8_t>(i % 251);
  }
};

void lut(Frames& f, const std::string& folder) {
  void* effect = loadedLut(folder + "/HDR_HLG.cube", f.width, f.height);
  Lut3DColorAdjustEffectProcess(effect, f.dst.data(), f.width, f.height, 0, f.src.data(), 0, 0, 0, 100);
  Destory3DLutColorAdjustEffect(effect);
}

void clarity(Frames& f, const std::string&) {
  void* effect = CreateNLEPureCClarity(f.width, f.height, 0, 20, 70);
  NLEPureCClarityProcess(effect, f.dst.data(), f.width, f.height, 0, f.src.data(), 0, 0, 0);
  DestoryNLEPureCClarity(effect);
}

void whiteBalance(Frames& f, const std::string&) {
  WhiteBalanceFun(f.src.data(), f.dst.data(), 0, 0, 0, 0.2f, -0.05f, f.width, f.height);
}

void hdr(Frames& f, const std::string& folder) {
  void* effect = CreateVideoAdjustColor(utf16(folder).c_str(), 0, 1, 0, f.width, f.height);
  const int chroma = (f.width + 1) / 2;
  const size_t v = size_t{1} * f.width * f.height, u = 2 * v;  // any place for the planes that is theirs alone
  VideoAdjustColorProcess(effect, &f.src[0], &f.src[v], &f.src[u], f.width, chroma, chroma, 0, 0, &f.dst[0], &f.dst[v],
                          &f.dst[u]);
  DestroyVideoAdjustColor(effect);
}

// The peak of the resident set, in MB. From /proc rather than getrusage, whose peak counts the process that started
// this one, from before it became this program.
double peakMegabytes() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    double kilobytes;
    if (word == "VmHWM:" && status >> kilobytes) return kilobytes * 1024e-6;
  }
  throw std::runtime_error("no VmHWM in /proc/self/status");
}

void memory(const std::string& effect, int width, int height, const std::string& folder) {
  Frames frames(width, height);
  if (effect == "LUT") lut(frames, folder);
  if (effect == "clarity") clarity(frames, folder);
  if (effect == "white balance") whiteBalance(frames, folder);
  if (effect == "HDR") hdr(frames, folder);
  std::printf("%.3f\n", peakMegabytes());
}

// The first frame, and the median of the next ones.
void firstFrame(const std::string& path, int width, int height) {
  void* effect = loadedLut(path, width, height);
  const std::vector<uint8_t> src = photoLikeFrame(width, height);
  std::vector<uint8_t> dst(src.size());
  const auto frame = [&] {
    Lut3DColorAdjustEffectProcess(effect, dst.data(), width, height, 0, src.data(), width, height, 0, 100);
  };
  const double first = millisecondsOf(frame);
  std::vector<double> later;
  for (int i = 0; i < 5; ++i) later.push_back(millisecondsOf(frame));
  Destory3DLutColorAdjustEffect(effect);
  std::printf("%.4f %.4f\n", first, summary(later).milliseconds);
}

void firstHdrCreate(const std::string& folder) {
  void* effect = nullptr;
  const std::u16string path = utf16(folder);
  std::printf("%.4f\n", millisecondsOf([&] { effect = CreateVideoAdjustColor(path.c_str(), 0, 1, 0, 1920, 1080); }));
  DestroyVideoAdjustColor(effect);
}

}  // namespace

void childWork(const std::vector<std::string>& work) {
  const std::string& name = work.at(0);
  cv::setNumThreads(std::stoi(work.at(1)));
  if (name == "memory") return memory(work.at(2), std::stoi(work.at(3)), std::stoi(work.at(4)), work.at(5));
  if (name == "first frame") return firstFrame(work.at(2), std::stoi(work.at(3)), std::stoi(work.at(4)));
  if (name == "first HDR create") return firstHdrCreate(work.at(2));
  if (name == "OpenColorIO load") {
    std::printf("%.4f\n", millisecondsOf([&] { openColorIoLoad(work.at(2)); }));
    return;
  }
  throw std::runtime_error("no such work: " + name);
}

}  // namespace bench
