#pragma once

#include "app/cli/Context.h"

#include <functional>
#include <optional>
#include <string>

namespace korvo {

/// A command line, understood.
struct ParsedCommand {
    GlobalOptions options;
    std::function<ExitCode(Context&)> run;
};

/// Reads the program's arguments. For a wrong call the reason and the usage are printed, for --help and
/// --version what was asked for, and the exit code is given instead of a command.
struct ParseResult {
    std::optional<ParsedCommand> command;
    std::string usage; // of the command
    ExitCode exitCode = ExitCode::done;
};

ParseResult parseCommandLine(int argc, char** argv);

} // namespace korvo
