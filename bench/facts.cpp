#include "bench/facts.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <opencv2/core/utility.hpp>
#include <opencv2/core/version.hpp>

#include "bench/peer.h"

namespace bench {
namespace {

std::string processor() {
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);) {
    if (line.starts_with("model name")) return line.substr(line.find(':') + 2);
  }
  return "unknown";
}

std::string orAbsent(const std::string& version) { return version.empty() ? "not installed" : version; }

}  // namespace

void stateFacts(Report& report, const std::string& commit) {
  report.fact("Processor", processor() + ", " + std::to_string(cv::getNumberOfCPUs()) + " cores");
#ifdef __clang__
  report.fact("Compiler", "clang " __clang_version__);
#else
  report.fact("Compiler", "gcc " __VERSION__);
#endif
  report.fact("OpenCV", CV_VERSION);
  report.fact("FFmpeg", orAbsent(ffmpegVersion()));
  report.fact("OpenColorIO", orAbsent(openColorIoVersion()));
  // Under other load, two of our threads may have to share one core.
  if (double load; getloadavg(&load, 1) == 1) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", load);
    report.fact("Load before the run", text);
  }
  if (!commit.empty()) report.fact("Commit", commit);
}

}  // namespace bench
