// Compares the vector forms of all row kernels, on every target, with their plain forms, bit for bit.

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstring>
#include <memory>
#include <sstream>

#include "apply/grade_kernels.h"
#include "apply/hdr_kernels.h"
#include "clarity/detail_kernels.h"
#include "clarity/hsv_kernels.h"
#include "clarity/pyramid_kernels.h"
#include "hdr/yv12_kernels.h"
#include "lut/blend_table.h"
#include "lut/cube_lut.h"
#include "tests/inputs.h"
#include "tests/targets.h"
#include "whitebalance/white_balance_kernel.h"

namespace Lumvane {
namespace {

using test::Bytes;

// All groups of kernels: the plain ones, or those of the current target.
struct Tables {
  GradeKernels grade = gradeKernels();
  HdrKernels hdr = hdrKernels();
  HsvKernels hsv = hsvKernels();
  DetailKernels details = detailKernels();
  PyramidKernels pyramid = pyramidKernels();
  Yv12ToRgbKernels toRgb = yv12ToRgbKernels();
  Yv12FromRgbKernels fromRgb = yv12FromRgbKernels();
  WhiteBalanceKernels whiteBalance = whiteBalanceKernels();
};
const Tables kPlain = {plainGradeKernels,   plainHdrKernels,       plainHsvKernels,         plainDetailKernels,
                       plainPyramidKernels, plainYv12ToRgbKernels, plainYv12FromRgbKernels, plainWhiteBalanceKernels};

// The rows passed in one call.
struct Rows {
  const uint8_t* in[5];
  uint8_t* out[4];
  const float* floats(int i) const { return reinterpret_cast<const float*>(in[i]); }
  float* outFloats(int i) const { return reinterpret_cast<float*>(out[i]); }
};

enum Kind { kBgra, kFloats, kBytes, kChroma, kHalfFloats, kTwiceFloats };
size_t sizeOf(Kind kind, size_t pixels) {
  switch (kind) {
    case kBytes:
      return pixels;
    case kChroma:
      return (pixels + 1) / 2;
    case kHalfFloats:
      return 4 * ((pixels + 1) / 2);
    case kTwiceFloats:
      return 8 * pixels;
    default:
      return 4 * pixels;
  }
}

// A kernel, its inputs and outputs; one number determines its other arguments.
struct Kernel {
  const char* name;
  std::vector<Kind> in, out;
  std::vector<float> parameters;
  void (*call)(const Tables& of, const Rows& rows, size_t pixels, float parameter);
  bool inPlace = true;  // the first output row may be the first input row
  size_t minPixels = 0;
};

template <test::Values values = test::Values::kWild>
const LatticeView& lattice() {
  static const auto lut = [] {
    auto table = std::make_unique<CubeLut>();
    std::istringstream text(test::randomCube(33, values));
    table->readCube(text);
    return table;
  }();
  static const LatticeView view = lut->view();
  return view;
}

const BlendTables& blends() {
  static const auto table = acquireTable();
  static const BlendTables tables = {table->multiply, table->mix};
  return tables;
}

const RGB8* cache() {
  static const Bytes bytes = test::noise(kCacheEntries * 3, 1);
  return reinterpret_cast<const RGB8*>(bytes.data());
}

const Kernel kGrade = {"grade", {kBgra}, {kBgra}, {0}, [](const Tables& of, const Rows& r, size_t n, float) {
                         of.grade.grade(lattice(), blends(), r.in[0], r.out[0], n);
                       }};
const Kernel kGradeAndFade = {"gradeAndFade",
                              {kBgra},
                              {kBgra},
                              {1, 127, 254},
                              [](const Tables& of, const Rows& r, size_t n, float t) {
                                of.grade.gradeAndFade(lattice(), blends(), static_cast<int32_t>(t), r.in[0], r.out[0],
                                                      n);
                              },
                              false};
const Kernel kFade = {"fade", {kBgra}, {kBgra}, {0, 100, 255}, [](const Tables& of, const Rows& r, size_t n, float t) {
                        of.grade.fade(blends(), static_cast<int32_t>(t), r.in[0], r.out[0], n);
                      }};
const Kernel kHdrCache = {"hdrCache", {kBgra}, {kBgra}, {0}, [](const Tables& of, const Rows& r, size_t n, float) {
                            of.hdr.cacheRow(cache(), r.in[0], r.out[0], n);
                          }};
const Kernel kHdrLattice = {"hdrLattice", {kBgra}, {kBgra}, {0}, [](const Tables& of, const Rows& r, size_t n, float) {
                              of.hdr.latticeRow(lattice<test::Values::kHalves>(), r.in[0], r.out[0], n);
                            }};
const Kernel kDownAcross = {"downAcross",
                            {kFloats},
                            {kHalfFloats},
                            {0},
                            [](const Tables& of, const Rows& r, size_t n, float) {
                              of.pyramid.downAcross(r.floats(0), static_cast<int>(n), r.outFloats(0));
                            },
                            false,
                            2};
const Kernel kDownAlong = {
    "downAlong",
    {kFloats, kFloats, kFloats, kFloats, kFloats},
    {kFloats},
    {0},
    [](const Tables& of, const Rows& r, size_t n, float) {
      const float* const sums[] = {r.floats(0), r.floats(1), r.floats(2), r.floats(3), r.floats(4)};
      of.pyramid.downAlong(sums, static_cast<int>(n), r.outFloats(0));
    },
    false};
const Kernel kUpAcross = {"upAcross",
                          {kFloats},
                          {kTwiceFloats},
                          {0, 1},
                          [](const Tables& of, const Rows& r, size_t n, float odd) {
                            const auto width = static_cast<int>(n);
                            of.pyramid.upAcross(r.floats(0), width, r.outFloats(0), 2 * width - static_cast<int>(odd));
                          },
                          false,
                          1};
const Kernel kUpAlong = {"upAlong",
                         {kFloats, kFloats, kFloats},
                         {kFloats, kFloats},
                         {0},
                         [](const Tables& of, const Rows& r, size_t n, float) {
                           of.pyramid.upAlongEven(r.floats(0), r.floats(1), r.floats(2), r.outFloats(0), n);
                           of.pyramid.upAlongOdd(r.floats(0), r.floats(1), r.outFloats(1), n);
                         },
                         false};
const Kernel kWhiteBalance = {
    "whiteBalance", {kBgra}, {kBgra}, {0.3f, 1.1f, 3.0f}, [](const Tables& of, const Rows& r, size_t n, float gain) {
      of.whiteBalance.row({gain, 2 - gain, 1.2f * gain}, r.in[0], r.out[0], n);
    }};
const Kernel kValue = {"value", {kBgra}, {kFloats}, {0}, [](const Tables& of, const Rows& r, size_t n, float) {
                         of.hsv.value(r.in[0], r.outFloats(0), n);
                       }};
const Kernel kAnalysis = {"analysis",
                          {kBgra},
                          {kFloats, kFloats, kFloats},
                          {0.85f, 1.15f},
                          [](const Tables& of, const Rows& r, size_t n, float factor) {
                            of.hsv.analysis(r.in[0], factor, r.outFloats(0), r.outFloats(1), r.outFloats(2), n);
                          },
                          false};
const Kernel kDetail = {
    "detail", {kFloats, kFloats, kFloats}, {kFloats}, {0}, [](const Tables& of, const Rows& r, size_t n, float) {
      of.details.detail(r.floats(0), r.floats(1), 22.222221f, 0.55f, r.floats(2), r.outFloats(0), n);
    }};
const Kernel kBlend = {"blend",
                       {kFloats, kFloats},
                       {kFloats},
                       {0.01f, 0.29f, 0.5f, 0.71f, 1.0f},
                       [](const Tables& of, const Rows& r, size_t n, float share) {
                         of.details.blend(r.floats(0), 1.0f - share, r.floats(1), share, r.outFloats(0), n);
                       }};
// Hues of the whole circle; a factor slightly below 1 moves the ends of sectors to just before them.
const Kernel kSynthesis = {"synthesis",
                           {kBgra, kFloats, kFloats, kFloats},
                           {kBgra},
                           {1.0f, 0.9999999f, 0.99999f},
                           [](const Tables& of, const Rows& r, size_t n, float part) {
                             std::vector<float> hue(r.floats(1), r.floats(1) + n);
                             for (float& h : hue) h *= 360.0f * part;
                             of.hsv.synthesis(hue.data(), r.floats(2), r.floats(3), r.in[0], r.out[0], n);
                           }};
const Kernel kToRgb = {"toRgb",
                       {kBytes, kChroma, kChroma, kChroma, kChroma},
                       {kBgra},
                       {0, 1},
                       [](const Tables& of, const Rows& r, size_t n, float full) {
                         const ToRgb matrix = toRgb(kBt2020, full != 0 ? kFull : kLimited);
                         const Yv12Row row = {r.in[0], r.in[1], r.in[2], r.in[3], r.in[4]};
                         const auto width = static_cast<int>(n);
                         of.toRgb.row(matrix, row, r.out[0], width);
                       },
                       false,
                       1};
const Kernel kFromRgb = {"fromRgb",
                         {kBgra, kBgra, kBgra, kBgra},
                         {kBytes, kBytes, kChroma, kChroma},
                         {0, 1},
                         [](const Tables& of, const Rows& r, size_t n, float full) {
                           const FromRgb matrix = fromRgb(kBt709, full != 0 ? kFull : kLimited);
                           const Yv12RowPair pair = {r.out[0], r.out[1], r.out[2], r.out[3]};
                           const auto width = static_cast<int>(n);
                           const uint8_t* const in[4] = {r.in[0], r.in[1], r.in[2], r.in[3]};
                           of.fromRgb.rowPair(matrix, in, pair, width);
                         },
                         false,
                         1};
const Kernel* const kKernels[] = {&kGrade,      &kGradeAndFade, &kFade,      &kHdrCache,  &kWhiteBalance, &kValue,
                                  &kAnalysis,   &kDetail,       &kBlend,     &kSynthesis, &kToRgb,        &kFromRgb,
                                  &kHdrLattice, &kDownAcross,   &kDownAlong, &kUpAcross,  &kUpAlong};

constexpr size_t kBorder = 129;  // guard bytes around the output; no vector is longer

// Returns the output of a kernel for rows that start `start` bytes, or floats, off any alignment.
std::array<Bytes, 4> results(const Kernel& kernel, const Tables& of, const std::vector<Bytes>& in, size_t pixels,
                             float parameter, size_t start, bool inPlace) {
  Rows rows = {};
  std::vector<Bytes> read;
  std::array<Bytes, 4> written;
  const auto isFloats = [](Kind kind) { return kind == kFloats || kind == kHalfFloats || kind == kTwiceFloats; };
  const auto startOf = [&](Kind kind) { return isFloats(kind) ? 4 * start : start; };
  for (size_t i = 0; i < kernel.in.size(); ++i) {
    // Of exactly the right size, so that the address sanitizer detects reads past the end.
    Bytes& row = read.emplace_back(startOf(kernel.in[i]));
    row.insert(row.end(), in[i].begin(), in[i].begin() + static_cast<ptrdiff_t>(sizeOf(kernel.in[i], pixels)));
  }
  for (size_t i = 0; i < kernel.in.size(); ++i) rows.in[i] = read[i].data() + startOf(kernel.in[i]);
  for (size_t i = 0; i < kernel.out.size(); ++i) {
    // Varied bytes, because some kernels also read the output. Aligned for floats as far as the start allows.
    const size_t begin = (isFloats(kernel.out[i]) ? kBorder / 4 * 4 : kBorder) + startOf(kernel.out[i]);
    written[i].resize(begin + sizeOf(kernel.out[i], pixels) + kBorder);
    for (size_t k = 0; k < written[i].size(); ++k) written[i][k] = static_cast<uint8_t>(k * k >> 3);
    rows.out[i] = written[i].data() + begin;
  }
  if (inPlace) {
    std::copy_n(rows.in[0], sizeOf(kernel.in[0], pixels), rows.out[0]);
    rows.in[0] = rows.out[0];
  }
  kernel.call(of, rows, pixels, parameter);
  return written;
}

// Describes the first difference between both forms, within or around the rows, separate or in place; empty if none.
std::string differences(const Kernel& kernel, const std::vector<Bytes>& in, size_t pixels, float parameter,
                        size_t start = 0) {
  for (const bool inPlace : {false, true}) {
    if (inPlace && !kernel.inPlace) break;
    const auto expected = results(kernel, kPlain, in, pixels, parameter, start, inPlace);
    const auto found = results(kernel, Tables(), in, pixels, parameter, start, inPlace);
    for (size_t i = 0; i < expected.size(); ++i) {
      if (found[i] == expected[i]) continue;
      const auto at = std::mismatch(found[i].begin(), found[i].end(), expected[i].begin()).first - found[i].begin();
      std::ostringstream text;
      text << kernel.name << (inPlace ? " in place" : "") << ", " << pixels << " pixels from " << start
           << ", parameter " << parameter << ": row " << i << " differs from byte "
           << at - static_cast<ptrdiff_t>(kBorder + start) << ": " << int{found[i][static_cast<size_t>(at)]} << " for "
           << int{expected[i][static_cast<size_t>(at)]};
      return text.str();
    }
  }
  return "";
}

Bytes bytesOf(const std::vector<float>& floats) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(floats.data());
  return {bytes, bytes + 4 * floats.size()};
}

// Random floats from 0 to 1, one in eight from a list of edge cases.
std::vector<float> unitFloats(size_t count, unsigned seed) {
  constexpr float kEnds[] = {0.0f, 1e-45f, 1e-38f, 1e-7f, 0.5f, 2 / 3.0f, 0.99999994f, 1.0f};
  std::mt19937 random(seed);
  std::vector<float> result(count);
  for (float& number : result) {
    const auto bits = static_cast<uint32_t>(random());
    number = bits % 8 == 0 ? kEnds[bits / 8 % 8] : static_cast<float>(bits >> 8) * 0x1p-24f;
  }
  return result;
}

class RowKernels : public test::EveryTarget {};
INSTANTIATE_TEST_SUITE_P(On, RowKernels, test::everyTarget(), test::targetName);

// Widths up to slightly more than three of the widest vectors of any kernel.
TEST_P(RowKernels, StayWithinTheirRowAtEveryWidth) {
  for (const Kernel* const kernel : kKernels) {
    for (size_t pixels = kernel->minPixels; pixels <= 3 * 64 + 3; ++pixels) {
      for (size_t start = 0; start < 4; ++start) {
        std::vector<Bytes> in;
        const auto seed = static_cast<unsigned>(4 * pixels + start);
        for (const Kind kind : kernel->in) {
          in.push_back(kind == kFloats ? bytesOf(unitFloats(pixels, seed + static_cast<unsigned>(in.size())))
                                       : test::harshNoise(4 * pixels, seed + static_cast<unsigned>(in.size())));
        }
        for (const float parameter : kernel->parameters) {
          ASSERT_EQ(differences(*kernel, in, pixels, parameter, start), "");
        }
      }
    }
  }
}

TEST_P(RowKernels, AgreeOnEveryColour) {
  const Bytes pixels = test::everyColour([](uint32_t i) { return i * 7; });
  for (const Kernel* const kernel : {&kHdrCache, &kHdrLattice, &kValue, &kAnalysis}) {
    for (const float parameter : kernel->parameters) {
      EXPECT_EQ(differences(*kernel, {pixels}, pixels.size() / 4, parameter), "");
    }
  }
}

// Every difference whose weight is not 1, up to 1.1 because resampling may overshoot; then smaller ones of both signs,
// down to those whose square underflows.
TEST_P(RowKernels, RaiseEveryDetail) {
  constexpr uint32_t kBlock = 1 << 16;
  const std::vector<float> zeros(kBlock);
  std::vector<float> expected(kBlock), found(kBlock), fine(kBlock);
  const auto compare = [&] {
    plainDetailKernels.detail(fine.data(), zeros.data(), 22.222221f, 0.55f, zeros.data(), expected.data(), kBlock);
    detailKernels().detail(fine.data(), zeros.data(), 22.222221f, 0.55f, zeros.data(), found.data(), kBlock);
    ASSERT_EQ(std::memcmp(expected.data(), found.data(), sizeof(float) * kBlock), 0) << fine[0];
  };
  const auto end = std::bit_cast<uint32_t>(1.1f);
  for (auto bits = std::bit_cast<uint32_t>(0x1p-15f); bits < end; bits += kBlock * test::kStep) {
    for (uint32_t i = 0; i < kBlock; ++i) fine[i] = std::bit_cast<float>(bits + i);
    compare();
  }
  for (uint32_t i = 0; i < kBlock; ++i) fine[i] = std::bit_cast<float>((i % 2) << 31 | i * 14000);
  compare();
}

}  // namespace
}  // namespace Lumvane
