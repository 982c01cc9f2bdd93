// The input is a frame for clarity, white balance or HDR: the vector instruction set, the effect, its arguments, the
// shape of the frame, then the bytes of its pixels. The export must give the bytes that the plain kernels give.

#include "apply/parallel_hdr_lut.h"
#include "fuzz/checks.h"
#include "fuzz/frames.h"
#include "hdr/hdr_shared.h"
#include "lumvane.h"

namespace {

using namespace Lumvane;
using fuzz::Bytes;
using fuzz::Input;
using fuzz::Plane;

const Bytes kUntouched = {0xA5, 0x5A, 7};
constexpr size_t kBest = 0;

// The last target in the list has no vectors and uses the plain forms.
size_t plainTarget() { return hwy::SupportedAndGeneratedTargets().size() - 1; }

void clarity(size_t target, Input& in, int32_t width, int32_t height) {
  const int32_t flags = in.take(), shorter = in.take(), saturation = in.take() - 128, intensity = in.take() - 50;
  const int32_t srcStride = 4 * width + in.take() % 70, dstStride = flags & 1 ? srcStride : 4 * width + in.take();
  const bool overlapping = flags & 2;
  const auto offset = static_cast<size_t>(overlapping ? (flags & 4 ? 0 : in.take() * in.take()) : 0);
  const Plane src(4 * width, height, srcStride, in.rest());
  Plane dst(4 * width, height, dstStride, kUntouched);
  if (overlapping) {  // src at the start of the memory, dst after `offset` bytes
    const size_t end = offset + dst.bytes.size();
    dst.bytes = src.bytes;
    dst.bytes.resize(std::max(end, src.bytes.size()));
  }
  Bytes expected = dst.bytes;
  const auto render = [&](Bytes& memory, const uint8_t* from) {
    void* const handle = CreateNLEPureCClarity(shorter, 2 * shorter, 0, saturation, intensity);
    fuzz::require(
        NLEPureCClarityProcess(handle, memory.data() + offset, width, height, dstStride, from, 0, 0, srcStride) == 1,
        "clarity renders the frame");
    DestoryNLEPureCClarity(handle);
  };
  fuzz::onTarget(plainTarget(), [&] { render(expected, src.bytes.data()); });
  fuzz::onTarget(target, [&] { render(dst.bytes, overlapping ? dst.bytes.data() : src.bytes.data()); });
  fuzz::require(dst.bytes == expected, "clarity gives the bytes of the plain kernels");
}

void whiteBalance(size_t target, Input& in, int32_t width, int32_t height) {
  const bool inPlace = in.take() & 1;
  const float temperature = in.takeFloat(), tint = in.takeFloat();
  const Plane src(4 * width, height, 0, in.rest());
  Bytes expected(src.bytes.size()), dst = inPlace ? src.bytes : expected;
  const auto render = [&](const Bytes& from, Bytes& to) {
    WhiteBalanceFun(from.data(), to.data(), 0, 0, 0, temperature, tint, width, height);
  };
  fuzz::onTarget(plainTarget(), [&] { render(src.bytes, expected); });
  fuzz::onTarget(target, [&] { render(inPlace ? dst : src.bytes, dst); });
  fuzz::require(dst == expected, "white balance gives the bytes of the plain kernels");
}

// Fills the lattices for HLG and PQ with arbitrary values from -50 to 310, and their caches.
void loadLattices() {
  if (hdrDataLoaded()) return;
  constexpr int32_t kPoints = 17;
  allocateHdrData();
  for (const bool pq : {false, true}) {
    HdrTransferData& data = hdrTransferData(pq);
    uint32_t number = pq;
    for (int i = 0; i < kLatticeStride * kLatticeStride * kLatticeStride * 3; ++i) {
      number = number * 1664525 + 1013904223;
      data.lattice[0][0][i] = static_cast<float>(number >> 16) * (360.0f / 65536) - 50.0f;
    }
    data.latticeSize = kPoints;
    data.ordinary = true;
    float fraction[256];
    int32_t cell[256];
    fillInterpolationTables(kPoints, fraction, cell);
    const parallelCacheCubeLut_ fill(256, {kPoints, fraction, cell, data.lattice}, data.cache);
    fuzz::onTarget(kBest, [&] { fill(cv::Range(0, 1)); });
  }
}

void hdr(size_t target, Input& in, int32_t width, int32_t height) {
  loadLattices();
  const int32_t flags = in.take(), padding = in.take() % 70;
  const bool inPlace = flags & 1;
  const int32_t widths[3] = {width, (width + 1) / 2, (width + 1) / 2},
                heights[3] = {height, (height + 1) / 2, (height + 1) / 2};
  std::vector<Plane> src, dst;
  for (int plane = 0; plane < 3; ++plane) {
    const int32_t stride = (flags & 2 ? -1 : 1) * (widths[plane] + padding);
    src.emplace_back(widths[plane], heights[plane], stride, in.rest());
    dst.emplace_back(widths[plane], heights[plane], stride, inPlace ? in.rest() : kUntouched);
  }
  std::vector<Plane> expected = dst;
  const auto render = [&](std::vector<Plane>& from, std::vector<Plane>& to, int frames) {
    void* const handle = CreateVideoAdjustColor(u"", 0, flags & 4, flags & 8, width, height);
    for (int i = 0; i < frames; ++i) {
      VideoAdjustColorProcess(handle, from[0].row(0), from[1].row(0), from[2].row(0), from[0].step, from[1].step,
                              from[2].step, 0, 0, to[0].row(0), to[1].row(0), to[2].row(0));
    }
    DestroyVideoAdjustColor(handle);
  };
  fuzz::onTarget(plainTarget(), [&] { render(src, expected, 1); });
  // From the third frame on, an object may interpolate in the lattice.
  fuzz::onTarget(target, [&] { render(inPlace ? dst : src, dst, inPlace ? 1 : 3); });
  for (int plane = 0; plane < 3; ++plane) {
    fuzz::require(dst[plane].bytes == expected[plane].bytes, "HDR gives the bytes of the plain kernels");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in(data, size);
  const auto target = static_cast<size_t>(in.take());
  constexpr void (*kEffects[])(size_t, Input&, int32_t, int32_t) = {clarity, whiteBalance, hdr};
  const auto effect = kEffects[in.take() % 3];
  const int32_t width = 1 + in.take(), height = 1 + in.take() % 80;
  effect(target, in, width, height);
  return 0;
}
