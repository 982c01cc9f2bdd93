#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <opencv2/core/utility.hpp>

#include "lumvane.h"
#include "tests/inputs.h"

namespace {

using test::Frame;
using test::negativeCube;
using test::TemporaryFile;

struct Effect {
  void* handle;
  explicit Effect(const std::u16string& path) : handle(Create3DLutColorAdjustEffect(path.c_str(), 1920, 1080)) {}
  ~Effect() { Destory3DLutColorAdjustEffect(handle); }
  void process(Frame& dst, Frame& src, int strength) const {
    Lut3DColorAdjustEffectProcess(handle, dst.data(), src.width, src.height, dst.stride, src.data(), 0, 0, src.stride,
                                  strength);
  }
};

TEST(LutEffect, IsCreatedByPathAndExtension) {
  const int firstFree = dup(STDERR_FILENO);  // the lowest descriptor that is not in use
  close(firstFree);
  std::string threeDl = "0 511 1023\n";
  for (int i = 0; i < 27; ++i) threeDl += "4095 0 0\n";
  // File names by the format they are read as: none, .cube, .3dl.
  const std::vector<const char16_t*> names[] = {
      {u"grade.cube.bak", u"grade", u"grade.txt", u"dir.cube/grade"},
      {u"grade.cube", u"grade.Cube", u"grade.CUBE", u"v1.2/my.look.cube", u".cube", u"gr\u00e4de \u8272.cube",
       u"\U0001F3A8.cube", u"with\\backslash.cube"},
      {u"grade.3dl", u"grade.3DL", u"grade.3dL"}};
  for (int format = 0; format < 3; ++format) {
    for (const char16_t* name : names[format]) {
      const std::filesystem::path shown = name;
      EXPECT_EQ(Effect(TemporaryFile(name, negativeCube()).utf16()).handle != nullptr, format == 1) << shown;
      EXPECT_EQ(Effect(TemporaryFile(name, threeDl).utf16()).handle != nullptr, format == 2) << shown;
    }
  }
  const TemporaryFile file("folder/grade.cube", negativeCube()), broken("broken.cube", "LUT_3D_SIZE 2\n0 0 0\n");
  std::u16string windowsPath = file.utf16();
  std::replace(windowsPath.begin(), windowsPath.end(), u'/', u'\\');
  EXPECT_NE(Effect(windowsPath).handle, nullptr);
  const std::u16string halfPair = {u'/', 0xD800, u'.', u'c', u'u', u'b', u'e', 0};
  for (const std::u16string& path :
       {std::u16string(), std::u16string(u"/none/none.cube"), file.folder() + u"/.", halfPair, broken.utf16()}) {
    EXPECT_EQ(Effect(path).handle, nullptr);
  }
  EXPECT_EQ(Create3DLutColorAdjustEffect(nullptr, 1, 1), nullptr);
  const int firstFreeAfterwards = dup(STDERR_FILENO);
  close(firstFreeAfterwards);
  EXPECT_EQ(firstFreeAfterwards, firstFree) << "a file or a folder is left open";
}

TEST(LutEffect, IgnoresInvalidFrames) {
  const TemporaryFile file("negative.cube", negativeCube());
  const Effect effect(file.utf16());
  Frame src(4, 4), dst(4, 4);
  const auto before = dst.bytes;
  const auto process = [&](void* handle, uint8_t* to, const uint8_t* from, int width, int height) {
    Lut3DColorAdjustEffectProcess(handle, to, width, height, 0, from, 4, 4, 0, 50);
    EXPECT_EQ(dst.bytes, before) << width << " x " << height;
  };
  for (const auto& [width, height] : {std::pair{0, 4}, {4, 0}, {-1, 4}, {4, -1}, {INT_MIN, INT_MIN}, {-4, -4}}) {
    process(effect.handle, dst.data(), src.data(), width, height);
  }
  process(nullptr, dst.data(), src.data(), 4, 4);
  process(effect.handle, nullptr, src.data(), 4, 4);
  process(effect.handle, dst.data(), nullptr, 4, 4);
  Destory3DLutColorAdjustEffect(nullptr);
}

TEST(LutEffect, FadesByStrength) {
  const TemporaryFile file("negative.cube", negativeCube());
  const Effect effect(file.utf16());
  Frame src(1, 1), dst(1, 1);
  std::fill_n(src.data(), 4, uint8_t{255});
  for (const int strength : {INT_MIN, -1, 0, 1, 25, 50, 75, 99, 100, 101, 150, INT_MAX}) {
    const int s = std::clamp(strength, 0, 100) * 255 / 100;
    std::fill_n(dst.data(), 4, uint8_t{7});
    effect.process(dst, src, strength);
    EXPECT_EQ(dst.data()[1], s == 0 ? 7 : 255 - s) << strength;
    EXPECT_EQ(dst.data()[3], s == 0 ? 7 : 255) << strength;
  }
}

// In place, the fade finds the graded pixel in both source and destination.
TEST(LutEffect, GradesInPlaceAtFullStrength) {
  const TemporaryFile file("random.cube", test::randomCube(9));
  const Effect effect(file.utf16());
  Frame src(150, 100), dst(150, 100);
  src.fillWithNoise(2);
  effect.process(dst, src, 100);
  effect.process(src, src, 30);
  EXPECT_EQ(src.bytes, dst.bytes);
}

// Rows that overlap, as with a stride shorter than a row, are written from top to bottom.
TEST(LutEffect, DoesNotDependOnThreadsWhereRowsOverlap) {
  const TemporaryFile file("random.cube", test::randomCube(9));
  const Effect effect(file.utf16());
  const int before = cv::getNumThreads();
  Frame src(200, 200);
  src.fillWithNoise(2);
  for (const int stride : {400, -400}) {
    for (const int strength : {40, 100}) {
      Frame dst(200, 200, stride), expected = dst;
      cv::setNumThreads(1);
      effect.process(expected, src, strength);
      cv::setNumThreads(3);
      effect.process(dst, src, strength);
      EXPECT_EQ(dst.bytes, expected.bytes) << "stride " << stride << ", strength " << strength;
    }
  }
  cv::setNumThreads(before);
}

}  // namespace
