#include <cmath>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "effect.h"
#include "lumvane.h"

namespace plugins {

const Description kDescription = {
    "Lumvane LUT",
    "Recolours the picture through a 3D lookup table from a file",
    3,
    {{"path", "LUT file, .cube or .3dl; if it is missing or cannot be used, the picture is unchanged", true, 0.0},
     {"strength", "0 to 1 is 0 to 100 percent of the LUT; 0 changes nothing", false, 1.0},
     // MLT saves paths near the project as relative, and resolves them on load only for a few names such as this one.
     {"filename", "used instead of path if both are set", true, 0.0}}};

namespace {

using LutHandle = std::unique_ptr<void, decltype(&Destory3DLutColorAdjustEffect)>;

class LutEffect : public Effect {
 public:
  bool render(const Values& values, const Frame& frame) override {
    load(values.texts[values.texts[2].empty() ? 0 : 2]);
    const auto strength = static_cast<int32_t>(std::lround(values.numbers[1] * 100.0));
    if (!handle_ || strength == 0) return false;

    // Hosts pass straight alpha, but the library would multiply colours by alpha. So the picture is graded as opaque
    // and its alpha restored.
    opaque_.assign(frame.src, frame.src + frame.bytes());
    alpha_.resize(opaque_.size() / 4);
    for (size_t i = 0; i < alpha_.size(); ++i) alpha_[i] = std::exchange(opaque_[4 * i + 3], uint8_t{255});
    Lut3DColorAdjustEffectProcess(handle_.get(), frame.dst, frame.width, frame.height, 0, opaque_.data(), frame.width,
                                  frame.height, 0, strength);
    for (size_t i = 0; i < alpha_.size(); ++i) frame.dst[4 * i + 3] = alpha_[i];
    return true;
  }

 private:
  // Hosts set the path before every frame; the file is opened only if the path changed. After an exception, when memory
  // ran out, the next frame tries again.
  void load(const std::string& path) {
    if (path == path_) return;
    handle_.reset(open(path));
    path_ = path;
    // The host shows only an unchanged picture, as if the plug-in were missing, and frei0r has no way to report errors.
    if (handle_ || path.empty()) return;
    std::error_code ignored;
    std::fprintf(stderr, "lumvane_lut: cannot use '%s': %s\n", path.c_str(),
                 std::filesystem::exists(path, ignored) ? "it is not a .cube or .3dl file, damaged, or unreadable"
                                                        : "no such file");
  }

  static void* open(const std::string& path) try {
    const std::u8string utf8(path.begin(), path.end());
    return Create3DLutColorAdjustEffect(std::filesystem::path(utf8).u16string().c_str(), 0, 0);
  } catch (const std::system_error&) {  // not valid UTF-8
    return nullptr;
  }

  std::string path_;
  LutHandle handle_{nullptr, &Destory3DLutColorAdjustEffect};
  std::vector<uint8_t> opaque_, alpha_;
};

}  // namespace

std::unique_ptr<Effect> makeEffect() { return std::make_unique<LutEffect>(); }

}  // namespace plugins
