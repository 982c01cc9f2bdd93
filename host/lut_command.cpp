#include "host/lut_command.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <opencv2/core.hpp>
#include <stdexcept>

#include "host/pictures.h"
#include "host/progress_bar.h"
#include "lumvane.h"

namespace host {
namespace {

namespace fs = std::filesystem;

struct LutOptions {
  std::string lut;
  int strength = 100;
  bool compare = false;
  bool premultiply = false;
  std::vector<std::string> paths;  // pictures or one folder, then the output
};

using LutEffect = std::unique_ptr<void, decltype(&Destory3DLutColorAdjustEffect)>;

LutEffect openLut(const std::string& path) {
  LutEffect effect(Create3DLutColorAdjustEffect(fs::path(path).u16string().c_str(), 0, 0),
                   &Destory3DLutColorAdjustEffect);
  if (effect) return effect;
  throw std::runtime_error(fs::exists(path) ? "'" + path + "' is not a LUT that can be read"
                                            : "there is no LUT file '" + path + "'");
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

struct Job {
  fs::path input;
  fs::path output;
};

// One picture goes to a file; several, or the pictures of a folder, keep their names and go to a folder.
std::vector<Job> planJobs(const std::vector<std::string>& paths) {
  const fs::path output = paths.back();
  std::vector<fs::path> inputs(paths.begin(), paths.end() - 1);
  bool toFolder = inputs.size() > 1 || fs::is_directory(output);
  if (inputs.size() == 1 && fs::is_directory(inputs[0])) {
    const fs::path folder = inputs[0];
    inputs = picturesIn(folder);
    if (inputs.empty()) throw std::runtime_error("there are no pictures in '" + folder.string() + "'");
    toFolder = true;
  }
  if (toFolder) fs::create_directories(output);
  std::vector<Job> jobs;
  for (const fs::path& input : inputs) jobs.push_back({input, toFolder ? output / input.filename() : output});
  return jobs;
}

void gradePictures(const LutOptions& options) {
  const LutEffect effect = openLut(options.lut);
  const std::vector<Job> jobs = planJobs(options.paths);
  ProgressBar progress(jobs.size());
  for (const Job& job : jobs) {
    progress.step(job.input.filename().string());
    const cv::Mat picture = readPicture(job.input);
    const cv::Mat graded = grade(effect.get(), picture, options);
    writePicture(job.output, graded);
    if (options.compare) {
      fs::path comparison = job.output;
      comparison.replace_filename(job.output.stem().string() + "-compare.png");
      writePicture(comparison, sideBySide(picture, graded));
    }
  }
}

}  // namespace

void addLutCommand(CLI::App& app) {
  auto* command = app.add_subcommand("lut", "Grade pictures through a 3D LUT");
  const auto options = std::make_shared<LutOptions>();
  command->add_option("--lut", options->lut, "LUT file (.cube)")->required();
  command->add_option("--strength", options->strength, "Strength in percent, 0 to 100")->capture_default_str();
  command->add_flag("--compare", options->compare,
                    "Also write NAME-compare.png: before on the left, after on the right");
  command->add_flag("--premultiply", options->premultiply,
                    "Write the library's own pixels, with colours multiplied by alpha; without it a picture keeps its "
                    "colours where it is translucent");
  command
      ->add_option("pictures", options->paths,
                   "IN OUT, or IN... FOLDER for several pictures, or FOLDER FOLDER for all in a folder")
      ->required()
      ->expected(2, -1);
  command->callback([options] { gradePictures(*options); });
}

}  // namespace host
