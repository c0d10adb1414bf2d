// What a producer tells of its last failure.
#pragma once

#include <filesystem>
#include <string>

namespace tool {

/// Code, text and what may help, of the last call of this thread that failed in a producer which this process has
/// loaded: "GC_ERR_IO (-1010), "no answer"; the camera's cable, ...". Empty when it tells nothing.
std::string lastErrorOf(const std::filesystem::path& producer);

}  // namespace tool
