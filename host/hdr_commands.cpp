#include "host/hdr_commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <memory>
#include <opencv2/core.hpp>
#include <system_error>

#include "host/fault.h"
#include "host/hdr_clip.h"
#include "host/hdr_luts.h"
#include "host/paths.h"
#include "host/pictures.h"
#include "host/progress.h"
#include "host/y4m.h"
#include "lumvane.h"

namespace host {
namespace {

namespace fs = std::filesystem;

struct HdrOptions {
  std::string luts;
  std::string transfer;
  std::string range;  // empty: what the video says of itself, or limited
  std::string input;
  std::string output;
};

using HdrEffect = std::unique_ptr<void, decltype(&DestroyVideoAdjustColor)>;

HdrEffect openHdr(const HdrOptions& options, bool limited, int width, int height) {
  return {
      CreateVideoAdjustColor(libraryPath(options.luts).c_str(), 0, limited, options.transfer == "pq", width, height),
      &DestroyVideoAdjustColor};
}

// The library does not tell of a LUT file that is missing or cannot be used: its frames are black, whatever goes in.
void requireLut(const HdrOptions& options) {
  const fs::path lut = toPath(options.luts) / (options.transfer == "pq" ? "HDR_PQ.cube" : "HDR_HLG.cube");
  const auto refuse = [&](const std::string& reason) {
    throw Fault(ExitCode::kInput, "LUT file '" + toName(lut) + "' cannot be used: " + reason);
  };
  if (!std::ifstream(lut)) refuse(std::generic_category().message(errno));
  const HdrEffect effect = openHdr(options, false, 1, 1);
  for (const uint8_t grey : {0, 128, 255}) {
    const uint8_t neutral = 128;
    uint8_t y = 0, v = 0, u = 0;
    VideoAdjustColorProcess(effect.get(), &grey, &neutral, &neutral, 1, 1, 1, 0, 0, &y, &v, &u);
    if (y != 0) return;
  }
  refuse("it turns everything black");
}

void convert(const HdrOptions& options) {
  std::error_code notThere;
  if (fs::equivalent(toPath(options.input), toPath(options.output), notThere)) {
    throw Fault(ExitCode::kUsage, "'" + options.output + "' would be written over, and it is to be read");
  }
  requireLut(options);
  VideoReader reader(options.input);
  VideoFormat format = reader.format();
  if (!options.range.empty()) format.range = options.range == "full" ? "FULL" : "LIMITED";
  if (format.range != "FULL") format.range = "LIMITED";
  const int width = format.width, height = format.height;
  const HdrEffect effect = openHdr(options, format.range == "LIMITED", width, height);
  VideoWriter writer(options.output, format);
  VideoFrame src(width, height), dst(width, height);
  Progress progress("frames", reader.framesAhead());
  const int chromaWidth = (width + 1) / 2;
  while (reader.read(src)) {
    // The library takes V ahead of U, the stream has U ahead of V.
    VideoAdjustColorProcess(effect.get(), src.planes[0].data(), src.planes[2].data(), src.planes[1].data(), width,
                            chromaWidth, chromaWidth, 0, 0, dst.planes[0].data(), dst.planes[2].data(),
                            dst.planes[1].data());
    writer.write(dst);
    progress.finishStep();
  }
  writer.finish();
}

// A limited-range picture taken for BT.709, as a viewer that knows nothing of HDR shows it.
cv::Mat still(const VideoFrame& frame, int width, int height) {
  cv::Mat picture(height, width, CV_8UC4, cv::Scalar::all(255));
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const size_t chroma = static_cast<size_t>(y / 2) * ((width + 1) / 2) + x / 2;
      const double luma = (frame.planes[0][static_cast<size_t>(y) * width + x] - 16) * 255.0 / 219.0;
      const double cb = (frame.planes[1][chroma] - 128) * 255.0 / 224.0;
      const double cr = (frame.planes[2][chroma] - 128) * 255.0 / 224.0;
      auto& pixel = picture.at<cv::Vec4b>(y, x);
      pixel[0] = cv::saturate_cast<uint8_t>(luma + 1.8556 * cb);
      pixel[1] = cv::saturate_cast<uint8_t>(luma - 0.1873 * cb - 0.4681 * cr);
      pixel[2] = cv::saturate_cast<uint8_t>(luma + 1.5748 * cr);
    }
  }
  return picture;
}

void addLutsCommand(CLI::App& app) {
  struct Options {
    std::string folder;
    int size = 65;
  };
  auto* command = app.add_subcommand("hdr-luts", "Write the two LUT files that turn HLG and PQ into BT.709");
  command->footer("Example:\n  lumvane-host hdr-luts luts");
  const auto options = std::make_shared<Options>();
  command->add_option("folder", options->folder, "Folder to write HDR_HLG.cube and HDR_PQ.cube to")
      ->required()
      ->type_name("FOLDER");
  command->add_option("--size", options->size, "Points per axis")->check(CLI::Range(2, 65))->capture_default_str();
  command->callback([options] { writeHdrLuts(toPath(options->folder), options->size); });
}

void addConvertCommand(CLI::App& app) {
  auto* command =
      app.add_subcommand("hdr", "Convert HDR video (BT.2020, 8-bit 4:2:0 YUV4MPEG2, chroma sited left) to BT.709");
  command->footer(
      "Examples:\n"
      "  lumvane-host hdr --luts luts --transfer pq clip.y4m sdr.y4m\n"
      "  ffmpeg -i hlg.mkv -pix_fmt yuv420p -f yuv4mpegpipe - |\n"
      "    lumvane-host hdr --luts luts --transfer hlg - - | ffmpeg -i - sdr.mp4");
  const auto options = std::make_shared<HdrOptions>();
  command->add_option("--luts", options->luts, "Folder with HDR_HLG.cube and HDR_PQ.cube; hdr-luts makes them")
      ->required()
      ->type_name("FOLDER");
  command->add_option("--transfer", options->transfer, "Transfer function of the video")
      ->required()
      ->check(CLI::IsMember({"hlg", "pq"}));
  command
      ->add_option("--range", options->range,
                   "Range of the code values, in and out; by default what the video says of itself, or limited")
      ->check(CLI::IsMember({"limited", "full"}));
  command->add_option("input", options->input, "Video to read, - for the standard input")
      ->required()
      ->type_name("FILE");
  command->add_option("output", options->output, "Video to write, - for the standard output")
      ->required()
      ->type_name("FILE");
  command->callback([options] { convert(*options); });
}

void addClipCommand(CLI::App& app) {
  struct Options {
    std::string transfer, output;
    int frames = 25, width = 640, height = 360;
  };
  auto* command = app.add_subcommand("hdr-clip", "Draw a short HDR video to try the conversion on");
  command->footer("Example:\n  lumvane-host hdr-clip --transfer hlg clip.y4m");
  const auto options = std::make_shared<Options>();
  command->add_option("--transfer", options->transfer, "Transfer function")
      ->required()
      ->check(CLI::IsMember({"hlg", "pq"}));
  command->add_option("--frames", options->frames, "Length")->check(CLI::Range(1, 100000))->capture_default_str();
  command->add_option("--width", options->width, "Width in pixels")->check(CLI::Range(1, 16384))->capture_default_str();
  command->add_option("--height", options->height, "Height in pixels")
      ->check(CLI::Range(1, 16384))
      ->capture_default_str();
  command->add_option("output", options->output, "Video to write, - for the standard output")
      ->required()
      ->type_name("FILE");
  command->callback([options] {
    VideoFormat format;
    format.width = options->width;
    format.height = options->height;
    format.range = "LIMITED";
    VideoWriter writer(options->output, format);
    Progress progress("frames", static_cast<size_t>(options->frames));
    for (int i = 0; i < options->frames; ++i) {
      writer.write(drawHdrFrame(format.width, format.height, i, options->frames, options->transfer == "pq"));
      progress.finishStep();
    }
    writer.finish();
  });
}

void addStillCommand(CLI::App& app) {
  struct Options {
    std::string input, output;
    unsigned frame = 0;
  };
  auto* command = app.add_subcommand("still", "Take a picture from a limited-range video, shown as BT.709");
  command->footer("Example:\n  lumvane-host still --frame 12 sdr.y4m still.png");
  const auto options = std::make_shared<Options>();
  command->add_option("--frame", options->frame, "Number of the frame, from 0")->capture_default_str();
  command->add_option("input", options->input, "Video to read, - for the standard input")
      ->required()
      ->type_name("FILE");
  command->add_option("output", options->output, "Picture to write")->required()->type_name("FILE");
  command->callback([options] {
    VideoReader reader(options->input);
    const int width = reader.format().width, height = reader.format().height;
    VideoFrame frame(width, height);
    for (unsigned i = 0; i <= options->frame; ++i) {
      if (reader.read(frame)) continue;
      throw Fault(ExitCode::kInput, "'" + options->input + "' is shorter: it has " + std::to_string(i) + " frames");
    }
    writePicture(toPath(options->output), still(frame, width, height));
  });
}

}  // namespace

void addHdrCommands(CLI::App& app) {
  addLutsCommand(app);
  addConvertCommand(app);
  addClipCommand(app);
  addStillCommand(app);
}

}  // namespace host
