// Frames next to inaccessible pages, through every export and on every target: access outside the rows crashes the
// program, and changes between the rows are detected.

#include <gtest/gtest.h>

#include "tests/effects.h"
#include "tests/guarded_plane.h"
#include "tests/targets.h"

namespace {

using test::GuardedPlane;
using test::RowLayout;

constexpr auto kPacked = RowLayout::kPacked, kPadded = RowLayout::kPadded, kPageBetween = RowLayout::kPageBetween;
const std::vector<RowLayout> kDownwards = {{kPacked, false, false},      {kPacked, true, false},
                                           {kPadded, false, false},      {kPadded, true, false},
                                           {kPageBetween, false, false}, {kPageBetween, true, false}};
const std::vector<RowLayout> kUpwards = {
    {kPadded, false, true}, {kPadded, true, true}, {kPageBetween, false, true}, {kPageBetween, true, true}};

// All widths up to more than four of the widest vectors, and a few frames that use threads.
std::vector<std::pair<int, int>> sizes() {
  std::vector<std::pair<int, int>> result = {{101, 100}, {1301, 8}, {10007, 1}, {70, 143}};
  for (int width = 1; width <= 70; ++width) {
    for (int height = 1; height <= 3; ++height) result.emplace_back(width, height);
  }
  return result;
}

// Renders into a second frame and in place, in every layout, and compares with the result in ordinary memory.
void expectAccessWithinRows(const std::vector<RowLayout>& layouts, const test::Render& render) {
  for (const auto& [width, height] : sizes()) {
    const std::vector<uint8_t> pixels = test::noise(size_t{4} * width * height, static_cast<unsigned>(width + height));
    std::vector<uint8_t> expected(pixels.size()), inPlace = pixels;
    render(expected.data(), 4 * width, pixels.data(), 4 * width, width, height);
    render(inPlace.data(), 4 * width, inPlace.data(), 4 * width, width, height);
    for (const RowLayout& layout : layouts) {
      const auto where = testing::Message() << width << " x " << height << ", " << testing::PrintToString(layout);
      GuardedPlane src(4 * width, height, layout), dst(4 * width, height, layout);
      src.fill(pixels);
      dst.fill(pixels);
      render(dst.data(), dst.step(), dst.data(), dst.step(), width, height);
      EXPECT_TRUE(dst.packed() == inPlace) << where << ", in place";
      src.makeReadOnly();
      render(dst.data(), dst.step(), src.data(), src.step(), width, height);
      EXPECT_TRUE(dst.packed() == expected) << where;
      EXPECT_TRUE(dst.paddingIntact()) << where;
    }
  }
}

class GuardPages : public test::EveryTarget {};
INSTANTIATE_TEST_SUITE_P(On, GuardPages, test::everyTarget(), test::targetName);

TEST_P(GuardPages, BoundFrames) {
  const test::TemporaryFile file("negative.cube", test::negativeCube());
  for (const int strength : {50, 100}) {
    expectAccessWithinRows(kDownwards, test::grading(file.utf16(), strength));
    expectAccessWithinRows(kUpwards, test::grading(file.utf16(), strength));
  }
  expectAccessWithinRows(kDownwards, test::clarity(40, 80));
  expectAccessWithinRows({kDownwards[0], kDownwards[1]}, test::whiteBalance(0.2f, -0.1f));
}

using Planes = test::Yv12<GuardedPlane>;  // each plane between its own inaccessible pages

TEST_P(GuardPages, BoundHdrFrames) {
  const test::HdrFolder folder(test::negativeCube(), "");
  std::vector<RowLayout> layouts = kDownwards;
  layouts.insert(layouts.end(), kUpwards.begin(), kUpwards.end());
  for (const auto& [width, height] : sizes()) {
    const test::Bytes bytes = test::noise(size_t{2} * width * height + 8, 1);
    for (const int limited : {0, 1}) {
      void* const object = CreateVideoAdjustColor(folder.folder().c_str(), 0, limited, 0, width, height);
      test::Yv12Frame expected(width, height);
      expected.fill(bytes);
      expected.processTo(expected, object);
      for (const RowLayout& layout : layouts) {
        const auto where = testing::Message() << width << " x " << height << ", " << testing::PrintToString(layout);
        Planes src(width, height, layout), dst(width, height, layout);
        src.fill(bytes);
        for (GuardedPlane* plane : {&src.y, &src.v, &src.u}) plane->makeReadOnly();
        src.processTo(dst, object);
        EXPECT_TRUE(dst.packed() == expected.packed()) << where;
        for (GuardedPlane* plane : {&dst.y, &dst.v, &dst.u}) EXPECT_TRUE(plane->paddingIntact()) << where;
        dst.fill(bytes);
        dst.processTo(dst, object);
        EXPECT_TRUE(dst.packed() == expected.packed()) << where << ", in place";
      }
      DestroyVideoAdjustColor(object);
    }
  }
}

}  // namespace
