// The pictures of a folder, read once.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "scene.h"

namespace vcam {

// Reads all PNG files of a folder in the order of their names, each cut and scaled to a sensor. A file that cannot be
// read is left out and reported.
std::vector<std::shared_ptr<const Scene>> readImageFolder(const std::filesystem::path& folder, std::uint32_t width,
                                                          std::uint32_t height,
                                                          const std::function<void(const std::string&)>& report);

}  // namespace vcam
