// One-time costs are measured in fresh processes: this program, started again.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "bench/picture.h"

namespace bench {

/// Runs a job of child_work.cpp in a new process with this many OpenCV threads and returns the numbers that it prints.
/// Throws std::runtime_error on failure.
std::vector<double> inChild(const std::string& work, int threads, const std::filesystem::path& luts, const Size& size,
                            const std::string& effect = "-");

/// Runs a job in this process and prints its numbers to standard output.
void childWork(const std::vector<std::string>& words);

}  // namespace bench
