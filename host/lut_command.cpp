#include "host/lut_command.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <memory>
#include <opencv2/core.hpp>
#include <system_error>

#include "host/fault.h"
#include "host/paths.h"
#include "host/picture_jobs.h"
#include "lumvane.h"

namespace host {
namespace {

namespace fs = std::filesystem;

struct LutOptions {
  PictureArguments pictures;
  std::string lut;
  int strength = 100;
  bool premultiply = false;
};

using LutEffect = std::unique_ptr<void, decltype(&Destory3DLutColorAdjustEffect)>;

// Whether a one-dimensional table is announced ahead of the first rows.
bool holdsCurve(std::ifstream& file) {
  for (std::string line;
       std::getline(file, line) && (line.empty() || !std::isdigit(static_cast<unsigned char>(line[0])));) {
    if (line.rfind("LUT_1D_SIZE", 0) == 0) return true;
  }
  return false;
}

// The library has one answer to every file that it cannot use; people want to know why. And a shaper curve ahead of a
// table it takes for a part of the table.
LutEffect openLut(const std::string& path) {
  const auto refuse = [&](const std::string& reason) {
    throw Fault(ExitCode::kInput, "LUT file '" + path + "' cannot be used: " + reason);
  };
  std::ifstream file(toPath(path), std::ios::binary);
  if (!file) refuse(std::generic_category().message(errno));
  std::error_code notSeen;
  if (fs::is_directory(toPath(path), notSeen)) refuse("it is a folder");
  if (holdsCurve(file)) refuse("it holds a one-dimensional table, and only 3D tables are read");
  LutEffect effect(Create3DLutColorAdjustEffect(libraryPath(path).c_str(), 0, 0), &Destory3DLutColorAdjustEffect);
  if (!effect) {
    refuse(
        "a LUT is a .cube file of 2 to 65 points per axis or a .3dl file of 3 to 65, by its name, with all its rows");
  }
  return effect;
}

// The library multiplies colours by alpha, picture files hold them without. So a picture is graded as an opaque one and
// gets its alpha back, which is right at every strength; `premultiply` gives the library's own answer instead.
cv::Mat grade(void* effect, const cv::Mat& picture, const LutOptions& options) {
  cv::Mat src = picture.clone();
  if (!options.premultiply) cv::insertChannel(cv::Mat(src.size(), CV_8UC1, cv::Scalar(255)), src, 3);
  cv::Mat dst = src.clone();  // strength 0 leaves the destination as it is
  Lut3DColorAdjustEffectProcess(effect, dst.data, dst.cols, dst.rows, static_cast<int32_t>(dst.step[0]), src.data,
                                src.cols, src.rows, static_cast<int32_t>(src.step[0]), options.strength);
  if (!options.premultiply) cv::mixChannels(picture, dst, {3, 3});
  return dst;
}

}  // namespace

void addLutCommand(CLI::App& app) {
  auto* command = app.add_subcommand("lut", "Grade pictures through a 3D LUT");
  command->footer(
      "Examples:\n"
      "  lumvane-host lut --lut look.cube --strength 60 photo.jpg graded.png\n"
      "  lumvane-host lut --lut look.3dl --compare stills/ graded/");
  const auto options = std::make_shared<LutOptions>();
  command->add_option("--lut", options->lut, "LUT file, .cube or .3dl")->required()->type_name("FILE");
  command->add_option("--strength", options->strength, "Strength in percent, 0 to 100, clamped")->capture_default_str();
  command->add_flag("--premultiply", options->premultiply,
                    "Write colours multiplied by alpha, the library's own pixels");
  addPictureArguments(*command, options->pictures);
  command->callback([options] {
    const LutEffect effect = openLut(options->lut);
    editPictures(options->pictures, [&](const cv::Mat& picture) { return grade(effect.get(), picture, *options); });
  });
}

}  // namespace host
