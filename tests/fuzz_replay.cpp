// Runs the seeds of a fuzzer, and every input that ever failed, through its target one by one, with any compiler and
// without the fuzzer itself:
//   replay_KIND [--print] FUZZ KIND [OTHER_KIND]
// reads all files of seeds/KIND and regressions/KIND in the folder FUZZ, and those of the other kind. The expected
// results of readers are in seeds/results.txt, one line "KIND/FILE RESULT" each; --print prints these lines, to
// regenerate that file.

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

  std::set<std::string> onRecord;
  std::ifstream record(folder / "seeds" / "results.txt", std::ios::binary);
  for (std::string line; std::getline(record, line);) {
    if (line.starts_with(prefix)) onRecord.insert(line);
  }
  std::set<fs::path> files;
  for (size_t i = 1; i < arguments.size(); ++i) {
    for (const char* origin : {"seeds", "regressions"}) {
      std::error_code none;
      for (const auto& entry : fs::directory_iterator(folder / origin / arguments[i], none)) files.insert(entry.path());
    }
  }

  bool right = !files.empty();
  for (const fs::path& file : files) {
    std::ifstream stream(file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    // Of its exact size, so that the address sanitizer sees a byte read past it.
    const std::vector<uint8_t> input(bytes.begin(), bytes.end());
    std::fprintf(stderr, "%s\n", file.string().c_str());  // before its run: the last one printed is the one that failed
    LLVMFuzzerTestOneInput(input.data(), input.size());
    if (!fuzz::result) continue;
    const std::string line = prefix + file.filename().string() + " " + fuzz::result();
    if (print) {
      std::printf("%s\n", line.c_str());
    } else if (onRecord.erase(line) == 0) {
      std::fprintf(stderr, "not on record: %s\n", line.c_str());
      right = false;
    }
  }
  if (print) return 0;
  for (const std::string& line : onRecord) std::fprintf(stderr, "on record, but not found: %s\n", line.c_str());
  return right && onRecord.empty() ? 0 : 1;
}
