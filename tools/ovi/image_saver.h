// Saving images of a stream under numbered names.
#pragma once

#include <filesystem>
#include <string>

#include "ovi/ovi.hpp"

namespace tool {

enum class SaveFormat { kNone, kPng, kRaw };

/// "png", "raw" or "none". Throws ToolError.
SaveFormat saveFormatFromText(const std::string& text);

/// Writes one image. Throws ToolError.
void saveImage(const ovi::Image& image, const std::filesystem::path& file, SaveFormat format);

/// "frame-000042-1280x1024-Mono8.png" for an image.
std::string imageFileName(const ovi::Image& image, SaveFormat format);

}  // namespace tool
