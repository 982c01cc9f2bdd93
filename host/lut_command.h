#pragma once

namespace CLI {
class App;
}

namespace host {

/// Adds "lut", which grades pictures through a LUT file, to the program's subcommands.
void addLutCommand(CLI::App& app);

}  // namespace host
