#include "lut/blend_table.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "base/large_pages.h"
#include "base/parallel.h"
#include "base/unload.h"

namespace Lumvane {
namespace {

// Operands are 0 to 255. Divisions truncate toward zero. All results fit a byte: formulas that could exceed it clamp
// explicitly.

int screen(int a, int b) { return 255 - (((255 - a) * (255 - b)) >> 8); }
int screen255(int a, int b) { return a + ((255 - a) * b) / 255; }

// The dark half divides by 256, the light half by 255.
int overlay(int a, int b) { return a < 128 ? (2 * a * b) >> 8 : 255 - (2 * (255 - a) * (255 - b)) / 255; }
int hardLight(int a, int b) { return b < 128 ? (2 * a * b) / 255 : 255 - (2 * (255 - a) * (255 - b)) / 255; }

int softLight(int a, int b) {
  const float x = static_cast<float>(a) / 255.0f;
  const float y = static_cast<float>(b) / 255.0f;
  const float blend = b < 128 ? ((1.0f - y * 2.0f) * (x * x) + (x * 2.0f) * y) * 255.0f
                              : (std::sqrt(x) * (y * 2.0f - 1.0f) + (1.0f - y) * (x * 2.0f)) * 255.0f;
  return static_cast<int>(blend);
}

int colorDodge(int a, int b) { return b == 255 ? 255 : std::min((a * 255) / (255 - b), 255); }
int colorBurn(int a, int b) { return b == 0 ? 0 : std::max(255 - ((255 - a) * 255) / b, 0); }

int vividLight(int a, int b) {
  if (b == 0) return 0;
  if (b == 255) return 255;
  return b < 128 ? std::max(255 - ((255 - a) * 256) / (2 * b), 0) : std::min((a * 256) / (511 - 2 * b), 255);
}

int pinLight(int a, int b) { return std::max(2 * b - 255, std::min(a, 2 * b)); }
int linearLight(int a, int b) { return std::clamp(a + 2 * b - 255, 0, 255); }

int divide(int a, int b) {
  if (b == 0) return 255;
  return static_cast<int>(std::min(static_cast<float>(a * 255) / (static_cast<float>(b) + 0.5f), 255.0f));
}

template <class Blend>
void fill(Table::Plane& plane, const Blend& blend) {
  for (int a = 0; a < 256; ++a) {
    for (int b = 0; b < 256; ++b) plane[a][b] = static_cast<uint8_t>(blend(a, b));
  }
}

// (a * t + b * (255 - t)) / 255. There are 17 million entries, so the loop uses 16-bit arithmetic, which compilers
// vectorize: sums wrap round to the right value, and x / 255 is x * 0x8081 / 2^23 for all 16-bit values.
void fillMix(uint8_t (&row)[265], int a, int b) {
  const auto start = static_cast<uint16_t>(255 * b), step = static_cast<uint16_t>(a - b);
  for (uint16_t t = 0; t < 256; ++t) {
    const auto x = static_cast<uint16_t>(start + step * t);
    row[t] = static_cast<uint8_t>(static_cast<uint16_t>((x * 0x8081u) >> 16) >> 7);
  }
}

std::shared_ptr<const Table> buildTable() {
  const auto table = std::make_shared_for_overwrite<Table>();
  adviseLargePages(table.get(), sizeof(Table));
  fill(table->add, [](int a, int b) { return std::min(a + b, 255); });
  fill(table->multiply, [](int a, int b) { return (a * b + 127) / 255; });
  fill(table->screen, screen);
  fill(table->overlay, overlay);
  fill(table->softLight, softLight);
  fill(table->hardLight, hardLight);
  fill(table->colorDodge, colorDodge);
  fill(table->colorBurn, colorBurn);
  fill(table->darken, [](int a, int b) { return std::min(a, b); });
  fill(table->lighten, [](int a, int b) { return std::max(a, b); });
  fill(table->difference, [](int a, int b) { return std::abs(a - b); });
  fill(table->exclusion, [](int a, int b) { return a + b - (2 * a * b) / 255; });
  fill(table->hardMix, [](int a, int b) { return a + b < 254 ? 0 : 255; });
  fill(table->vividLight, vividLight);
  fill(table->linearBurn, [](int a, int b) { return std::max(a + b - 255, 0); });
  fill(table->linearDodge, [](int a, int b) { return std::min(a + b, 255); });
  fill(table->pinLight, pinLight);
  fill(table->linearLight, linearLight);
  fill(table->divide, divide);
  fill(table->screen255, screen255);
  runParallel(256, [&table](const cv::Range& range) {
    for (int a = range.start; a < range.end; ++a) {
      for (int b = 0; b < 256; ++b) fillMix(table->mix[a][b], a, b);
    }
  });
  return table;
}

constinit const std::shared_ptr<const Table>* theTable = nullptr;

LUMVANE_WHEN_UNLOADED void releaseTable() {
  if (!processExiting) delete theTable;
}

}  // namespace

std::shared_ptr<const Table> acquireTable() {
  static const auto* const table = theTable = new std::shared_ptr(buildTable());
  return *table;
}

}  // namespace Lumvane
