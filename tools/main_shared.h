#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace bmr::tools {

/// Parses the command line and runs `run` or the subcommand's callback: 0, or the status of a failure after
/// one line "name: why" on standard error.
int RunMain(CLI::App& app, int argc, char** argv, const std::function<void()>& run = nullptr);

}  // namespace bmr::tools
