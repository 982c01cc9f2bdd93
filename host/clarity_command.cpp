#include "host/clarity_command.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <opencv2/core.hpp>

#include "host/fault.h"
#include "host/picture_jobs.h"
#include "lumvane.h"

namespace host {
namespace {

struct ClarityOptions {
  PictureArguments pictures;
  int intensity = 100;
  int saturation = 0;
};

// Pictures differ in size, and the size given at create sets the depth of the pyramid: so each gets its own effect.
cv::Mat clarify(const cv::Mat& picture, const ClarityOptions& options) {
  const std::unique_ptr<void, decltype(&DestoryNLEPureCClarity)> effect(
      CreateNLEPureCClarity(picture.cols, picture.rows, 0, options.saturation, options.intensity),
      &DestoryNLEPureCClarity);
  cv::Mat out(picture.size(), picture.type());
  if (!effect ||
      NLEPureCClarityProcess(effect.get(), out.data, out.cols, out.rows, static_cast<int32_t>(out.step[0]),
                             picture.data, picture.cols, picture.rows, static_cast<int32_t>(picture.step[0])) != 1) {
    throw Fault(ExitCode::kOther, "the clarity effect refused a picture");
  }
  return out;
}

}  // namespace

void addClarityCommand(CLI::App& app) {
  auto* command = app.add_subcommand("clarity", "Raise the local contrast of pictures");
  command->footer("Example:\n  lumvane-host clarity --intensity 70 --saturation 20 photo.jpg clear.png");
  const auto options = std::make_shared<ClarityOptions>();
  command->add_option("--intensity", options->intensity, "Local contrast in percent, 0 to 100, clamped")
      ->capture_default_str();
  command->add_option("--saturation", options->saturation, "Saturation in percent, -100 to 100, clamped")
      ->capture_default_str();
  addPictureArguments(*command, options->pictures);
  command->callback([options] {
    editPictures(options->pictures, [&](const cv::Mat& picture) { return clarify(picture, *options); });
  });
}

}  // namespace host
