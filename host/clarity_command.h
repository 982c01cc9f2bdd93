#pragma once

namespace CLI {
class App;
}

namespace host {

/// Adds "clarity", which raises the local contrast of pictures, to the program's subcommands.
void addClarityCommand(CLI::App& app);

}  // namespace host
