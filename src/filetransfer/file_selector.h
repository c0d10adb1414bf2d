// The names under which a camera keeps its files.
#pragma once

#include <cstdint>
#include <string_view>

namespace OVI {

/** Whether the camera's "FileSelector" has an entry of exactly that name. */
bool hasFileSelector(std::uint64_t device, std::string_view name);

/** Whether a transfer may use the name: an entry of the camera, or one of the names that are accepted everywhere. */
bool isFileSelector(std::uint64_t device, std::string_view name);

}  // namespace OVI
