// lumvane-host: a small editing host. Like any host, it uses the library through lumvane.h alone.

#include <exception>
#include <iostream>
#include <new>
#include <opencv2/core.hpp>
#include <opencv2/core/utils/logger.hpp>
#include <string>
#include <vector>

#include "host/commands.h"
#include "host/files.h"
#include "host/platform.h"

namespace {

int failed(const std::string& text, host::ExitCode code) {
  host::note(text);
  return static_cast<int>(code);
}

}  // namespace

int main(int argc, char** argv) {
  host::removeUnfinishedFileOnSignals();
  CLI::App app("Grades pictures and converts HDR video with the Lumvane colour effects", "lumvane-host");
  app.set_version_flag("--version", "lumvane-host " LUMVANE_HOST_VERSION);
  app.option_defaults()->always_capture_default();
  app.get_formatter()->column_width(26);
  app.footer(
      "lumvane-host SUBCOMMAND --help lists the arguments of each.\n\n"
      "An output file appears under its name only once it is complete: an error or Ctrl-C leaves no partial file.\n"
      "Exit codes: 0 done, 2 wrong arguments, 3 an input that is missing or cannot be used,\n"
      "4 an output that cannot be written, 1 anything else.");
  host::limitMemory(2.0);
  app.fallthrough();  // accepts --memory after the subcommand, too
  app.add_option_function<double>("--memory", host::limitMemory,
                                  "Memory limit in GB, on Linux; raise it for larger inputs")
      ->check(CLI::Range(0.1, 1e6))
      ->default_str("2");
  cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);  // the program reports errors itself
  host::addPictureCommands(app);
  host::addHdrCommands(app);
  try {
    const std::vector<std::string> arguments = host::utf8Arguments(argc, argv);
    app.parse(std::vector(arguments.rbegin(), arguments.rend() - 1));  // in reverse, without the program name
    // Checked here because the parser would report it in preference to an unknown subcommand.
    if (app.get_subcommands().empty()) throw CLI::RequiredError("a subcommand");
    return 0;
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);  // prints the help or the version
    const std::vector<CLI::App*> chosen = app.get_subcommands();
    const std::string command = chosen.empty() ? "" : ' ' + chosen[0]->get_name();
    return failed(error.what() + ("; see lumvane-host" + command + " --help"), host::ExitCode::kUsage);
  } catch (const host::Error& error) {
    return failed(error.what(), error.code);
  } catch (const std::exception& error) {
    return host::isOutOfMemory(error) ? failed(host::kOutOfMemory, host::ExitCode::kInput)
                                      : failed(error.what(), host::ExitCode::kOther);
  }
}
