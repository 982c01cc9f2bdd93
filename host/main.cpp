// lumvane-host: a small editing host. It uses the library as any host does, through lumvane.h alone.

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <opencv2/core/utils/logger.hpp>

#include "host/clarity_command.h"
#include "host/hdr_commands.h"
#include "host/lut_command.h"
#include "host/pictures.h"
#include "host/scene.h"
#include "host/white_balance_command.h"

namespace {

void addSceneCommand(CLI::App& app) {
  auto* command = app.add_subcommand("scene",
                                     "Draw a test scene: skin tones, saturated patches, a grey ramp, gradients, "
                                     "translucency");
  struct Options {
    std::string output;
    int width = 1280;
    int height = 720;
  };
  const auto options = std::make_shared<Options>();
  command->add_option("output", options->output, "Picture to write")->required();
  command->add_option("--width", options->width, "Width in pixels")
      ->check(CLI::Range(16, 16384))
      ->capture_default_str();
  command->add_option("--height", options->height, "Height in pixels")
      ->check(CLI::Range(16, 16384))
      ->capture_default_str();
  command->callback(
      [options] { host::writePicture(options->output, host::drawScene(options->width, options->height)); });
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Grades pictures with the Lumvane colour effects", "lumvane-host");
  app.require_subcommand(1);
  cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);  // the program has words of its own
  host::addLutCommand(app);
  host::addClarityCommand(app);
  host::addWhiteBalanceCommand(app);
  host::addHdrCommands(app);
  addSceneCommand(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  } catch (const std::exception& error) {
    std::cerr << "lumvane-host: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
