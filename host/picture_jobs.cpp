#include <filesystem>
#include <set>
#include <system_error>

#include "host/files.h"
#include "host/pictures.h"
#include "host/platform.h"
#include "host/progress.h"

namespace host {
namespace {

namespace fs = std::filesystem;

struct Job {
  fs::path input;
  fs::path output;
  fs::path comparison;  ///< empty if not requested
};

// Throws an Error if an output would replace an input or another output.
void refuseOverwriting(const std::vector<Job>& jobs) {
  std::set<fs::path> taken;
  for (const Job& job : jobs) taken.insert(uniquePath(job.input));
  for (const Job& job : jobs) {
    for (const fs::path& output : {job.output, job.comparison}) {
      std::error_code ignored;
      if (!output.empty() && (!taken.insert(uniquePath(output)).second || fs::equivalent(job.input, output, ignored))) {
        throw Error(ExitCode::kUsage, "cannot write", output, "it is an input, or the output of two pictures");
      }
    }
  }
}

// A single picture is written to a file; several, or those of a folder, keep their names and are written to a folder.
std::vector<Job> planJobs(const std::vector<std::string>& paths, bool compare) {
  std::error_code error;  // ignored: opening the file reports what is wrong
  const fs::path output = toPath(paths.back());
  std::vector<fs::path> inputs;
  for (size_t i = 0; i + 1 < paths.size(); ++i) inputs.push_back(toPath(paths[i]));
  bool toFolder = inputs.size() > 1 || !output.has_filename() || fs::is_directory(output, error);
  if (inputs.size() == 1 && fs::is_directory(inputs[0], error)) {
    const fs::path folder = inputs[0];
    inputs = picturesIn(folder);
    if (inputs.empty()) throw Error(ExitCode::kInput, "there are no pictures in '" + toName(folder) + "'");
    toFolder = true;
  }
  std::vector<Job> jobs;
  for (const fs::path& input : inputs) {
    Job job{input, toFolder ? output / input.filename() : output, {}};
    if (compare) job.comparison = job.output.parent_path() / (job.output.stem() += "-compare.png");
    jobs.push_back(job);
  }
  refuseOverwriting(jobs);
  if (toFolder) makeFolder(output);
  return jobs;
}

void editPicture(const Job& job, int quality, const Edit& edit) {
  Picture picture = readPicture(job.input);
  const cv::Mat before = picture.pixels;
  picture.pixels = edit(before);
  if (quality != 0) picture.quality = quality;
  writePicture(job.output, picture);
  if (!job.comparison.empty()) writePicture(job.comparison, {sideBySide(before, picture.pixels)});
}

}  // namespace

void editPictures(const std::vector<std::string>& paths, bool compare, int quality, const Edit& edit) {
  const std::vector<Job> jobs = planJobs(paths, compare);
  if (jobs.size() == 1) return editPicture(jobs[0], quality, edit);  // the caller reports its failure

  // A failed picture does not stop the others; a full disk does.
  std::string failures;
  size_t failed = 0;
  ExitCode code = ExitCode::kOther;
  Progress progress("pictures", jobs.size());
  for (const Job& job : jobs) {
    try {
      editPicture(job, quality, edit);
    } catch (const std::exception& error) {
      const auto* expected = dynamic_cast<const Error*>(&error);  // its text contains the name
      failures +=
          "\n  " + (expected ? "" : toName(job.input) + ": ") + (isOutOfMemory(error) ? kOutOfMemory : error.what());
      if (failed++ == 0 && expected) code = expected->code;
      if (expected && expected->isDiskFull) {
        failures += "\n  the others were not started";
        break;
      }
    }
    progress.finishStep();
  }
  if (failed == 0) return;
  throw Error(code, std::to_string(failed) + " of " + std::to_string(jobs.size()) + " pictures failed:" + failures);
}

}  // namespace host
