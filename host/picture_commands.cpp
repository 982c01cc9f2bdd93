#include <iostream>
#include <memory>
#include <opencv2/core.hpp>

#include "host/commands.h"
#include "host/drawings.h"
#include "host/files.h"
#include "host/lut_contents.h"
#include "host/pictures.h"
#include "host/platform.h"
#include "lumvane.h"

namespace host {
namespace {

struct Options {
  std::vector<std::string> paths;
  std::string lut, scene;
  bool compare = false, premultiply = false;
  int quality = 0, strength = 100, intensity = 100, saturation = 0;
  float temperature = 0.0f, tint = 0.0f;
  int width = 1280, height = 720;
};

int32_t stride(const cv::Mat& picture) { return static_cast<int32_t>(picture.step[0]); }

// Prints the contents of a LUT file and how the library applies it, then ends the program.
void checkLut(const std::string& name) {
  const LutContents contents = readLut(toPath(name));
  std::cout << contents.description() << std::endl;
  const std::shared_ptr<void> effect = openLut(name);
  for (const int grey : {0, 128, 255}) {
    cv::Vec4b pixel(cv::Scalar(grey, grey, grey, 255));
    Lut3DColorAdjustEffectProcess(effect.get(), pixel.val, 1, 1, 0, pixel.val, 1, 1, 0, 100);
    std::cout << (grey == 0 ? "result   " : ", ") << grey << " grey becomes "
              << cv::Vec3i(pixel[2], pixel[1], pixel[0]);
  }
  const std::string wrapping = contents.wrappingValues();
  std::cout << (wrapping.empty() ? "" : "\nas HDR   refused: " + wrapping) << std::endl;
  throw CLI::Success();
}

// The library multiplies colours by alpha, whereas picture files store straight alpha. So a picture is graded as opaque
// and its alpha restored, which is right at every strength; `premultiply` keeps the library's result instead.
Edit grading(const Options& options) {
  return [&options, effect = openLut(options.lut)](const cv::Mat& picture) {
    cv::Mat src = picture.clone();
    if (!options.premultiply) cv::insertChannel(cv::Mat(src.size(), CV_8UC1, cv::Scalar(255)), src, 3);
    cv::Mat dst = src.clone();  // strength 0 does not write the destination
    Lut3DColorAdjustEffectProcess(effect.get(), dst.data, dst.cols, dst.rows, stride(dst), src.data, src.cols, src.rows,
                                  stride(src), options.strength);
    if (!options.premultiply) cv::mixChannels(picture, dst, {3, 3});
    return dst;
  };
}

// One effect per picture: the size given at creation sets the depth of the pyramid.
Edit clarity(const Options& options) {
  return [&options](const cv::Mat& picture) {
    const std::shared_ptr<void> effect(
        CreateNLEPureCClarity(picture.cols, picture.rows, 0, options.saturation, options.intensity),
        DestoryNLEPureCClarity);
    cv::Mat out(picture.size(), picture.type());
    if (NLEPureCClarityProcess(effect.get(), out.data, out.cols, out.rows, stride(out), picture.data, picture.cols,
                               picture.rows, stride(picture)) != 1) {
      throw Error(ExitCode::kOther, "the clarity effect refused a picture");
    }
    return out;
  };
}

Edit whiteBalance(const Options& options) {
  return [&options](const cv::Mat& picture) {
    cv::Mat out(picture.size(), picture.type());
    WhiteBalanceFun(picture.data, out.data, 0.0f, 0.0f, 0.0f, options.temperature, options.tint, picture.cols,
                    picture.rows);
    return out;
  };
}

// Returns a validator that describes the expected value, with an example, if the text is not a `Number`.
template <class Number>
CLI::Validator mustBe(const std::string& what) {
  const auto check = [what](const std::string& text) {
    Number value;
    return CLI::detail::lexical_cast(text, value) ? "" : "must be " + what + ", not '" + text + "'";
  };
  return {check, ""};
}

// `open` creates the edit once all options are parsed.
CLI::App* addPictureCommand(CLI::App& app, const char* name, const char* description, const std::string& examples,
                            const std::shared_ptr<Options>& options, Edit (*open)(const Options&)) {
  auto* command = app.add_subcommand(name, description);
  std::string formats;
  for (const std::string& extension : pictureExtensions()) formats += ' ' + extension;
  command->footer("Reads and writes" + formats + ", 8 and 16 bits in, 8 out. ICC profiles are converted to sRGB.\n\n" +
                  examples);
  command
      ->add_option("--quality", options->quality, "Quality of JPEG files, 1 to 100; default: that of the input, or 95")
      ->check(CLI::Range(1, 100))
      ->default_str("");
  command->add_flag("--compare", options->compare,
                    "Also write NAME-compare.png: before on the left, after on the right");
  command
      ->add_option("pictures", options->paths,
                   "IN OUT, or IN... FOLDER for several pictures, or FOLDER FOLDER for all in a folder")
      ->required()
      ->type_name("PATH")
      ->expected(2, -1)
      ->default_str("");
  command->callback(
      [options, open] { editPictures(options->paths, options->compare, options->quality, open(*options)); });
  return command;
}

}  // namespace

// The library returns null for every file that it cannot use; the remarks say why. It reads a shaper curve ahead of a
// table as part of the table, so such files are refused.
std::shared_ptr<void> openLut(const std::string& name) {
  const LutContents contents = readLut(toPath(name));
  std::shared_ptr<void> effect(Create3DLutColorAdjustEffect(libraryPath(name).c_str(), 0, 0),
                               Destory3DLutColorAdjustEffect);
  if (!effect || contents.hasCurve) {
    throw Error(ExitCode::kInput, "cannot use LUT file", toPath(name),
                contents.remarks + (contents.remarks.empty() ? "" : "; ") +
                    "a usable LUT is a complete .cube file of 2 to 65 points per axis or .3dl file of 3 to 65");
  }
  if (!contents.remarks.empty()) note("LUT file '" + name + "': " + contents.remarks);
  return effect;
}

void addPictureCommands(CLI::App& app) {
  const auto options = std::make_shared<Options>();

  const CLI::Validator percent = mustBe<int>("a whole number of percent, such as 60");
  const CLI::Validator shift = mustBe<float>("a number, such as 0.2");

  auto* lut = addPictureCommand(app, "lut", "Grade pictures through a 3D LUT",
                                "Examples:\n"
                                "  lumvane-host lut --lut look.cube --strength 60 photo.jpg graded.png\n"
                                "  lumvane-host lut --lut look.3dl --compare stills/ graded/\n"
                                "  lumvane-host lut --check look.cube",
                                options, grading);
  lut->add_option("--lut", options->lut, "LUT file, .cube or .3dl")->required()->type_name("PATH");
  lut->add_option_function<std::string>("--check", checkLut,
                                        "Only print what a LUT file contains and how it is read; needs nothing else")
      ->trigger_on_parse()
      ->type_name("PATH");
  lut->add_option("--strength", options->strength, "Strength in percent, 0 to 100, clamped")->check(percent);
  lut->add_flag("--premultiply", options->premultiply,
                "Write colours multiplied by alpha, as the library returns them");

  auto* clear = addPictureCommand(app, "clarity", "Raise the local contrast of pictures",
                                  "Example:\n  lumvane-host clarity --intensity 70 --saturation 20 photo.jpg clear.png",
                                  options, clarity);
  clear->add_option("--intensity", options->intensity, "Local contrast in percent, 0 to 100, clamped")->check(percent);
  clear->add_option("--saturation", options->saturation, "Saturation in percent, -100 to 100, clamped")->check(percent);

  auto* warm = addPictureCommand(
      app, "whitebalance", "Shift the white balance of pictures",
      "Example:\n  lumvane-host whitebalance --temperature 0.2 --tint -0.05 photo.jpg warm.png", options, whiteBalance);
  warm->add_option("--temperature", options->temperature, "From cold, -1, to warm, 1, and beyond; 0 changes nothing")
      ->check(shift);
  warm->add_option("--tint", options->tint, "From green, -1, to magenta, 1, and beyond; 0 changes nothing")
      ->check(shift);

  auto* scene = app.add_subcommand("scene",
                                   "Draw a test scene: skin tones, saturated patches, a grey ramp, gradients, "
                                   "translucency");
  scene->add_option("output", options->scene, "Picture to write")->required()->type_name("PATH");
  scene->add_option("--width", options->width, "Width in pixels")->check(CLI::Range(16, 16384));
  scene->add_option("--height", options->height, "Height in pixels")->check(CLI::Range(16, 16384));
  scene->footer("Example:\n  lumvane-host scene --width 1920 --height 1080 scene.png");
  scene->callback([options] { writePicture(toPath(options->scene), {drawScene(options->width, options->height)}); });
}

}  // namespace host
