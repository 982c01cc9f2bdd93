// Times of the library side by side with those of other programs on the same frames, and with bars that it has to
// reach. Options:
//   --repeats N     blocks of calls of each side, by default 15
//   --only PATTERN  the cases in whose names this shell pattern is found, such as '1080p*FFmpeg'
//   --tsv FILE      the results in fields, too: see Report
//   --commit TEXT   what was measured, for the results
//   --smoke         small frames, once: whether everything runs, not how fast

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>

#include "bench/cases.h"
#include "bench/child.h"
#include "bench/facts.h"

namespace {

struct Arguments {
  bench::Settings settings;
  std::string tsv, commit;
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
    } else if (option == "--commit") {
      out.commit = value();
    } else if (option == "--smoke") {
      out.settings.smoke = true;
      out.settings.repeats = 1;
      out.settings.blockMs = 0.0;
    } else {
      throw std::runtime_error("unknown option " + option);
    }
  }
  return out;
}

void run(const Arguments& arguments) {
  bench::Report report(arguments.settings, arguments.tsv);
  bench::stateFacts(report, arguments.commit);
  for (const auto cases : {bench::lutCases, bench::whiteBalanceCases, bench::clarityCases, bench::hdrCases,
                           bench::growthCases, bench::loadCases, bench::firstCallCases, bench::memoryCases}) {
    try {
      cases(report);
    } catch (const std::exception& error) {  // the others can go on
      report.refuse(error.what());
    }
  }
  if (report.refusals() > 0) throw std::runtime_error("something could not be compared, see above");
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc > 2 && std::string(argv[1]) == "--child") {
      bench::childWork({argv + 2, argv + argc});
      return EXIT_SUCCESS;
    }
    run(parsed(argc, argv));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "lumvane_bench: %s\n", error.what());
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
