#include "lut/blend_table.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

namespace Lumvane {
namespace {

TEST(BlendTable, PlanesHoldTheirValues) {
  // Of each plane some operands a, b and their entry: what the formulas turn on, a clamp, a limit, a divisor.
  struct Entry {
    int a, b, value;
  };
  const std::pair<Table::Plane Table::*, std::vector<Entry>> planes[] = {
      {&Table::add, {{200, 55, 255}, {200, 56, 255}}},
      {&Table::multiply, {{128, 128, 64}, {3, 42, 0}, {3, 43, 1}}},
      {&Table::screen, {{0, 0, 1}, {255, 7, 255}}},
      {&Table::overlay, {{128, 0, 1}, {127, 255, 253}}},
      {&Table::softLight, {{128, 0, 64}, {128, 255, 180}, {64, 192, 96}}},
      {&Table::hardLight, {{255, 127, 254}, {0, 128, 1}}},
      {&Table::colorDodge, {{0, 255, 255}, {100, 128, 200}, {255, 1, 255}}},
      {&Table::colorBurn, {{255, 0, 0}, {200, 128, 146}, {0, 1, 0}}},
      {&Table::darken, {{9, 7, 7}}},
      {&Table::lighten, {{9, 7, 9}}},
      {&Table::difference, {{7, 9, 2}}},
      {&Table::exclusion, {{100, 200, 144}, {255, 255, 0}}},
      {&Table::hardMix, {{127, 127, 255}, {127, 126, 0}}},
      {&Table::vividLight, {{0, 255, 255}, {255, 0, 0}, {200, 100, 185}, {100, 200, 230}, {100, 100, 57}}},
      {&Table::linearBurn, {{200, 100, 45}, {10, 20, 0}}},
      {&Table::linearDodge, {{200, 100, 255}}},
      {&Table::pinLight, {{10, 200, 145}, {200, 10, 20}}},
      {&Table::linearLight, {{100, 100, 45}, {0, 0, 0}}},
      {&Table::divide, {{255, 255, 254}, {0, 0, 255}, {1, 1, 170}}},
      {&Table::screen255, {{255, 0, 255}, {0, 255, 255}, {0, 0, 0}, {100, 200, 221}}}};
  const auto table = acquireTable();
  for (const auto& [plane, entries] : planes) {
    for (const auto& [a, b, value] : entries) {
      EXPECT_EQ(((*table).*plane)[a][b], value)
          << "plane at " << reinterpret_cast<const uint8_t*>(&((*table).*plane)) - &table->add[0][0] << ", " << a
          << ", " << b;
    }
  }
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

}  // namespace
}  // namespace Lumvane
