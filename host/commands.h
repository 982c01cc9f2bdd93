#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

namespace host {

/// A grading effect of a LUT file, read through to its end. Throws an Error that says what is wrong with the file.
std::shared_ptr<void> openLut(const std::string& name);

/// Adds to the program's subcommands what grades pictures, "lut", "clarity" and "whitebalance", and "scene", which
/// draws one to try.
void addPictureCommands(CLI::App& app);

/// Adds to the program's subcommands what belongs to HDR video: "hdr-luts" writes the LUT files that the effect needs,
/// "hdr" converts a video, "hdr-clip" draws one to try, and "still" takes a picture from a video.
void addHdrCommands(CLI::App& app);

}  // namespace host
