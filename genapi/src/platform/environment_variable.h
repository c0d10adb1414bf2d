// The process's environment variables, as they are at this moment.
#pragma once

#include <optional>
#include <string>

namespace GenApiEngine {

/// A variable's value, on Windows in the ANSI code page; nothing when it is not set.
std::optional<std::string> environmentVariable(const char* name);

}  // namespace GenApiEngine
