// Runs the seeds of a fuzzer, and all inputs that once failed, through its target, with any compiler and without the
// fuzzer itself:
//   replay_KIND [--print] FUZZ KIND [OTHER_KIND]
// The inputs are all files of seeds/KIND and regressions/KIND in the folder FUZZ, and those of the other kind. The
// expected results of readers are the lines "KIND/FILE RESULT" of seeds/results.txt; --print prints new ones for it.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "fuzz/checks.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace fs = std::filesystem;

int main(int argc, char** argv) {
  std::vector<std::string> arguments(argv + 1, argv + argc);
  const bool print = std::erase(arguments, "--print") != 0;
  if (arguments.size() < 2) return 2;
  const fs::path folder = arguments[0];
  const std::string prefix = arguments[1] + "/";

  std::set<std::string> expected;
  std::ifstream record(folder / "seeds" / "results.txt", std::ios::binary);
  for (std::string line; std::getline(record, line);) {
    if (line.starts_with(prefix)) expected.insert(line);
  }
  std::set<fs::path> files;
  for (size_t i = 1; i < arguments.size(); ++i) {
    for (const char* origin : {"seeds", "regressions"}) {
      std::error_code none;
      for (const auto& entry : fs::directory_iterator(folder / origin / arguments[i], none)) files.insert(entry.path());
    }
  }

  bool ok = !files.empty();
  for (const fs::path& file : files) {
    std::ifstream stream(file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    // A copy of exactly this size, so that the address sanitizer detects reads past the end.
    const std::vector<uint8_t> input(bytes.begin(), bytes.end());
    std::fprintf(stderr, "%s\n", file.string().c_str());  // before the run, to name an input that aborts
    LLVMFuzzerTestOneInput(input.data(), input.size());
    if (!fuzz::result) continue;
    const std::string line = prefix + file.filename().string() + " " + fuzz::result();
    if (print) {
      std::printf("%s\n", line.c_str());
    } else if (expected.erase(line) == 0) {
      std::fprintf(stderr, "unexpected result: %s\n", line.c_str());
      ok = false;
    }
  }
  if (print) return 0;
  for (const std::string& line : expected) std::fprintf(stderr, "missing result: %s\n", line.c_str());
  return ok && expected.empty() ? 0 : 1;
}
