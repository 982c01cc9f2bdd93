// One-time costs are measured in fresh processes: this program, started again.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "bench/picture.h"

namespace bench {

/// Starts this program for a job of child_work.cpp, with this number of OpenCV's threads, and returns the numbers that
/// it prints. Throws std::runtime_error when it fails.
std::vector<double> inChild(const std::string& work, int threads, const std::filesystem::path& luts, const Size& size,
                            const std::string& effect = "-");

/// The job itself; the numbers go to standard output.
void childWork(const std::vector<std::string>& words);

}  // namespace bench
