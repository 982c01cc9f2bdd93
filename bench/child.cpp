#include "bench/child.h"

#include <cstdio>
#include <stdexcept>

namespace bench {
namespace {

std::string quoted(const std::string& word) {
  std::string out = "'";
  for (const char c : word) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + "'";
}

}  // namespace

std::vector<double> inChild(const std::string& work, int threads, const std::filesystem::path& luts, const Size& size,
                            const std::string& effect) {
  std::string command = quoted(std::filesystem::read_symlink("/proc/self/exe").string()) + " --child";
  for (const std::string& word : {work, std::to_string(threads), luts.string(), std::to_string(size.width),
                                  std::to_string(size.height), effect}) {
    command += " " + quoted(word);
  }
  std::FILE* output = popen(command.c_str(), "r");
  if (output == nullptr) throw std::runtime_error("cannot start " + command);
  std::vector<double> numbers;
  for (double number; std::fscanf(output, "%lf", &number) == 1;) numbers.push_back(number);
  if (pclose(output) != 0 || numbers.empty()) throw std::runtime_error("failed: " + command);
  return numbers;
}

}  // namespace bench
