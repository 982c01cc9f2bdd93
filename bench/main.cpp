// Times of the library, compared with other programs on the same frames and with the targets that it must meet.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>

#include "bench/cases.h"
#include "bench/child.h"
#include "bench/facts.h"

namespace {

void measure(const bench::Settings& settings, const std::string& tsv, const std::string& commit) {
  bench::Report report(settings, tsv);
  bench::stateFacts(report, commit);
  for (const auto cases : {bench::lutCases, bench::whiteBalanceCases, bench::clarityCases, bench::hdrCases,
                           bench::growthCases, bench::loadCases, bench::firstCallCases, bench::memoryCases}) {
    try {
      cases(report);
    } catch (const std::exception& error) {  // other cases continue
      report.refuse(error.what());
    }
  }
  if (report.refusals() > 0) throw std::runtime_error("some cases could not be compared, see above");
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Times Lumvane's effects, compared with other programs");
  bench::Settings settings;
  std::string tsv, commit;
  std::vector<std::string> child;
  app.add_option("--repeats", settings.repeats, "Timed blocks of calls per side")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  app.add_option("--only", settings.only, "Only cases whose names contain this shell pattern, such as '1080p*FFmpeg'");
  app.add_option("--tsv", tsv, "Tab-separated output file");
  app.add_option("--commit", commit, "The commit, recorded with the results");
  app.add_flag("--smoke", settings.smoke, "Small frames, once: checks that everything runs, not how fast");
  app.add_option("--child", child)->group("");  // hidden: see child.h
  CLI11_PARSE(app, argc, argv);
  if (settings.smoke) {
    settings.repeats = 1;
    settings.blockMs = 0.0;
  }
  try {
    if (child.empty()) {
      measure(settings, tsv, commit);
    } else {
      bench::childWork(child);
    }
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "lumvane_bench: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
