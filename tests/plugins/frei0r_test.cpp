// The plug-ins used as by a host: loaded from their files and called through their exports.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <inttypes.h>
#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <thread>

#include "tests/effects.h"

extern "C" {
#include <frei0r.h>
}

namespace {

using test::Frame;
using test::TemporaryFile;

struct Plugin {
  void* library;
#define FREI0R_FUNCTIONS(DO) \
  DO(f0r_init)               \
  DO(f0r_deinit) DO(f0r_construct) DO(f0r_destruct) DO(f0r_set_param_value) DO(f0r_get_param_value) DO(f0r_update)
#define DECLARE(name) decltype(&::name) name;
#define LOAD(name) name = reinterpret_cast<decltype(name)>(dlsym(library, #name));
  FREI0R_FUNCTIONS(DECLARE)
  explicit Plugin(const std::string& name)
      : library(dlopen((PLUGIN_FOLDER "/" + name + ".so").c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (library == nullptr) throw std::runtime_error(dlerror());
    FREI0R_FUNCTIONS(LOAD)
    f0r_init();
  }
  ~Plugin() {
    f0r_deinit();
    dlclose(library);
  }
  Plugin(const Plugin&) = delete;
};

struct Instance {
  const Plugin& plugin;
  f0r_instance_t handle;
  Instance(const Plugin& from, unsigned width, unsigned height)
      : plugin(from), handle(from.f0r_construct(width, height)) {}
  ~Instance() { plugin.f0r_destruct(handle); }
  Instance(const Instance&) = delete;

  void set(int index, double value) { plugin.f0r_set_param_value(handle, &value, index); }
  void set(int index, std::string text) {
    f0r_param_string pointer = text.data();
    plugin.f0r_set_param_value(handle, &pointer, index);
    text.assign(text.size(), '?');  // the plug-in must have copied it
  }
  double number(int index) {
    double value = -1.0;
    plugin.f0r_get_param_value(handle, &value, index);
    return value;
  }
  test::Bytes update(const test::Bytes& pixels, int width, int height) {
    Frame src(width, height), dst(width, height);
    src.fill(pixels);
    plugin.f0r_update(handle, 0.0, reinterpret_cast<uint32_t*>(src.data()), reinterpret_cast<uint32_t*>(dst.data()));
    EXPECT_TRUE(dst.guardsIntact());
    EXPECT_EQ(src.packed(), pixels);
    plugin.f0r_update(handle, 0.0, reinterpret_cast<uint32_t*>(src.data()), reinterpret_cast<uint32_t*>(src.data()));
    EXPECT_EQ(src.packed(), dst.packed()) << "in place";
    return dst.packed();
  }
};

std::string pathOf(const TemporaryFile& file) { return std::filesystem::path(file.utf16()).string(); }

void copyAlpha(test::Bytes& to, const test::Bytes& from) {
  for (size_t i = 3; i < to.size(); i += 4) to[i] = from[i];
}

// The library's result for a frame with the parameters that setParameters sets.
test::Bytes expected(const std::string& name, const test::Bytes& src, int width, int height,
                     const TemporaryFile& cube) {
  const bool isLut = name == "lumvane_lut";
  test::Bytes from = src, dst(src.size());
  if (isLut) copyAlpha(from, test::Bytes(src.size(), 255));
  const test::Render render = isLut                       ? test::grading(cube.utf16(), 57)
                              : name == "lumvane_clarity" ? test::clarity(14, 29)
                                                          : test::whiteBalance(-0.42f, 0.14f);
  render(dst.data(), 0, from.data(), 0, width, height);
  if (isLut) copyAlpha(dst, src);
  return dst;
}

class EveryPlugin : public testing::TestWithParam<std::string> {
 protected:
  Plugin plugin{GetParam()};
  TemporaryFile cube{"negative.cube", test::negativeCube()};

  void setParameters(Instance& instance) {
    const bool isLut = GetParam() == "lumvane_lut";
    if (isLut) instance.set(0, pathOf(cube));
    if (!isLut) instance.set(0, 0.29);
    instance.set(1, 0.57);  // both times 100, and this one times 200, are slightly below a whole number
  }
};
INSTANTIATE_TEST_SUITE_P(, EveryPlugin, testing::Values("lumvane_lut", "lumvane_clarity", "lumvane_whitebalance"),
                         [](const auto& info) { return info.param; });

TEST_P(EveryPlugin, RefusesInvalidSizesAndNeedsNoMemoryToBeListed) {
  for (const auto& [width, height] : {std::pair{0u, 480u}, {640u, 0u}, {1u << 30, 1u}, {1u, 1u << 31}}) {
    EXPECT_EQ(plugin.f0r_construct(width, height), nullptr) << width << " x " << height;
  }
  // The largest possible size: memory for its pixels could not be allocated.
  Instance huge(plugin, (1u << 29) - 1, std::numeric_limits<int32_t>::max());
  for (const auto& [value, kept] : {std::pair{0.25, 0.25}, {-0.5, 0.0}, {1.5, 1.0}, {double{NAN}, 0.0}}) {
    huge.set(1, value);
    EXPECT_EQ(huge.number(1), kept);
  }
  huge.set(3, 0.5);
  huge.set(-1, 0.5);
  EXPECT_EQ(huge.number(3), -1.0) << "there is no such parameter";
}

TEST_P(EveryPlugin, GivesTheLibrarysPixelsAndNoEffectByDefault) {
  for (const auto& [width, height] : {std::pair{1, 1}, {7, 3}, {1, 200}, {200, 1}, {129, 67}, {640, 360}}) {
    Instance instance(plugin, width, height);
    for (unsigned seed = 1; seed <= 2; ++seed) {
      const test::Bytes src = test::noise(size_t{4} * width * height, seed);
      const test::Bytes right = expected(GetParam(), src, width, height, cube);
      EXPECT_TRUE(seed != 1 || instance.update(src, width, height) == src);
      setParameters(instance);
      EXPECT_EQ(instance.update(src, width, height), right) << width << " x " << height;
      instance.set(1, 0.2);
      EXPECT_TRUE(width == 1 || instance.update(src, width, height) != right) << width << " x " << height;
    }
  }
}

TEST_P(EveryPlugin, ServesManyThreadsOnOneInstance) {
  Instance instance(plugin, 160, 90);
  setParameters(instance);
  std::atomic<int> wrong = 0;
  std::vector<std::jthread> threads;
  for (unsigned thread = 0; thread < 8; ++thread) {
    threads.emplace_back([&, thread] {
      const test::Bytes src = test::noise(size_t{4} * 160 * 90, thread);
      const test::Bytes right = expected(GetParam(), src, 160, 90, cube);
      for (int round = 0; round < 10; ++round) {
        setParameters(instance);
        wrong += instance.update(src, 160, 90) != right;
      }
    });
  }
  threads.clear();
  EXPECT_EQ(wrong, 0);
}

class LutPlugin : public testing::Test {
 protected:
  Plugin plugin{"lumvane_lut"};
  Instance instance{plugin, 40, 30};
  const test::Bytes src = test::noise(4 * 40 * 30, 1);
  // UTF-8, as hosts pass paths.
  std::unique_ptr<TemporaryFile> cube =
      std::make_unique<TemporaryFile>(u8"l\u00fcmi\u00e8re \u5149.cube", test::negativeCube());
  std::string path = pathOf(*cube);
};

TEST_F(LutPlugin, PassesThePictureThroughWithoutAUsableFile) {
  const TemporaryFile broken("broken.cube", "LUT_3D_SIZE 2\n0 0 0\n");
  const std::string folder = path.substr(0, path.rfind('/'));
  for (const std::string& unusable : {std::string("none.cube"), pathOf(broken), folder, folder + "/.cube",
                                      std::string("\xff\xfe.cube"), std::string("no extension"), std::string()}) {
    instance.set(0, path);
    EXPECT_NE(instance.update(src, 40, 30), src);
    instance.set(0, unusable);
    testing::internal::CaptureStderr();
    EXPECT_EQ(instance.update(src, 40, 30), src) << unusable;
    const std::string output = testing::internal::GetCapturedStderr();  // of two frames
    EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), unusable.empty() ? 0 : 1) << output;
    EXPECT_NE(output.find(unusable), std::string::npos) << output;
  }
  f0r_param_string none = nullptr;
  plugin.f0r_set_param_value(instance.handle, &none, 0);
}

TEST_F(LutPlugin, ReadsItsFileOnlyWhenThePathChanges) {
  instance.set(0, path);
  const test::Bytes graded = instance.update(src, 40, 30);
  cube.reset();
  instance.set(0, path);
  EXPECT_EQ(instance.update(src, 40, 30), graded) << "the path is the same, although the file is gone";
  instance.set(0, "other.cube");
  instance.set(2, path);
  EXPECT_EQ(instance.update(src, 40, 30), graded) << "filename takes precedence over path";
  f0r_param_string text = nullptr;
  plugin.f0r_get_param_value(instance.handle, &text, 2);
  EXPECT_EQ(text, path);
  instance.set(2, "");
  instance.update(src, 40, 30);
  instance.set(0, path);
  EXPECT_EQ(instance.update(src, 40, 30), src) << "the path is set again, but the file is gone";
}

#ifndef LUMVANE_SANITIZED  // sanitizers abort when memory cannot be allocated
TEST_F(LutPlugin, LoadsWithTheNextFrameWhenMemoryWasShort) {
  instance.set(0, path);
  rlimit limit;
  getrlimit(RLIMIT_DATA, &limit);
  const rlimit none = {1, limit.rlim_max};
  test::Bytes in = src, out(src.size());
  setrlimit(RLIMIT_DATA, &none);
  plugin.f0r_update(instance.handle, 0.0, reinterpret_cast<uint32_t*>(in.data()),
                    reinterpret_cast<uint32_t*>(out.data()));
  setrlimit(RLIMIT_DATA, &limit);
  EXPECT_EQ(out, src);
  EXPECT_NE(instance.update(src, 40, 30), src);
}
#endif

}  // namespace
