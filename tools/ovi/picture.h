// A camera's image as a picture that programs and people can open.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace tool {

/// Rows from top to bottom, samples interleaved; 16-bit samples in the machine's byte order.
struct Picture {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint32_t channels = 1;  ///< 1 grey, 3 red-green-blue, 4 with opacity
  std::uint32_t bits = 8;      ///< 8 or 16
  std::vector<std::uint8_t> samples;
};

/// The standard's name of a pixel format code, or the code in hexadecimal.
std::string pixelFormatName(std::uint32_t pixelFormat);

/// Decodes an image as the camera sent it. More than 8 bits become 16, scaled to the full range; Bayer patterns are
/// interpolated. Throws ToolError for a format that is not known or for too few bytes.
Picture decodePicture(std::span<const std::uint8_t> data, std::uint32_t width, std::uint32_t height,
                      std::uint32_t pixelFormat);

/// Writes a PNG file. Throws ToolError with the path and the reason.
void writePng(const Picture& picture, const std::filesystem::path& file);

/// Writes bytes as they are. Throws ToolError with the path and the reason.
void writeRaw(std::span<const std::uint8_t> data, const std::filesystem::path& file);

}  // namespace tool
