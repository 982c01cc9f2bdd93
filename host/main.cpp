// lumvane-host: a small editing host. It uses the library as any host does, through lumvane.h alone.

#include <exception>
#include <iostream>
#include <opencv2/core/utils/logger.hpp>
#include <string>
#include <vector>

#include "host/commands.h"
#include "host/files.h"
#include "host/platform.h"

int main(int argc, char** argv) {
  host::removeUnfinishedFileOnSignals();
  CLI::App app("Grades pictures and converts HDR video with the Lumvane colour effects", "lumvane-host");
  app.set_version_flag("--version", "lumvane-host " LUMVANE_VERSION);
  app.option_defaults()->always_capture_default();
  app.get_formatter()->column_width(26);
  app.footer(
      "lumvane-host SUBCOMMAND --help tells what each takes.\n\n"
      "A file takes its name when it is complete: an error or an interrupt leaves no half of one.\n"
      "Exit codes: 0 done, 2 wrong arguments, 3 an input that is missing or cannot be used,\n"
      "4 an output that cannot be written, 1 anything else.");
  cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);  // the program has words of its own
  host::addPictureCommands(app);
  host::addHdrCommands(app);
  try {
    const std::vector<std::string> arguments = host::utf8Arguments(argc, argv);
    app.parse(std::vector(arguments.rbegin(), arguments.rend() - 1));  // the last one first, no name of the program
    // Demanded here: the parser would say so ahead of naming a word that is no subcommand.
    if (app.get_subcommands().empty()) throw CLI::RequiredError("a subcommand");
    return 0;
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : static_cast<int>(host::ExitCode::kUsage);
  } catch (const host::Error& error) {
    std::cerr << "lumvane-host: " << error.what() << '\n';
    return static_cast<int>(error.code);
  } catch (const std::exception& error) {
    std::cerr << "lumvane-host: " << error.what() << '\n';
    return static_cast<int>(host::ExitCode::kOther);
  }
}
