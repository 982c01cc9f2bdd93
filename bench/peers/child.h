// What happens once in a process is measured in processes of its own: this program, started again.
#pragma once

#include <string>
#include <vector>

namespace bench {

/// Starts this program for a work of child_work.cpp and gives the numbers that it prints. Throws std::runtime_error
/// when it fails.
std::vector<double> inChild(const std::vector<std::string>& work);

/// The work itself; the numbers go to the standard output.
void childWork(const std::vector<std::string>& work);

}  // namespace bench
