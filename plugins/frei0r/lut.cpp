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
    {{"path", "LUT file, .cube or .3dl; without one, or with one that cannot be used, the picture stays as it is", true,
      0.0},
     {"strength", "0 to 1 is 0 to 100 percent of the LUT; 0 changes nothing", false, 1.0},
     // MLT writes files beside a project relative to it, and completes them again only under a few names, like this.
     {"filename", "used instead of path where both are set", true, 0.0}}};

namespace {

using LutHandle = std::unique_ptr<void, decltype(&Destory3DLutColorAdjustEffect)>;

class LutEffect : public Effect {
 public:
  bool render(const Values& values, const Frame& frame) override {
    load(values.texts[values.texts[2].empty() ? 0 : 2]);
    const auto strength = static_cast<int32_t>(std::lround(values.numbers[1] * 100.0));
    if (!handle_ || strength == 0) return false;

    // Hosts hand over colours that are not multiplied by alpha, and the library would multiply them. So the picture is
    // graded as an opaque one and gets its alpha back.
    opaque_.assign(frame.src, frame.src + frame.bytes());
    alpha_.resize(opaque_.size() / 4);
    for (size_t i = 0; i < alpha_.size(); ++i) alpha_[i] = std::exchange(opaque_[4 * i + 3], uint8_t{255});
    Lut3DColorAdjustEffectProcess(handle_.get(), frame.dst, frame.width, frame.height, 0, opaque_.data(), frame.width,
                                  frame.height, 0, strength);
    for (size_t i = 0; i < alpha_.size(); ++i) frame.dst[4 * i + 3] = alpha_[i];
    return true;
  }

 private:
  // Hosts name the path again before every frame; the file is looked at only when it is another one than before. What
  // throws on the way, for want of memory, is tried again with the next frame.
  void load(const std::string& path) {
    if (path == path_) return;
    handle_.reset(open(path));
    path_ = path;
    // A picture that stays as it is looks as if there were no plug-in, and no host asks for a reason.
    if (handle_ || path.empty()) return;
    std::error_code unknown;
    std::fprintf(stderr, "lumvane_lut: cannot use '%s': %s\n", path.c_str(),
                 std::filesystem::exists(path, unknown) ? "it is no .cube or .3dl file, damaged, or not to be read"
                                                        : "there is no such file");
  }

  static void* open(const std::string& path) try {
    const std::u8string utf8(path.begin(), path.end());
    return Create3DLutColorAdjustEffect(std::filesystem::path(utf8).u16string().c_str(), 0, 0);
  } catch (const std::system_error&) {  // no UTF-8
    return nullptr;
  }

  std::string path_;
  LutHandle handle_{nullptr, &Destory3DLutColorAdjustEffect};
  std::vector<uint8_t> opaque_, alpha_;
};

}  // namespace

std::unique_ptr<Effect> makeEffect() { return std::make_unique<LutEffect>(); }

}  // namespace plugins
