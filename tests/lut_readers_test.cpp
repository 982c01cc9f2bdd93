// The readers of LUT text formats: files that cannot be read, streams of all kinds, random numbers. The results for
// complete, broken and unusual texts, of both formats, are recorded with the seeds of the fuzzers.

#include <gtest/gtest.h>
#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <algorithm>
#include <cmath>
#include <cstring>
#include <exception>
#include <memory>
#include <random>
#include <sstream>

#include "fuzz/plain_readers.h"
#include "lut/cube_lut.h"
#include "lut/numbers.h"
#include "tests/inputs.h"

namespace Lumvane {
namespace {

std::unique_ptr<CubeLut> read(std::istream& stream) {
  auto lut = std::make_unique<CubeLut>();
  EXPECT_EQ(lut->readCube(stream), lut->status);
  return lut;
}

TEST(LutReaders, LeaveTheStatusWithoutAFile) {
  const test::TemporaryFile file("a.cube/marker", "");  // a folder of that name
  const std::u16string folder = file.folder() + u"/";
#ifndef _WIN32
  ASSERT_EQ(mkfifo(std::filesystem::path(folder + u"pipe.cube").c_str(), 0600), 0);
  std::filesystem::create_symlink("/dev/ptmx", folder + u"terminal.3dl");
  std::filesystem::create_symlink("/dev/zero", folder + u"zero.cube");
#endif
  for (const char16_t* name : {u"none.cube", u"../a.cube", u"pipe.cube", u"terminal.3dl", u"zero.cube"}) {
    const auto lut = std::make_unique<CubeLut>();
    EXPECT_FALSE(lut->load(folder + name));
    EXPECT_EQ(lut->status, statusUnloaded) << std::filesystem::path(name);
  }
}

// Returns `text` in pieces of `piece` bytes, then throws `error`, if any, or ends.
class Stream : public std::streambuf {
 public:
  Stream(std::string text, size_t piece, std::exception_ptr error)
      : text_(std::move(text)), piece_(piece), error_(error) {}

 private:
  int_type underflow() override {
    if (at_ == text_.size() && error_ != nullptr) std::rethrow_exception(error_);
    if (at_ == text_.size()) return traits_type::eof();
    char* const start = text_.data() + at_;
    at_ = std::min(at_ + piece_, text_.size());
    setg(start, start, text_.data() + at_);
    return traits_type::to_int_type(*start);
  }
  std::string text_;
  size_t piece_, at_ = 0;
  std::exception_ptr error_;
};

std::unique_ptr<CubeLut> readInPieces(const std::string& text, size_t piece, std::exception_ptr error = nullptr) {
  Stream buffer(text, piece, error);
  std::istream stream(&buffer);
  return read(stream);
}

// Rows of all forms, over 100 kB in total, with comments longer than any block, and rows longer than the limit, which
// cuts numbers at arbitrary positions.
TEST(LutReaders, ReadTheSameInPiecesOfAnySize) {
  std::string text = "# " + std::string(100, 'x') + "\nLUT_3D_SIZE 29\n";
  std::mt19937 random(1);
  for (int row = 0; row < 29 * 29 * 29; ++row) {
    const double value = static_cast<double>(random() % 2000000) * 1e-6 - 0.5;
    const char* const forms[] = {"%.6f %.3f %.9f\n", "  %.6f\t%.0f %.1f  \r\n", "%.17f %.19f %g\n", "%e %f %a\n",
                                 "%.6f\n",           "%+.6f %.25f %f # after\n"};
    char line[200];
    std::snprintf(line, sizeof line, forms[row % 97 < 70 ? 0 : row % 6], value, value * 3, value / 7);
    if (row % 1000 == 9) text.append(65540 - row / 1000, ' ');
    text += line;
    if (row % 9000 == 5) text += "\n# " + std::string(200000, 'c') + "\r\n\n";
  }
  std::istringstream stream(text);
  const auto whole = read(stream);
  const auto rows = fuzz::readPlainCube(text).rows;
  ASSERT_EQ(rows.size(), size_t{29 * 29 * 29});
  for (size_t i = 0; i < rows.size(); ++i) {
    ASSERT_TRUE(std::equal(rows[i].begin(), rows[i].end(), whole->lattice[i % 29][i / 29 % 29][i / 29 / 29])) << i;
  }
  for (const size_t piece : {1, 7, 4096, 65536, 1000000}) {
    const auto lut = readInPieces(text, piece);
    EXPECT_EQ(lut->status, 0);
    EXPECT_EQ(std::memcmp(lut->lattice, whole->lattice, sizeof lut->lattice), 0) << piece;
  }
}

TEST(LutReaders, KeepRowsReadBeforeAnError) {
  const std::string start = "LUT_3D_SIZE 2\n0.5 1 1\n0.25 1 1\n0.1";
  const auto badDisk = std::make_exception_ptr(std::ios_base::failure("bad disk"));
  for (const size_t piece : {1, 7, 4096}) {
    const auto lut = readInPieces(start, piece, badDisk);
    EXPECT_EQ(lut->status, statusReadFailed);
    EXPECT_EQ(lut->lattice[1][0][0][0], 0.25f * 255.0f);
    EXPECT_EQ(lut->lattice[0][1][0][0], 0.0f);
    EXPECT_EQ(readInPieces("LUT_3D_SIZE 2", piece, badDisk)->status, statusLineTooLong);
    EXPECT_EQ(readInPieces("LUT_3D_SIZE 2\nTIT", piece, badDisk)->status, statusReadFailed);
    EXPECT_THROW(readInPieces(start, piece, std::make_exception_ptr(std::bad_alloc())), std::bad_alloc);
  }
  std::istringstream failedBefore("LUT_3D_SIZE 2\n");
  failedBefore.setstate(std::ios::failbit);
  EXPECT_EQ(read(failedBefore)->status, statusLineTooLong);
}

bool same(float a, float b) { return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b)); }

// Checks that scanDecimal reads what the C library reads, or, unless `expectRead`, leaves the number to it.
void expectNearest(const std::string& text, bool expectRead) {
  float value = -1.0f;
  const char* const end = scanDecimal(text.c_str(), value);
  EXPECT_TRUE(end == nullptr ? !expectRead : *end == '\0' && same(value, std::strtof(text.c_str(), nullptr))) << text;
}

TEST(LutReaders, RoundDecimalsToTheNearestFloat) {
  std::mt19937_64 random(3);
  for (int i = 0; i < 1000000; ++i) {
    std::string text = std::to_string(random() >> (random() % 64));
    const size_t decimals = random() % 20;
    if (text.size() <= decimals) text.insert(0, decimals + 1 - text.size(), '0');
    if (decimals != 0) text.insert(text.size() - decimals, ".");
    expectNearest((random() % 2 == 0 ? "-" : "") + text, text.size() <= 7);
  }
  // Half-way between two floats, where the even one is correct, and close to it.
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
  for (const char* text : {"0", "-0", "0.0", "-1.", ".5", "-.5", "00012.50", "16777217.25"}) expectNearest(text, true);
  float value;
  for (const char* text : {"", "-", ".", "-.", "+1", "e5", "nan", "16777217", "12345678901234567890"}) {
    EXPECT_EQ(scanDecimal(text, value), nullptr) << text;
  }
}

#ifdef __GLIBC__
TEST(LutReaders, ReadNumbersLikeTheCLibrary) {
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
    const char* next = text.c_str();
    float streamed, extracted;
    while (stream >> streamed) {
      next = extractNumber(next, text.c_str() + text.size(), extracted);
      ASSERT_TRUE(next != nullptr && same(extracted, streamed)) << text;
    }
    ASSERT_EQ(extractNumber(next, text.c_str() + text.size(), extracted), nullptr) << text;
  }
}
#endif

}  // namespace
}  // namespace Lumvane
