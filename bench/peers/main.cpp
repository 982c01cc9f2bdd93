// Times of the library side by side with those of other programs on the same frames, and with bars that it has to
// reach: lumvane_peers [--repeats N] [--only REGEX] [--tsv FILE] [--smoke]

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>

#include "bench/peers/cases.h"
#include "bench/peers/peer.h"

namespace {

struct Arguments {
  bench::Settings settings;
  std::string tsv;
};

Arguments parsed(int argc, char** argv) {
  Arguments out;
  for (int i = 1; i < argc; ++i) {
    const std::string option = argv[i];
    const auto value = [&]() -> std::string {
      if (++i == argc) throw std::runtime_error(option + " needs a value");
      return argv[i];
    };
    if (option == "--repeats") {
      out.settings.repeats = std::max(std::atoi(value().c_str()), 1);
    } else if (option == "--only") {
      out.settings.only = value();
    } else if (option == "--tsv") {
      out.tsv = value();
    } else if (option == "--smoke") {
      out.settings.smoke = true;
      out.settings.repeats = 1;
      out.settings.blockMs = 0.0;
    } else {
      throw std::runtime_error("usage: lumvane_peers [--repeats N] [--only REGEX] [--tsv FILE] [--smoke]");
    }
  }
  return out;
}

void run(const Arguments& arguments) {
  bench::Report report(arguments.settings, arguments.tsv);
  bench::lutCases(report);
  if (report.refusals() > 0) throw std::runtime_error("results that differ were not timed");
}

}  // namespace

int main(int argc, char** argv) {
  try {
    run(parsed(argc, argv));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "lumvane_peers: %s\n", error.what());
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
