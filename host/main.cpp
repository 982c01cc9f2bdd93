// lumvane-host: a small editing host. It uses the library as any host does, through lumvane.h alone.

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <new>
#include <opencv2/core/utils/logger.hpp>
#include <string>
#include <vector>

#include "host/clarity_command.h"
#include "host/fault.h"
#include "host/hdr_commands.h"
#include "host/lut_command.h"
#include "host/output_file.h"
#include "host/paths.h"
#include "host/pictures.h"
#include "host/platform.h"
#include "host/scene.h"
#include "host/white_balance_command.h"

namespace {

void addSceneCommand(CLI::App& app) {
  auto* command = app.add_subcommand("scene",
                                     "Draw a test scene: skin tones, saturated patches, a grey ramp, gradients, "
                                     "translucency");
  command->footer("Example:\n  lumvane-host scene --width 1920 --height 1080 scene.png");
  struct Options {
    std::string output;
    int width = 1280;
    int height = 720;
  };
  const auto options = std::make_shared<Options>();
  command->add_option("output", options->output, "Picture to write")->required()->type_name("FILE");
  command->add_option("--width", options->width, "Width in pixels")
      ->check(CLI::Range(16, 16384))
      ->capture_default_str();
  command->add_option("--height", options->height, "Height in pixels")
      ->check(CLI::Range(16, 16384))
      ->capture_default_str();
  command->callback([options] {
    host::writePicture(host::toPath(options->output), host::drawScene(options->width, options->height));
  });
}

}  // namespace

int main(int argc, char** argv) {
  host::removeUnfinishedFilesOnSignals();
  CLI::App app("Grades pictures and converts HDR video with the Lumvane colour effects", "lumvane-host");
  app.require_subcommand(1);
  app.set_version_flag("--version", "lumvane-host " LUMVANE_VERSION);
  app.get_formatter()->column_width(26);
  app.footer(
      "lumvane-host SUBCOMMAND --help tells what each takes.\n\n"
      "A file takes its name when it is complete: an error or an interrupt leaves no half of one.\n"
      "Exit codes: 0 done, 2 wrong arguments, 3 an input that is missing or cannot be used,\n"
      "4 an output that cannot be written, 1 anything else.");
  cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);  // the program has words of its own
  host::addLutCommand(app);
  host::addClarityCommand(app);
  host::addWhiteBalanceCommand(app);
  host::addHdrCommands(app);
  addSceneCommand(app);
  // The parser would only say that one is missing.
  const auto isMeant = [&](const CLI::App* command) { return command->get_name() == argv[1]; };
  if (argc > 1 && argv[1][0] != '-' && app.get_subcommands(isMeant).empty()) {
    std::cerr << "lumvane-host: there is no subcommand '" << argv[1] << "'; --help names them\n";
    return static_cast<int>(host::ExitCode::kUsage);
  }
  const std::vector<std::string> arguments = host::utf8Arguments(argc, argv);
  try {
    app.parse(std::vector(arguments.rbegin(), arguments.rend() - 1));  // the last one first, no name of the program
    return 0;
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : static_cast<int>(host::ExitCode::kUsage);
  } catch (const host::Fault& fault) {
    std::cerr << "lumvane-host: " << fault.what() << '\n';
    return static_cast<int>(fault.code());
  } catch (const std::bad_alloc&) {
    std::cerr << "lumvane-host: out of memory\n";
  } catch (const std::exception& error) {
    std::cerr << "lumvane-host: " << error.what() << '\n';
  }
  return static_cast<int>(host::ExitCode::kOther);
}
