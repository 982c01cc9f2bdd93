#pragma once

namespace CLI {
class App;
}

namespace host {

/// Adds "whitebalance", which shifts the colours of pictures, to the program's subcommands.
void addWhiteBalanceCommand(CLI::App& app);

}  // namespace host
