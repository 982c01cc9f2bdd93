#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <sstream>

#include "lut/cube_lut.h"
#include "tests/inputs.h"

namespace Lumvane {
namespace {

using test::replaced;

// Eight rows whose first column counts from 0.0 by tenths.
const std::string kRows = "0.0 0 1\n0.1 0 1\n0.2 0 1\n0.3 0 1\n0.4 0 1\n0.5 0 1\n0.6 0 1\n0.7 0 1\n";

std::unique_ptr<CubeLut> read(const std::string& text) {
  auto lut = std::make_unique<CubeLut>();
  std::istringstream stream(text);
  EXPECT_EQ(lut->readCube(stream), lut->status);
  return lut;
}

TEST(CubeReader, AnswersEachTextWithItsStatus) {
  const std::string size2 = "LUT_3D_SIZE 2\n";
  const std::string lastRowOpen = kRows.substr(0, kRows.size() - 1);
  struct Case {
    const char* what;
    std::string text;
    int status;
  };
  const Case cases[] = {
      {"smallest", size2 + kRows, 0},
      {"last line without terminator", size2 + lastRowOpen, 0},
      {"more rows than needed", size2 + kRows + "nonsense\n", 0},
      {"keywords in any order, others between", "TITLE \"t\"\nDOMAIN_MAX 1 1 1\n  LUT_3D_SIZE 2 9\nx\n" + kRows, 0},
      {"second keyword with nonsense",
       size2 + "DOMAIN_MIN 0 0 0\nDOMAIN_MAX 1 1 1\nDOMAIN_MIN x\nDOMAIN_MAX x\nLUT_3D_SIZE 900\n" + kRows, 0},
      {"blanks before a hash in the header", size2 + " # no comment\n" + kRows, 0},
      {"lone plus ahead of the size", "+\n" + size2 + kRows, 0},
      {"colon ahead of the size", ":\n" + size2 + kRows, 0},
      {"minus opens the table", "-0.25 0 1\n" + size2 + kRows, 23},
      {"plus opens the table", "+1 0 1\n" + size2 + kRows, 23},
      {"point opens the table", ".5 0 1\n" + size2 + kRows, 23},
      {"nine opens the table", "9 0 1\n" + size2 + kRows, 23},
      {"comma opens the table", ",\n" + size2 + kRows, 23},
      {"slash opens the table", "/\n" + size2 + kRows, 23},
      {"nothing", "", 13},
      {"short, no terminator", "LUT_3D_SIZE 2", 13},
      {"251 bytes in the first line", std::string(251, '#') + "\n" + size2 + kRows, 0},
      {"252 bytes in the first line", std::string(252, '#') + "\n" + size2 + kRows, 13},
      {"end in the header", size2, 10},
      {"end in the header, last line open", size2 + "TITLE x", 12},
      {"end behind an open comment", size2 + "# x", 12},
      {"no size", kRows, 23},
      {"size behind the first row", "0 0 0\n" + size2 + kRows, 23},
      {"one-dimensional", "LUT_1D_SIZE 2\n" + kRows, 23},
      {"size keyword in lower case", "lut_3d_size 2\n" + kRows, 23},
      {"byte-order mark before the size", "\xEF\xBB\xBFLUT_3D_SIZE 2\n" + kRows, 23},
      {"size 1", "LUT_3D_SIZE 1\n" + kRows, 23},
      {"size 66", "LUT_3D_SIZE 66\n" + kRows, 23},
      {"size 66, then another fault", "LUT_3D_SIZE 66\nDOMAIN_MIN 0\n" + kRows, 23},
      {"size 257", "LUT_3D_SIZE 257\n" + kRows, 23},
      {"size beyond an integer", "LUT_3D_SIZE 99999999999\n" + kRows, 23},
      {"size without a number", "LUT_3D_SIZE\n" + kRows, 23},
      {"size with a word", "LUT_3D_SIZE two\n" + kRows, 23},
      {"domain with two numbers", size2 + "DOMAIN_MIN 0 0\n" + kRows, 10},
      {"domain with a word", size2 + "DOMAIN_MAX 1 one 1\n" + kRows, 10},
      {"line of blanks in the header", size2 + "  \n" + kRows, 10},
      {"domain minimum at its maximum", size2 + "DOMAIN_MIN 0 1 0\n" + kRows, 22},
      {"domain minimum at its maximum on blue", size2 + "DOMAIN_MIN 0 0 1\n" + kRows, 22},
      {"a row short", size2 + kRows.substr(8), 10},
      {"a row short, last line open", size2 + lastRowOpen.substr(8), 12},
  };
  for (const Case& c : cases) EXPECT_EQ(read(c.text)->status, c.status) << c.what;
}

TEST(CubeReader, TakesSixtyFivePoints) {
  std::string text = "LUT_3D_SIZE 65\n";
  for (int row = 0; row < 65 * 65 * 65; ++row) text += "0 0 " + std::to_string(row) + "\n";
  const auto lut = read(text);
  EXPECT_EQ(lut->status, 0);
  EXPECT_EQ(lut->lattice[64][64][64][2], 274624.0f * 255.0f);
}

TEST(CubeReader, LeavesTheStatusOfAFileThatIsNotThere) {
  const auto lut = std::make_unique<CubeLut>();
  EXPECT_FALSE(lut->load(u"/none/none.cube"));
  EXPECT_FALSE(lut->load(u"/none/none"));
  EXPECT_EQ(lut->status, statusUnloaded);
}

TEST(CubeReader, RunsRedFastestAndBlueSlowest) {
  const auto lut = read("LUT_3D_SIZE 2\n" + kRows);
  for (int row = 0; row < 8; ++row) {
    const float* point = lut->lattice[row % 2][row / 2 % 2][row / 4];
    EXPECT_EQ(point[0], std::strtof(("0." + std::to_string(row)).c_str(), nullptr) * 255.0f) << row;
    EXPECT_EQ(point[1], 0.0f) << row;
    EXPECT_EQ(point[2], 255.0f) << row;
  }
  EXPECT_EQ(lut->latticeSize, 2);
  EXPECT_EQ(lut->lattice[2][0][0][2], 0.0f);
}

// The third row of the table is replaced, behind 0.1 0 1; what counts is what stands at its point.
TEST(CubeReader, ReadsRowsAsAFormattedScanDoes) {
  struct Case {
    std::string row;
    float red, green, blue;
  };
  const Case cases[] = {
      {".25 -1.5 +2", .25f, -1.5f, 2.0f},
      {"\t 1e-1 2.E1 3e+0 # behind", .1f, 20.0f, 3.0f},
      {"0.5", 0.5f, 0.0f, 1.0f},
      {"0.5 x 0.25", 0.5f, 0.0f, 1.0f},
      {"0,5 1 1", 0.0f, 0.0f, 1.0f},
      {"1.0-2.0 3", 1.0f, -2.0f, 3.0f},
      {"   ", .1f, 0.0f, 1.0f},
      {" # blanks before", .1f, 0.0f, 1.0f},
      {"word", .1f, 0.0f, 1.0f},
      {std::string("0.5 0.5\0 0.5", 12), 0.5f, 0.5f, 1.0f},
      {"0x1p-1 0 0", 0.5f, 0.0f, 0.0f},
      {"1e-60 1e-40 1", 0.0f, 1e-40f, 1.0f},
      {"0.1000000000000000055511151231257827 0.3 16777217", .1f, .3f, 16777216.0f},
  };
  for (const Case& c : cases) {
    const auto lut = read("LUT_3D_SIZE 2\n" + replaced(kRows, "0.2 0 1", c.row));
    ASSERT_EQ(lut->status, 0) << c.row;
    EXPECT_EQ(lut->lattice[0][1][0][0], c.red * 255.0f) << c.row;
    EXPECT_EQ(lut->lattice[0][1][0][1], c.green * 255.0f) << c.row;
    EXPECT_EQ(lut->lattice[0][1][0][2], c.blue * 255.0f) << c.row;
    EXPECT_EQ(lut->lattice[1][1][0][0], .3f * 255.0f) << c.row;
  }
  EXPECT_EQ(read("LUT_3D_SIZE 2\n" + replaced(kRows, "0.0 0 1", "-"))->lattice[0][0][0][2], 0.0f);
  EXPECT_TRUE(std::isinf(read("LUT_3D_SIZE 2\n" + replaced(kRows, "0.2 0 1", "1e99 nan 0"))->lattice[0][1][0][0]));
}

TEST(CubeReader, ScalesByTheDomainWithoutAnOffset) {
  const std::string rows = "LUT_3D_SIZE 2\n" + replaced(kRows, "0.3 0 1", "0.7 0.7 0.7");
  const auto value = [](const std::string& text, int c) { return read(text)->lattice[1][1][0][c]; };
  EXPECT_EQ(value("DOMAIN_MAX 0.5 0.5 0.5\n" + rows, 1), 0.7f * 127.5f);
  EXPECT_EQ(value("DOMAIN_MIN 0.2 0.2 0.2\n" + rows, 0), 0.7f * ((1.0f - 0.2f) * 255.0f));
  EXPECT_EQ(value("DOMAIN_MIN -1 0 0\nDOMAIN_MAX 1 1 3\n" + rows, 0), 0.7f * 510.0f);
  EXPECT_EQ(value("DOMAIN_MIN -1 0 0\nDOMAIN_MAX 1 1 3\n" + rows, 2), 0.7f * 765.0f);
}

}  // namespace
}  // namespace Lumvane
