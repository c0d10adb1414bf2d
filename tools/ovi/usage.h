// The grammar of the command line beyond what its parser knows: options in any place, and errors that help.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "tool_error.h"

namespace tool {

/// The command of that name directly below another one, or null.
const CLI::App* commandBelow(const CLI::App& parent, const std::string& name);

/// The arguments as the parser wants them: options of a command that stand before it go behind it, and "help COMMAND"
/// becomes "COMMAND --help".
std::vector<std::string> orderedArguments(const CLI::App& app, std::vector<std::string> arguments);

/// What is wrong with the command line, the nearest legal word, and what to type instead.
ToolError usageError(const CLI::App& app, const CLI::ParseError& error);

}  // namespace tool
