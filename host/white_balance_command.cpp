#include "host/white_balance_command.h"

#include <CLI/CLI.hpp>
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
  command->add_option("--temperature", options->temperature, "From cold, -1, to warm, 1; 0 changes nothing")
      ->capture_default_str();
  command->add_option("--tint", options->tint, "From green, -1, to magenta, 1; 0 changes nothing")
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
