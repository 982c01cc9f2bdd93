#pragma once

#include <unistd.h>

#include <fstream>

namespace test {

/// Resident memory of the process in KiB; 0 where the system has no /proc.
inline long residentKiB() {
  long whole = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> whole >> resident;
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

}  // namespace test
