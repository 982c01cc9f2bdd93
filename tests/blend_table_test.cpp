#include "lut/blend_table.h"

#include <gtest/gtest.h>

#include <cmath>
#include <thread>
#include <vector>

namespace Lumvane {
namespace {

TEST(BlendTable, PlanesHoldTheirValues) {
  struct Case {
    const char* name;
    Table::Plane Table::*plane;
    int a, b, value;
  };
  constexpr Case kCases[] = {
      {"add", &Table::add, 200, 55, 255},
      {"add", &Table::add, 200, 56, 255},
      {"multiply", &Table::multiply, 128, 128, 64},
      {"multiply", &Table::multiply, 3, 42, 0},
      {"multiply", &Table::multiply, 3, 43, 1},
      {"screen", &Table::screen, 0, 0, 1},
      {"screen", &Table::screen, 255, 7, 255},
      {"overlay", &Table::overlay, 128, 0, 1},
      {"overlay", &Table::overlay, 127, 255, 253},
      {"softLight", &Table::softLight, 128, 0, 64},
      {"softLight", &Table::softLight, 128, 255, 180},
      {"softLight", &Table::softLight, 64, 192, 96},
      {"hardLight", &Table::hardLight, 255, 127, 254},
      {"hardLight", &Table::hardLight, 0, 128, 1},
      {"colorDodge", &Table::colorDodge, 0, 255, 255},
      {"colorDodge", &Table::colorDodge, 100, 128, 200},
      {"colorBurn", &Table::colorBurn, 255, 0, 0},
      {"colorBurn", &Table::colorBurn, 200, 128, 146},
      {"darken", &Table::darken, 9, 7, 7},
      {"lighten", &Table::lighten, 9, 7, 9},
      {"difference", &Table::difference, 7, 9, 2},
      {"exclusion", &Table::exclusion, 100, 200, 144},
      {"hardMix", &Table::hardMix, 127, 127, 255},
      {"hardMix", &Table::hardMix, 127, 126, 0},
      {"vividLight", &Table::vividLight, 0, 255, 255},
      {"vividLight", &Table::vividLight, 255, 0, 0},
      {"vividLight", &Table::vividLight, 200, 100, 185},
      {"vividLight", &Table::vividLight, 100, 200, 230},
      {"linearBurn", &Table::linearBurn, 200, 100, 45},
      {"linearDodge", &Table::linearDodge, 200, 100, 255},
      {"pinLight", &Table::pinLight, 10, 200, 145},
      {"pinLight", &Table::pinLight, 200, 10, 20},
      {"linearLight", &Table::linearLight, 100, 100, 45},
      {"divide", &Table::divide, 255, 255, 254},
      {"divide", &Table::divide, 0, 0, 255},
      {"divide", &Table::divide, 1, 1, 170},
      {"exclusion", &Table::exclusion, 255, 255, 0},
      {"vividLight", &Table::vividLight, 100, 100, 57},
      {"linearLight", &Table::linearLight, 0, 0, 0},
      {"colorBurn", &Table::colorBurn, 0, 1, 0},
      {"colorDodge", &Table::colorDodge, 255, 1, 255},
      {"linearBurn", &Table::linearBurn, 10, 20, 0},
      {"screen255", &Table::screen255, 255, 0, 255},
      {"screen255", &Table::screen255, 0, 255, 255},
      {"screen255", &Table::screen255, 0, 0, 0},
      {"screen255", &Table::screen255, 100, 200, 221},
  };
  const auto table = acquireTable();
  for (const Case& c : kCases) EXPECT_EQ((*table.*c.plane)[c.a][c.b], c.value) << c.name << " " << c.a << " " << c.b;
}

TEST(BlendTable, PlanesFollowOneAnother) {
  const auto table = acquireTable();
  const auto* start = reinterpret_cast<const uint8_t*>(table.get());
  EXPECT_EQ(&table->multiply[3][43], start + 1 * 65536 + 3 * 256 + 43);
  EXPECT_EQ(&table->mix[200][100][128], start + 19 * 65536 + (200 * 256 + 100) * 265 + 128);
}

TEST(BlendTable, MultiplyIsTheRoundedProduct) {
  const auto table = acquireTable();
  for (int a = 0; a < 256; ++a) {
    for (int b = 0; b < 256; ++b) ASSERT_EQ(table->multiply[a][b], std::lround(a * b / 255.0)) << a << " " << b;
  }
}

// The largest m with 255 m <= a t + b (255 - t), found by counting up: as t grows by one, the right side moves
// by a - b.
TEST(BlendTable, MixIsTheTruncatedWeightedMean) {
  const auto table = acquireTable();
  for (int a = 0; a < 256; ++a) {
    for (int b = 0; b < 256; ++b) {
      int mean = b, rest = 0;
      for (int t = 0; t < 256; ++t) {
        ASSERT_EQ(table->mix[a][b][t], mean) << a << " " << b << " " << t;
        rest += a - b;
        if (rest >= 255) ++mean, rest -= 255;
        if (rest < 0) --mean, rest += 255;
      }
    }
  }
}

TEST(BlendTable, IsBuiltOnceForAllThreads) {
  std::vector<const Table*> tables(8);
  std::vector<std::thread> threads;
  for (const Table*& table : tables) threads.emplace_back([&table] { table = acquireTable().get(); });
  for (std::thread& thread : threads) thread.join();
  for (const Table* table : tables) EXPECT_EQ(table, acquireTable().get());
}

}  // namespace
}  // namespace Lumvane
