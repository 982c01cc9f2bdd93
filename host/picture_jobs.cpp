#include "host/picture_jobs.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <stdexcept>

#include "host/pictures.h"
#include "host/progress_bar.h"

namespace host {
namespace {

namespace fs = std::filesystem;

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

}  // namespace

void addPictureArguments(CLI::App& command, PictureArguments& arguments) {
  command.add_flag("--compare", arguments.compare,
                   "Also write NAME-compare.png: before on the left, after on the right");
  command
      .add_option("pictures", arguments.paths,
                  "IN OUT, or IN... FOLDER for several pictures, or FOLDER FOLDER for all in a folder")
      ->required()
      ->expected(2, -1);
}

void editPictures(const PictureArguments& arguments, const std::function<cv::Mat(const cv::Mat&)>& edit) {
  const std::vector<Job> jobs = planJobs(arguments.paths);
  ProgressBar progress(jobs.size());
  for (const Job& job : jobs) {
    progress.step(job.input.filename().string());
    const cv::Mat before = readPicture(job.input);
    const cv::Mat after = edit(before);
    writePicture(job.output, after);
    if (arguments.compare) {
      fs::path comparison = job.output;
      comparison.replace_filename(job.output.stem().string() + "-compare.png");
      writePicture(comparison, sideBySide(before, after));
    }
  }
}

}  // namespace host
