#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <sstream>

#include "lut/cube_lut.h"

namespace Lumvane {
namespace {

std::unique_ptr<CubeLut> read(const std::string& text) {
  auto lut = std::make_unique<CubeLut>();
  std::istringstream stream(text);
  EXPECT_EQ(lut->read3dl(stream), lut->status);
  return lut;
}

// `count` rows, the first column counting up, the others 4095 and 8190.
std::string rows(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += std::to_string(i) + " 4095 8190\n";
  return text;
}

std::string mesh(int entries) {
  std::string text = "0";
  for (int i = 1; i < entries; ++i) text += " " + std::to_string(i * 1023 / (entries - 1));
  return text + "\n";
}

TEST(Reader3dl, AnswersEachTextWithItsStatusAndSize) {
  const std::string open27 = rows(27).substr(0, rows(27).size() - 1);
  struct Case {
    const char* what;
    std::string text;
    int status, size;
  };
  const Case cases[] = {
      {"with header", "3DMESH\nMesh 4 12\n" + mesh(17) + rows(17 * 17 * 17), 0, 17},
      {"without header", mesh(3) + rows(27), 0, 3},
      {"last line without terminator", mesh(3) + open27, 0, 3},
      {"comments, titles, lines of blanks", "# c\n3DMESH x\n  \nLook 1\n\nMesh 9 9\n" + mesh(3) + "# c\n" + rows(27), 0,
       3},
      {"keyword with blanks before it", "  3DMESH\n\tMesh 5 10\n" + mesh(3) + rows(27), 0, 3},
      {"footer behind the rows", mesh(3) + rows(27) + "LUT8\ngamma 1.0\n", 0, 3},
      {"65 entries", "3DMESH\n" + mesh(65) + rows(65 * 65 * 65), 0, 65},
      {"66 entries", "3DMESH\n" + mesh(66) + rows(27), 23, 0},
      {"2 entries", "0 1023\n" + rows(8), 24, 0},
      {"65 entries in the first line, which is too long", mesh(65) + rows(27), 13, 0},
      {"tabs between the entries", "0\t511\t1023\n" + rows(27), 24, 0},
      {"other keyword with a digit", "3DLUT\n" + mesh(3) + rows(27), 24, 0},
      {"blank behind the entries", "0 511 1023 \n" + rows(27), 10, 4},
      {"two blanks in a row", "0  1023\n" + rows(27), 0, 3},
      {"no mesh line, a row in its place", rows(28), 0, 3},
      {"no mesh line, too few rows", rows(27), 10, 3},
      {"a row short, last line open", mesh(3) + open27.substr(12), 12, 3},
      {"end in the header", "3DMESH\nMesh 4 12\n", 10, 0},
      {"end in the header, last line open", "3DMESH\nMesh 4 12", 12, 0},
      {"first line too long", std::string(252, '#') + "\n" + mesh(3) + rows(27), 13, 0},
  };
  for (const Case& c : cases) {
    const auto lut = read(c.text);
    EXPECT_EQ(lut->status, c.status) << c.what;
    EXPECT_EQ(lut->latticeSize, c.size) << c.what;
  }
}

TEST(Reader3dl, RunsBlueFastestOnATwelveBitScale) {
  const auto lut = read(mesh(3) + rows(27));
  for (int row = 0; row < 27; ++row) {
    const float* point = lut->lattice[row / 9][row / 3 % 3][row % 3];
    EXPECT_EQ(point[0], static_cast<float>(row) / 4095.0f * 255.0f) << row;
    EXPECT_EQ(point[1], 255.0f) << row;
    EXPECT_EQ(point[2], 510.0f) << row;
  }
  EXPECT_EQ(lut->cell[255], 2);
}

TEST(Reader3dl, SplitsFieldsAtEveryBlank) {
  std::vector<std::string> fields = {"kept"};
  CubeLut::splitFields(" a  b\tc \r", fields);
  EXPECT_EQ(fields, (std::vector<std::string>{"kept", "", "a", "", "b\tc", "\r"}));
}

// Rounding a value to 12 bits moves it by half a step of 255 / 4095 at the most.
TEST(Reader3dl, GivesTheLatticeOfTheSameLookAsCube) {
  constexpr int kSize = 9;
  const auto look = [](int r, int g, int b, int c) { return std::sqrt((r * (c + 1) + g * 2 + b * (3 - c)) / 64.0); };
  std::string cube = "LUT_3D_SIZE 9\n", threeDl = mesh(kSize);
  for (int i = 0; i < kSize * kSize * kSize; ++i) {
    const int slow = i / 81, middle = i / 9 % 9, fast = i % 9;
    for (int c = 0; c < 3; ++c) {
      cube += std::to_string(look(fast, middle, slow, c)) + (c < 2 ? " " : "\n");
      threeDl += std::to_string(std::lround(look(slow, middle, fast, c) * 4095.0)) + (c < 2 ? " " : "\n");
    }
  }
  auto fromCube = std::make_unique<CubeLut>();
  std::istringstream stream(cube);
  ASSERT_EQ(fromCube->readCube(stream), 0);
  const auto from3dl = read(threeDl);
  ASSERT_EQ(from3dl->status, 0);
  const float* a = &fromCube->lattice[0][0][0][0];
  const float* b = &from3dl->lattice[0][0][0][0];
  for (size_t i = 0; i < sizeof fromCube->lattice / sizeof(float); ++i)
    ASSERT_NEAR(a[i], b[i], 0.5 * 255 / 4095 + 2e-4);
}

}  // namespace
}  // namespace Lumvane
