// The grammar of the command line beyond what its parser knows: options in any place, and errors that help.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "tool_error.h"

namespace tool {

/// The command of that name directly below another one, or null.
const CLI::App* commandBelow(const CLI::App& parent, const std::string& name);

/// Moves options of a command that stand before it behind it, where the parser looks for them.
std::vector<std::string> withOptionsBehindCommand(const CLI::App& app, const std::vector<std::string>& arguments);

/// What is wrong with the command line, the nearest legal word, and what to type instead.
ToolError usageError(const CLI::App& app, const CLI::ParseError& error);

}  // namespace tool
