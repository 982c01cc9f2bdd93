#include "host/picture_jobs.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <set>
#include <system_error>

#include "host/fault.h"
#include "host/pictures.h"
#include "host/progress.h"

namespace host {
namespace {

namespace fs = std::filesystem;

struct Job {
  fs::path input;
  fs::path output;
};

// A picture must not take the place of one that is still to be read, nor of another result.
void refuseOverwriting(const std::vector<Job>& jobs) {
  std::set<fs::path> outputs;
  for (const Job& job : jobs) {
    if (!outputs.insert(job.output.lexically_normal()).second) {
      throw Fault(ExitCode::kUsage, "two pictures would go to '" + job.output.string() + "'");
    }
    for (const Job& other : jobs) {
      std::error_code notThere;
      if (fs::equivalent(other.input, job.output, notThere)) {
        throw Fault(ExitCode::kUsage, "'" + job.output.string() + "' would be written over, and it is to be read");
      }
    }
  }
}

// One picture goes to a file; several, or the pictures of a folder, keep their names and go to a folder.
std::vector<Job> planJobs(const std::vector<std::string>& paths) {
  const fs::path output = paths.back();
  std::vector<fs::path> inputs(paths.begin(), paths.end() - 1);
  bool toFolder = inputs.size() > 1 || fs::is_directory(output);
  if (inputs.size() == 1 && fs::is_directory(inputs[0])) {
    const fs::path folder = inputs[0];
    inputs = picturesIn(folder);
    if (inputs.empty()) throw Fault(ExitCode::kInput, "there are no pictures in '" + folder.string() + "'");
    toFolder = true;
  }
  if (toFolder) {
    std::error_code error;
    fs::create_directories(output, error);
    if (!fs::is_directory(output)) {
      throw Fault(ExitCode::kOutput, "cannot make the folder '" + output.string() +
                                         "': " + (error ? error.message() : "there is a file of this name"));
    }
  }
  std::vector<Job> jobs;
  for (const fs::path& input : inputs) jobs.push_back({input, toFolder ? output / input.filename() : output});
  refuseOverwriting(jobs);
  return jobs;
}

fs::path comparisonOf(const fs::path& output) {
  fs::path comparison = output;
  return comparison.replace_filename(output.stem().string() + "-compare.png");
}

void editPicture(const Job& job, bool compare, const std::function<cv::Mat(const cv::Mat&)>& edit) {
  const cv::Mat before = readPicture(job.input);
  const cv::Mat after = edit(before);
  writePicture(job.output, after);
  if (compare) writePicture(comparisonOf(job.output), sideBySide(before, after));
}

}  // namespace

void addPictureArguments(CLI::App& command, PictureArguments& arguments) {
  command.add_flag("--compare", arguments.compare,
                   "Also write NAME-compare.png: before on the left, after on the right");
  command
      .add_option("pictures", arguments.paths,
                  "IN OUT, or IN... FOLDER for several pictures, or FOLDER FOLDER for all in a folder")
      ->required()
      ->type_name("PATH")
      ->expected(2, -1);
}

void editPictures(const PictureArguments& arguments, const std::function<cv::Mat(const cv::Mat&)>& edit) {
  const std::vector<Job> jobs = planJobs(arguments.paths);
  if (jobs.size() == 1) return editPicture(jobs[0], arguments.compare, edit);

  // One bad picture does not keep the others waiting.
  std::string failures;
  size_t failed = 0;
  ExitCode code = ExitCode::kOther;
  Progress progress("pictures", jobs.size());
  for (const Job& job : jobs) {
    progress.begin(job.input.filename().string());
    try {
      editPicture(job, arguments.compare, edit);
    } catch (const Fault& fault) {
      failures += std::string("\n  ") + fault.what();
      if (failed++ == 0) code = fault.code();
    }
    progress.finishStep();
  }
  if (failed == 0) return;
  throw Fault(code, std::to_string(failed) + " of " + std::to_string(jobs.size()) + " pictures failed:" + failures);
}

}  // namespace host
