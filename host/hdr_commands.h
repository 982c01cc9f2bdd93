#pragma once

namespace CLI {
class App;
}

namespace host {

/// Adds what belongs to HDR video to the program's subcommands: "hdr-luts" writes the LUT files that the effect needs,
/// "hdr" converts a video, "hdr-clip" draws one to try, and "still" takes a picture from a video.
void addHdrCommands(CLI::App& app);

}  // namespace host
