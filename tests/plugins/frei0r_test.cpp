#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <thread>

#include "lumvane.h"
#include "tests/inputs.h"
#include "tests/plugins/loaded_plugin.h"

namespace {

using test::Frame;
using test::Instance;
using test::LoadedPlugin;

const std::string kNames[] = {"lumvane_lut", "lumvane_clarity", "lumvane_whitebalance"};

bool isLut(const std::string& name) { return name == "lumvane_lut"; }

std::string pathOf(const test::TemporaryFile& file) { return std::filesystem::path(file.utf16()).string(); }

Frame noise(int width, int height, unsigned seed = 1) {
  Frame frame(width, height);
  frame.fillWithNoise(seed);
  return frame;
}

Frame updated(Instance& instance, Frame src) {
  const std::vector<uint8_t> before = src.bytes;
  Frame dst(src.width, src.height);
  instance.update(src.data(), dst.data());
  EXPECT_TRUE(dst.guardsIntact());
  EXPECT_EQ(src.bytes, before);
  return dst;
}

// Values away from the neutral ones.
void setSome(Instance& instance, const std::string& name, const test::TemporaryFile& cube) {
  if (isLut(name)) {
    instance.set(0, pathOf(cube));
    instance.set(1, 0.6);
  } else {
    instance.set(0, 0.7);
    instance.set(1, 0.6);
  }
}

// What the library makes of a frame with the values of setSome.
Frame expected(const std::string& name, Frame src, const test::TemporaryFile& cube) {
  Frame dst(src.width, src.height);
  const int w = src.width, h = src.height;
  if (isLut(name)) {
    Frame opaque = src;
    for (int i = 3; i < 4 * w * h; i += 4) opaque.data()[i] = 255;
    void* effect = Create3DLutColorAdjustEffect(cube.utf16().c_str(), w, h);
    Lut3DColorAdjustEffectProcess(effect, dst.data(), w, h, 0, opaque.data(), w, h, 0, 60);
    Destory3DLutColorAdjustEffect(effect);
    for (int i = 3; i < 4 * w * h; i += 4) dst.data()[i] = src.data()[i];
  } else if (name == "lumvane_clarity") {
    void* effect = CreateNLEPureCClarity(w, h, 0, 20, 70);
    NLEPureCClarityProcess(effect, dst.data(), w, h, 0, src.data(), w, h, 0);
    DestoryNLEPureCClarity(effect);
  } else {
    WhiteBalanceFun(src.data(), dst.data(), 0.0f, 0.0f, 0.0f, 0.4f, 0.2f, w, h);
  }
  return dst;
}

class EveryPlugin : public testing::TestWithParam<std::string> {
 protected:
  LoadedPlugin plugin{GetParam()};
  test::TemporaryFile cube{"negative.cube", test::negativeCube()};
};

INSTANTIATE_TEST_SUITE_P(, EveryPlugin, testing::ValuesIn(kNames), [](const auto& info) { return info.param; });

TEST_P(EveryPlugin, RefusesSizesThatNoFrameHas) {
  for (const auto& [width, height] : {std::pair{0u, 480u}, {640u, 0u}, {1u << 30, 1u}, {1u, 1u << 31}}) {
    EXPECT_EQ(plugin.construct(width, height), nullptr) << width << " x " << height;
  }
}

TEST_P(EveryPlugin, TakesNoMemoryForFramesToBeListed) {
  // The largest frame there is: its pixels could not be had.
  Instance huge(plugin, (1u << 29) - 1, std::numeric_limits<int32_t>::max());
  huge.set(1, 0.5);
  EXPECT_EQ(huge.number(1), 0.5);
}

TEST_P(EveryPlugin, KeepsItsParameters) {
  Instance instance(plugin, 640, 480);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const auto& [value, kept] : {std::pair{0.25, 0.25}, {-0.5, 0.0}, {1.5, 1.0}, {nan, 0.0}}) {
    instance.set(1, value);
    EXPECT_EQ(instance.number(1), kept);
  }
  instance.set(2, 0.5);
  instance.set(-1, 0.5);
  EXPECT_EQ(instance.number(2), -1.0) << "there is no such parameter";
  if (isLut(GetParam())) {
    EXPECT_EQ(instance.text(0), "");
    instance.set(0, "looks/a look.cube");
    EXPECT_EQ(instance.text(0), "looks/a look.cube");
  }
}

TEST_P(EveryPlugin, ChangesNothingToBeginWith) {
  Instance instance(plugin, 33, 21);
  Frame src = noise(33, 21);
  EXPECT_EQ(updated(instance, src).bytes, src.bytes);
}

TEST_P(EveryPlugin, GivesTheLibrarysPixelsAtEverySize) {
  for (const auto& [width, height] : {std::pair{1, 1}, {7, 3}, {1, 200}, {200, 1}, {129, 67}, {640, 360}}) {
    Instance instance(plugin, width, height);
    setSome(instance, GetParam(), cube);
    for (unsigned seed = 1; seed <= 2; ++seed) {
      const Frame src = noise(width, height, seed);
      EXPECT_EQ(updated(instance, src).bytes, expected(GetParam(), src, cube).bytes) << width << " x " << height;
    }
  }
}

TEST_P(EveryPlugin, FollowsItsParametersFromFrameToFrame) {
  Instance instance(plugin, 80, 70);
  const Frame src = noise(80, 70);
  setSome(instance, GetParam(), cube);
  const Frame some = updated(instance, src);
  instance.set(1, 0.2);
  EXPECT_NE(updated(instance, src).bytes, some.bytes);
  setSome(instance, GetParam(), cube);
  EXPECT_EQ(updated(instance, src).bytes, some.bytes);
}

TEST_P(EveryPlugin, ServesManyThreadsOnOneInstance) {
  Instance instance(plugin, 160, 90);
  setSome(instance, GetParam(), cube);
  constexpr unsigned kThreads = 8;
  int wrong[kThreads] = {};
  std::vector<std::thread> threads;
  for (unsigned thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      Frame src = noise(160, 90, thread), dst(160, 90);
      const Frame right = expected(GetParam(), src, cube);
      for (int round = 0; round < 10; ++round) {
        setSome(instance, GetParam(), cube);
        instance.update(src.data(), dst.data());
        wrong[thread] += dst.bytes != right.bytes;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const int count : wrong) EXPECT_EQ(count, 0);
}

class LutPlugin : public testing::Test {
 protected:
  LoadedPlugin plugin{"lumvane_lut"};
  Instance instance{plugin, 40, 30};
  Frame src = noise(40, 30);
};

TEST_F(LutPlugin, PassesThePictureThroughWithoutAUsableFile) {
  const test::TemporaryFile good("good.cube", test::negativeCube()), broken("broken.cube", "LUT_3D_SIZE 2\n0 0 0\n");
  const std::string folder = pathOf(good).substr(0, pathOf(good).rfind('/'));
  for (const std::string& path : {std::string("none.cube"), pathOf(broken), folder, folder + "/.cube",
                                  std::string("\xff\xfe.cube"), std::string("no extension"), std::string()}) {
    instance.set(0, pathOf(good));
    EXPECT_NE(updated(instance, src).bytes, src.bytes);
    instance.set(0, path);
    EXPECT_EQ(updated(instance, src).bytes, src.bytes) << path;
  }
  f0r_param_string none = nullptr;
  const f0r_instance_t bare = plugin.construct(8, 8);
  plugin.set(bare, &none, 0);
  plugin.destruct(bare);
}

TEST_F(LutPlugin, LooksAtItsFileOnlyWhenThePathChanges) {
  auto cube = std::make_unique<test::TemporaryFile>("negative.cube", test::negativeCube());
  const std::string path = pathOf(*cube);
  instance.set(0, path);
  const Frame graded = updated(instance, src);
  cube.reset();
  instance.set(0, path);
  EXPECT_EQ(updated(instance, src).bytes, graded.bytes) << "the same path, and the file is gone";
  instance.set(0, "other.cube");
  updated(instance, src);
  instance.set(0, path);
  EXPECT_EQ(updated(instance, src).bytes, src.bytes) << "the path anew, and the file is gone";
}

TEST_F(LutPlugin, TakesAPathInUtf8) {
  const test::TemporaryFile cube(u8"l\u00fcmi\u00e8re \u5149.cube", test::negativeCube());
  instance.set(0, pathOf(cube));
  EXPECT_NE(updated(instance, src).bytes, src.bytes);
}

TEST_F(LutPlugin, RoundsItsStrengthToPercents) {
  const test::TemporaryFile cube("negative.cube", test::negativeCube());
  instance.set(0, pathOf(cube));
  const auto at = [&](double strength) {
    instance.set(1, strength);
    return updated(instance, src).bytes;
  };
  EXPECT_EQ(at(0.004), src.bytes);
  EXPECT_EQ(at(0.57), at(0.574));  // 0.57 * 100 is less than 57
  EXPECT_NE(at(0.57), at(0.564));
}

}  // namespace
