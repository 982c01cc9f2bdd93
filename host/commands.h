#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

namespace host {

/// Opens the grading effect for a LUT file, which is read to its end. Throws an Error that says what is wrong with it.
std::shared_ptr<void> openLut(const std::string& name);

/// Adds the subcommands that grade pictures, "lut", "clarity" and "whitebalance", and "scene", which draws a picture to
/// try them on.
void addPictureCommands(CLI::App& app);

/// Adds the subcommands for HDR video: "hdr-luts" writes the LUT files that the effect needs, "hdr" converts a video,
/// "hdr-clip" draws one to try it on, and "still" saves a frame as a picture.
void addHdrCommands(CLI::App& app);

}  // namespace host
