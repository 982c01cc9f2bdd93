#include "host/picture_jobs.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <map>
#include <new>
#include <set>
#include <system_error>

#include "host/fault.h"
#include "host/paths.h"
#include "host/pictures.h"
#include "host/progress.h"

namespace host {
namespace {

namespace fs = std::filesystem;

struct Job {
  fs::path input;
  fs::path output;
};

fs::path comparisonOf(const fs::path& output) {
  fs::path comparison = output;
  return comparison.replace_filename(output.stem() += "-compare.png");
}

// A picture must not take the place of one that is still to be read, nor of another result.
void refuseOverwriting(const std::vector<Job>& jobs, bool compare) {
  std::vector<fs::path> outputs;
  for (const Job& job : jobs) {
    outputs.push_back(job.output);
    if (compare) outputs.push_back(comparisonOf(job.output));
  }
  std::error_code notThere;
  std::multimap<std::uintmax_t, const fs::path*> inputs;  // by size: only files of one size can be the same file
  for (const Job& job : jobs) inputs.emplace(fs::file_size(job.input, notThere), &job.input);
  std::set<fs::path> taken;
  for (const fs::path& output : outputs) {
    if (!taken.insert(foldedCase(output.lexically_normal())).second) {
      throw Fault(ExitCode::kUsage, "two pictures would go to '" + toName(output) + "'");
    }
    const auto [first, last] = inputs.equal_range(fs::file_size(output, notThere));
    for (auto input = first; input != last; ++input) {
      if (fs::equivalent(*input->second, output, notThere)) {
        throw Fault(ExitCode::kUsage, "'" + toName(output) + "' would be written over, and it is to be read");
      }
    }
  }
}

// One picture goes to a file; several, or the pictures of a folder, keep their names and go to a folder.
std::vector<Job> planJobs(const std::vector<std::string>& paths, bool compare) {
  std::error_code error;  // where it is looked at no further, opening the file tells what is wrong
  const fs::path output = toPath(paths.back());
  std::vector<fs::path> inputs;
  std::transform(paths.begin(), paths.end() - 1, std::back_inserter(inputs), toPath);
  bool toFolder = inputs.size() > 1 || !output.has_filename() || fs::is_directory(output, error);
  if (inputs.size() == 1 && fs::is_directory(inputs[0], error)) {
    const fs::path folder = inputs[0];
    inputs = picturesIn(folder);
    if (inputs.empty()) throw Fault(ExitCode::kInput, "there are no pictures in '" + toName(folder) + "'");
    toFolder = true;
  }
  std::vector<Job> jobs;
  for (const fs::path& input : inputs) jobs.push_back({input, toFolder ? output / input.filename() : output});
  refuseOverwriting(jobs, compare);
  if (toFolder) {
    fs::create_directories(output, error);
    std::error_code notThere;
    if (!fs::is_directory(output, notThere)) {
      throw Fault(ExitCode::kOutput, "cannot make the folder '" + toName(output) +
                                         "': " + (error ? error.message() : "there is a file of this name"));
    }
  }
  return jobs;
}

void editPicture(const Job& job, bool compare, const std::function<cv::Mat(const cv::Mat&)>& edit) {
  const auto outOfMemory = [&] { return Fault(ExitCode::kOther, "no memory left for '" + toName(job.input) + "'"); };
  try {
    const cv::Mat before = readPicture(job.input);
    const cv::Mat after = edit(before);
    writePicture(job.output, after);
    if (compare) writePicture(comparisonOf(job.output), sideBySide(before, after));
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  } catch (const cv::Exception& error) {
    if (error.code != cv::Error::StsNoMem) throw;
    throw outOfMemory();
  }
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
  const std::vector<Job> jobs = planJobs(arguments.paths, arguments.compare);
  if (jobs.size() == 1) return editPicture(jobs[0], arguments.compare, edit);

  // One bad picture does not keep the others waiting.
  std::string failures;
  size_t failed = 0;
  ExitCode code = ExitCode::kOther;
  Progress progress("pictures", jobs.size());
  for (const Job& job : jobs) {
    progress.begin(toName(job.input.filename()));
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
