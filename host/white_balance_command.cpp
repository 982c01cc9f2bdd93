#include "host/white_balance_command.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <opencv2/core.hpp>

#include "host/picture_jobs.h"
#include "lumvane.h"

namespace host {

void addWhiteBalanceCommand(CLI::App& app) {
  struct Options {
    PictureArguments pictures;
    float temperature = 0.0f;
    float tint = 0.0f;
  };
  auto* command = app.add_subcommand("whitebalance", "Shift the white balance of pictures");
  command->footer("Example:\n  lumvane-host whitebalance --temperature 0.2 --tint -0.05 photo.jpg warm.png");
  const auto options = std::make_shared<Options>();
  const CLI::Validator finite(
      [](const std::string& text) {
        return std::isfinite(std::strtof(text.c_str(), nullptr)) ? "" : "'" + text + "' is no number to work with";
      },
      "");
  command->add_option("--temperature", options->temperature, "From cold, -1, to warm, 1, and beyond; 0 changes nothing")
      ->check(finite)
      ->capture_default_str();
  command->add_option("--tint", options->tint, "From green, -1, to magenta, 1, and beyond; 0 changes nothing")
      ->check(finite)
      ->capture_default_str();
  addPictureArguments(*command, options->pictures);
  command->callback([options] {
    editPictures(options->pictures, [&](const cv::Mat& picture) {
      cv::Mat out(picture.size(), picture.type());
      WhiteBalanceFun(picture.data, out.data, 0.0f, 0.0f, 0.0f, options->temperature, options->tint, picture.cols,
                      picture.rows);
      return out;
    });
  });
}

}  // namespace host
