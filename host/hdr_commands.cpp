#include <algorithm>
#include <filesystem>
#include <memory>
#include <opencv2/core.hpp>

#include "host/commands.h"
#include "host/drawings.h"
#include "host/files.h"
#include "host/hdr_luts.h"
#include "host/lut_contents.h"
#include "host/pictures.h"
#include "host/platform.h"
#include "host/progress.h"
#include "host/y4m.h"
#include "lumvane.h"

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr const char *kHlgLut = "HDR_HLG.cube", *kPqLut = "HDR_PQ.cube";

struct Options {
  std::string luts, transfer, input, output;
  std::string hlgCube, pqCube;           // empty: the built-in conversion
  std::string codes = "full", codesOut;  // codesOut empty: same as codes
  std::string range;                     // empty: as the video is tagged, or limited
  int size = 65, frames = 25, width = 640, height = 360;
  unsigned frame = 0;

  bool isPq() const { return transfer == "pq"; }
};

// 10-bit codes, as used by broadcasters' cubes: narrow range has black at 64 and white at 940.
struct Codes {
  explicit Codes(bool narrow) : black(narrow ? 64 / 1023.0 : 0.0), width(narrow ? 876 / 1023.0 : 1.0) {}
  double black, width;
};

// Resamples a third-party cube for the library: domain 0 to 1, no values that wrap.
std::string resampled(const std::string& name, const Options& options) {
  const LutContents cube = readLut(toPath(name));
  if (!cube.isWholeCube()) {
    throw Error(ExitCode::kInput, "cannot resample", toPath(name),
                cube.remarks.empty() ? "it is not a .cube file with a complete 3D table" : cube.remarks);
  }
  const Codes in(options.codes == "narrow");
  const Codes out((options.codesOut.empty() ? options.codes : options.codesOut) == "narrow");
  return cubeText("resampled by lumvane-host", options.size, [&](const Colour& signal) {
    Colour result = (cube.colourAt(signal * in.width + Colour::all(in.black)) - Colour::all(out.black)) / out.width;
    for (double& value : result.val) value = value > 0.0 ? std::min(value, 1.0) : 0.0;
    return result;
  });
}

void writeLuts(const Options& options) {
  for (const bool pq : {false, true}) {
    const std::string& cube = pq ? options.pqCube : options.hlgCube;
    const char* const title = pq ? "BT.2100 PQ to BT.709" : "BT.2100 HLG, 1000 cd/m2, to BT.709";
    const std::string text =
        cube.empty() ? cubeText(title, options.size, [pq](const Colour& signal) { return hdrToBt709(signal, pq); })
                     : resampled(cube, options);
    makeFolder(toPath(options.luts));
    OutputFile file(toPath(options.luts) / (pq ? kPqLut : kHlgLut));
    file.write(text.data(), text.size());
    file.finish();
  }
}

std::shared_ptr<void> openHdr(const Options& options, bool limited, int width, int height) {
  return {CreateVideoAdjustColor(libraryPath(options.luts).c_str(), 0, limited, options.isPq(), width, height),
          DestroyVideoAdjustColor};
}

// Users may expect the file extension to choose the format.
void warnAboutFormat(const std::string& output) {
  const std::string extension = lowerCaseExtension(toPath(output));
  if (extension.empty() || extension == ".y4m") return;
  note("'" + output + "' will be a YUV4MPEG2 stream, not a " + extension +
       " file; to get one, write to - and append: | ffmpeg -i - " + output);
}

void convert(const Options& options) {
  std::error_code ignored;
  if (fs::equivalent(toPath(options.input), toPath(options.output), ignored)) {
    throw Error(ExitCode::kUsage, "'" + options.output + "' is both the input and the output");
  }
  // The library does not report an HDR LUT that is missing, damaged or wraps, so it is checked as a grading LUT first.
  const fs::path lut = toPath(options.luts) / (options.isPq() ? kPqLut : kHlgLut);
  openLut(toName(lut));
  const std::string wrapping = readLut(lut).wrappingValues();
  if (!wrapping.empty()) {
    throw Error(ExitCode::kInput, "cannot use LUT file", lut,
                wrapping + "; hdr-luts --hlg and --pq make LUTs without such values");
  }
  VideoReader reader(toPath(options.input));
  VideoFormat format = reader.format();
  if (!options.range.empty()) format.range = options.range == "full" ? "FULL" : "LIMITED";
  if (format.range != "FULL") format.range = "LIMITED";
  const int width = format.width, chromaWidth = (width + 1) / 2;
  const std::shared_ptr<void> effect = openHdr(options, format.range == "LIMITED", width, format.height);
  warnAboutFormat(options.output);
  OutputFile file(toPath(options.output));
  writeVideoHeader(file, format);
  VideoFrame src(width, format.height), dst(width, format.height);
  Progress progress("frames", reader.framesAhead(src));
  while (reader.read(src)) {
    // The library expects V before U, the stream has U before V.
    VideoAdjustColorProcess(effect.get(), src.planes[0].data, src.planes[2].data, src.planes[1].data, width,
                            chromaWidth, chromaWidth, 0, 0, dst.planes[0].data, dst.planes[2].data, dst.planes[1].data);
    writeVideoFrame(file, dst);
    progress.finishStep();
  }
  file.finish();
}

void drawClip(const Options& options) {
  warnAboutFormat(options.output);
  OutputFile file(toPath(options.output));
  writeVideoHeader(file, {options.width, options.height, "25:1", "0:0", "LIMITED"});
  Progress progress("frames", static_cast<size_t>(options.frames));
  for (int i = 0; i < options.frames; ++i) {
    writeVideoFrame(file, drawHdrFrame(options.width, options.height, i, options.frames, options.isPq()));
    progress.finishStep();
  }
  file.finish();
}

// Decodes a limited-range frame as BT.709, which is what a viewer without HDR support shows.
void takeStill(const Options& options) {
  VideoReader reader(toPath(options.input));
  const int width = reader.format().width, height = reader.format().height;
  VideoFrame frame(width, height);
  for (unsigned i = 0; i <= options.frame; ++i) {
    if (reader.read(frame)) continue;
    throw Error(ExitCode::kInput, "'" + options.input + "' has only " + std::to_string(i) + " frames");
  }
  cv::Mat picture(height, width, CV_8UC4);
  picture.forEach<cv::Vec4b>([&](cv::Vec4b& pixel, const int* at) {
    const int x = at[1], y = at[0];
    const double luma = (frame.planes[0](y, x) - 16) * 255.0 / 219.0;
    const double cb = (frame.planes[1](y / 2, x / 2) - 128) * 255.0 / 224.0;
    const double cr = (frame.planes[2](y / 2, x / 2) - 128) * 255.0 / 224.0;
    pixel = cv::Vec4d(luma + 1.8556 * cb, luma - 0.1873 * cb - 0.4681 * cr, luma + 1.5748 * cr, 255);
  });
  writePicture(toPath(options.output), {picture});
}

void addTransfer(CLI::App* command, std::string& transfer) {
  command->add_option("--transfer", transfer, "Transfer function of the video")
      ->required()
      ->check(CLI::IsMember({"hlg", "pq"}));
}

void addPath(CLI::App* command, const char* name, std::string& path, const char* description) {
  command->add_option(name, path, description)->required()->type_name("PATH");
}

}  // namespace

void addHdrCommands(CLI::App& app) {
  const auto options = std::make_shared<Options>();
  const auto add = [&](const char* name, const char* description, const char* footer, void (*run)(const Options&)) {
    auto* command = app.add_subcommand(name, description)->footer(footer);
    command->callback([options, run] { run(*options); });
    return command;
  };
  constexpr const char* kInput = "Video to read, - for standard input";
  constexpr const char* kOutput = "Video to write, - for standard output";

  auto* luts = add("hdr-luts", "Write the two LUT files that convert HLG and PQ to BT.709",
                   "Examples:\n"
                   "  lumvane-host hdr-luts luts\n"
                   "  lumvane-host hdr-luts --hlg hlg-to-709.cube --pq pq-to-709.cube --codes narrow luts",
                   writeLuts);
  addPath(luts, "folder", options->luts, "Folder to write HDR_HLG.cube and HDR_PQ.cube to");
  luts->add_option("--size", options->size, "Points per axis")->check(CLI::Range(2, 65));
  luts->add_option("--hlg", options->hlgCube,
                   "Published cube to make HDR_HLG.cube from; default: the built-in conversion")
      ->type_name("PATH");
  luts->add_option("--pq", options->pqCube, "Published cube to make HDR_PQ.cube from; default: the built-in conversion")
      ->type_name("PATH");
  luts->add_option("--codes", options->codes,
                   "Range of the cubes' input and output: black and white at 0 and 1 (full), or at 64 and 940 of 1023")
      ->check(CLI::IsMember({"narrow", "full"}));
  luts->add_option("--codes-out", options->codesOut, "Range of the cubes' output, if different from --codes")
      ->check(CLI::IsMember({"narrow", "full"}));

  auto* hdr = add("hdr", "Convert HDR video (BT.2020, 8-bit 4:2:0 YUV4MPEG2, chroma sited left) to BT.709",
                  "Examples:\n"
                  "  lumvane-host hdr --luts luts --transfer pq clip.y4m sdr.y4m\n"
                  "  ffmpeg -i hlg.mkv -pix_fmt yuv420p -f yuv4mpegpipe - |\n"
                  "    lumvane-host hdr --luts luts --transfer hlg - - | ffmpeg -i - sdr.mp4",
                  convert);
  addPath(hdr, "--luts", options->luts, "Folder with HDR_HLG.cube and HDR_PQ.cube; hdr-luts makes them");
  addTransfer(hdr, options->transfer);
  hdr->add_option("--range", options->range,
                  "Range of the code values, in and out; default: as the video is tagged, or limited")
      ->check(CLI::IsMember({"limited", "full"}));
  addPath(hdr, "input", options->input, kInput);
  addPath(hdr, "output", options->output, kOutput);

  auto* clip = add("hdr-clip", "Draw a short HDR video to try the conversion on",
                   "Example:\n  lumvane-host hdr-clip --transfer hlg clip.y4m", drawClip);
  addTransfer(clip, options->transfer);
  clip->add_option("--frames", options->frames, "Length in frames")->check(CLI::Range(1, 100000));
  clip->add_option("--width", options->width, "Width in pixels")->check(CLI::Range(1, 16384));
  clip->add_option("--height", options->height, "Height in pixels")->check(CLI::Range(1, 16384));
  addPath(clip, "output", options->output, kOutput);

  auto* still = add("still", "Save a frame of a limited-range video as a picture, decoded as BT.709",
                    "Example:\n  lumvane-host still --frame 12 sdr.y4m still.png", takeStill);
  still->add_option("--frame", options->frame, "Number of the frame, from 0");
  addPath(still, "input", options->input, kInput);
  addPath(still, "output", options->output, "Picture to write");
}

}  // namespace host
