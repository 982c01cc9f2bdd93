// Takes files, and the files of folders, through the target of a fuzzer, one by one: with any compiler, and without the
// fuzzer itself.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace fs = std::filesystem;

int main(int argc, char** argv) {
  std::vector<fs::path> files;
  for (int i = 1; i < argc; ++i) {
    if (!fs::is_directory(argv[i])) {
      files.emplace_back(argv[i]);
      continue;
    }
    for (const auto& entry : fs::directory_iterator(argv[i])) files.push_back(entry.path());
  }
  for (const fs::path& file : files) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
      std::fprintf(stderr, "%s cannot be read\n", file.string().c_str());
      return 1;
    }
    std::fprintf(stderr, "%s\n", file.string().c_str());  // ahead of its run: the last one named is the one that failed
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    // Of exactly its size, so that the address sanitizer sees a byte read beyond it.
    const std::vector<uint8_t> input(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(input.data(), input.size());
  }
  return files.empty() ? 1 : 0;
}
