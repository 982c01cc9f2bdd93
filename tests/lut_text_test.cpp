// What the readers of both formats read through: streams of any kind, and numbers.

#include "lut/lut_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>

#include "lut/cube_lut.h"
#include "lut/decimal.h"
#include "lut/number_scan.h"

namespace Lumvane {
namespace {

// Gives `text` in pieces of `piece` bytes and then throws, or ends.
template <class Fault>
class Stream : public std::streambuf {
 public:
  Stream(std::string text, size_t piece, bool faulty) : text_(std::move(text)), piece_(piece), faulty_(faulty) {}

 private:
  int_type underflow() override {
    if (at_ == text_.size()) {
      if (faulty_) throw Fault();
      return traits_type::eof();
    }
    char* const start = text_.data() + at_;
    at_ = std::min(at_ + piece_, text_.size());
    setg(start, start, text_.data() + at_);
    return traits_type::to_int_type(*start);
  }
  std::string text_;
  size_t piece_;
  bool faulty_;
  size_t at_ = 0;
};
struct BadDisk : std::ios_base::failure {
  BadDisk() : failure("bad disk") {}
};

template <class Fault = BadDisk>
std::unique_ptr<CubeLut> readInPieces(const std::string& text, size_t piece, bool faulty) {
  auto lut = std::make_unique<CubeLut>();
  Stream<Fault> buffer(text, piece, faulty);
  std::istream stream(&buffer);
  lut->readCube(stream);
  return lut;
}

// Rows of all forms, with comments that are longer than any block in between, past 100 kB in all.
std::string table(int size) {
  std::string text = "# " + std::string(100, 'x') + "\nLUT_3D_SIZE " + std::to_string(size) + "\n";
  std::mt19937 random(1);
  for (int row = 0; row < size * size * size; ++row) {
    const double value = static_cast<double>(random() % 2000000) * 1e-6 - 0.5;
    const char* const forms[] = {"%.6f %.3f %.9f\n", "  %.6f\t%.0f %.1f  \r\n",  "%.17f %.19f %g\n", "%e %f %a\n",
                                 "%.6f\n",           "%+.6f %.25f %f # behind\n"};
    char line[200];
    std::snprintf(line, sizeof line, forms[row % 97 < 70 ? 0 : row % 6], value, value * 3, value / 7);
    text += line;
    if (row % 9000 == 5) text += "\n# " + std::string(200000, 'c') + "\r\n\n";
  }
  return text;
}

TEST(LutText, IsTheSameInPiecesOfAnySize) {
  const std::string text = table(29);
  std::istringstream whole(text);
  const auto expected = std::make_unique<CubeLut>();
  ASSERT_EQ(expected->readCube(whole), 0);
  // By the plain way alone.
  float values[3] = {};
  std::istringstream lines(text);
  int rows = 0;
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || line == "\r" || line[0] == '#' || line[0] == 'L') continue;
    std::sscanf(line.c_str(), "%f %f %f", &values[0], &values[1], &values[2]);
    const float* point = expected->lattice[rows % 29][rows / 29 % 29][rows / 29 / 29];
    for (int c = 0; c < 3; ++c) ASSERT_EQ(point[c], values[c] * 255.0f) << line;
    ++rows;
  }
  EXPECT_EQ(rows, 29 * 29 * 29);

  for (const size_t piece : {1, 7, 4096, 65536, 1000000}) {
    const auto lut = readInPieces(text, piece, false);
    EXPECT_EQ(lut->status, 0);
    EXPECT_EQ(std::memcmp(lut->lattice, expected->lattice, sizeof lut->lattice), 0) << piece;
  }
}

TEST(LutText, KeepsWhatItReadAheadOfAFailure) {
  const std::string start = "LUT_3D_SIZE 2\n0.5 1 1\n0.25 1 1\n0.1";
  for (const size_t piece : {1, 7, 4096}) {
    const auto lut = readInPieces(start, piece, true);
    EXPECT_EQ(lut->status, statusReadFailed);
    EXPECT_EQ(lut->lattice[1][0][0][0], 0.25f * 255.0f);
    EXPECT_EQ(lut->lattice[0][1][0][0], 0.0f);
    EXPECT_EQ(readInPieces("LUT_3D_SIZE 2", piece, true)->status, statusLineTooLong);
    EXPECT_EQ(readInPieces("LUT_3D_SIZE 2\nTIT", piece, true)->status, statusReadFailed);
    EXPECT_THROW(readInPieces<std::bad_alloc>(start, piece, true), std::bad_alloc);
  }
}

TEST(LutText, ReadsNothingOfAStreamThatFailedBefore) {
  std::istringstream stream("LUT_3D_SIZE 2\n");
  stream.setstate(std::ios::failbit);
  EXPECT_EQ(std::make_unique<CubeLut>()->readCube(stream), statusLineTooLong);
}

// What is read without the C library is what that reads.
void expectNearest(const std::string& text, bool expectRead) {
  float value = -1.0f;
  const char* end = scanDecimal(text.c_str(), value);
  EXPECT_TRUE(end != nullptr || !expectRead) << text;
  if (end == nullptr) return;
  const float expected = std::strtof(text.c_str(), nullptr);
  EXPECT_EQ(std::memcmp(&value, &expected, sizeof value), 0) << text;
  EXPECT_EQ(*end, '\0') << text;
}

TEST(LutText, ReadsDecimalsToTheNearestFloat) {
  for (const char* text : {"0", "-0", "0.0", "1", "-1.", ".5", "-.5", "00012.50", "0.000001", "16777217.25", "4095"}) {
    expectNearest(text, true);
  }
  std::mt19937_64 random(3);
  for (int i = 0; i < 1000000; ++i) {
    std::string text = std::to_string(random() >> (random() % 64));
    const size_t behindPoint = random() % 20;
    if (text.size() <= behindPoint) text.insert(0, behindPoint + 1 - text.size(), '0');
    if (behindPoint != 0) text.insert(text.size() - behindPoint, ".");
    expectNearest((random() % 2 == 0 ? "-" : "") + text, text.size() <= 7);
  }
}

// Half-way between two floats, where the even one counts, and just beside.
TEST(LutText, ReadsDecimalsBetweenTwoFloats) {
  std::mt19937 random(4);
  for (int i = 0; i < 100000; ++i) {
    const float lower =
        std::ldexp(static_cast<float>(1 << 23 | random() % (1 << 23)), -static_cast<int>(random() % 40));
    const double middle = (static_cast<double>(lower) + std::nextafter(lower, INFINITY)) / 2;
    char text[80];
    std::snprintf(text, sizeof text, "%.*f", static_cast<int>(random() % 20), middle);
    expectNearest(text, false);
    text[std::strlen(text) - 1] ^= 1;
    expectNearest(text, false);
  }
  float value;
  EXPECT_EQ(scanDecimal("16777217", value), nullptr);
  for (const char* text : {"", "-", ".", "-.", "+1", "e5", "nan", "12345678901234567890", "0.00000000000000000001"}) {
    EXPECT_EQ(scanDecimal(text, value), nullptr) << text;
  }
}

struct OddNumber {
  const char* text;
  bool scanned, extracted;  ///< whether each way takes a number from it
  float value;
  const char* behindScan = "";
};

// Values in which C libraries differ, or that their locale would decide.
TEST(LutText, ScansOddNumbersAsEverywhere) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  for (const OddNumber& odd : std::initializer_list<OddNumber>{{" \t+1.5e2", true, true, 150.0f},
                                                               {"0,5", true, true, 0.0f, ",5"},
                                                               {"1.2.3", true, true, 1.2f, ".3"},
                                                               {"1e", true, false, 1.0f},
                                                               {"1e+", true, false, 1.0f},
                                                               {"1e5e5", true, true, 1e5f, "e5"},
                                                               {"0x1.8P1", true, true, 3.0f},
                                                               {"0x.", true, true, 0.0f},
                                                               {"0x", false, true, 0.0f},
                                                               {"-Inf", true, false, -kInfinity},
                                                               {"infinity", true, false, kInfinity},
                                                               {"infin", false, false, 0.0f},
                                                               {"nan(1)", true, false, NAN, "(1)"},
                                                               {"na", false, false, 0.0f},
                                                               {"-1e-60", true, true, -0.0f},
                                                               {"1e-45", true, true, 1.4e-45f},
                                                               {"1e39", true, false, kInfinity},
                                                               {"-0x1p999", true, true, -kInfinity},
                                                               {"0x1p-999", true, true, 0.0f},
                                                               {"1e99999999999999999999", true, false, kInfinity},
                                                               {"1e9223372036854775807", true, false, kInfinity},
                                                               {"0.01e-9223372036854775808", true, true, 0.0f},
                                                               {"0x1p9223372036854775807", true, true, kInfinity},
                                                               {".", false, false, 0.0f},
                                                               {"-", false, false, 0.0f},
                                                               {"- 1", false, false, 0.0f},
                                                               {"", false, false, 0.0f}}) {
    const char* const end = odd.text + std::strlen(odd.text);
    float value = 7.0f;
    const char* behind = scanNumber(odd.text, end, value);
    ASSERT_EQ(behind != nullptr, odd.scanned) << odd.text;
    if (behind == nullptr) {
      EXPECT_EQ(value, 7.0f) << odd.text;
    } else {
      EXPECT_STREQ(behind, odd.behindScan);
    }
    float extracted = 7.0f;
    EXPECT_EQ(extractNumber(odd.text, end, extracted) != nullptr, odd.extracted) << odd.text;
    // A stream takes the 0 of "0x" alone.
    const float expected = std::strstr(odd.text, "0x") == nullptr ? odd.value : std::copysign(0.0f, odd.value);
    if (odd.extracted) {
      EXPECT_EQ(std::memcmp(&extracted, &expected, sizeof extracted), 0) << odd.text;
    }
    if (odd.scanned && !std::isnan(odd.value)) {
      EXPECT_EQ(std::memcmp(&value, &odd.value, sizeof value), 0) << odd.text;
    }
  }
}

#ifdef __GLIBC__
TEST(LutText, ScansAsTheCLibraryDoes) {
  std::mt19937 random(5);
  const std::string pieces[] = {"0", "1",  "9", "25", ".", "e",  "E",   "+",  "-",
                                "x", "0x", "p", "a",  " ", "\t", "inf", "nan"};
  for (int i = 0; i < 500000; ++i) {
    std::string text;
    for (auto count = random() % 10; count != 0; --count) text += pieces[random() % std::size(pieces)];
    float expected[3] = {7, 7, 7}, values[3] = {7, 7, 7};
    std::sscanf(text.c_str(), "%f %f %f", &expected[0], &expected[1], &expected[2]);
    scanRow(text, values);
    ASSERT_EQ(std::memcmp(values, expected, sizeof values), 0) << text;

    std::istringstream stream(text);
    const char* behind = text.c_str();
    float streamed, extracted;
    while (stream >> streamed) {
      behind = extractNumber(behind, text.c_str() + text.size(), extracted);
      ASSERT_NE(behind, nullptr) << text;
      ASSERT_EQ(std::memcmp(&extracted, &streamed, sizeof streamed), 0) << text;
    }
    ASSERT_EQ(extractNumber(behind, text.c_str() + text.size(), extracted), nullptr) << text;
  }
}
#endif

}  // namespace
}  // namespace Lumvane
