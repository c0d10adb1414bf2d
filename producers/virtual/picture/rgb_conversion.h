// From any pixel format of the cameras back to RGB8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "pixel_format.h"

namespace vcam {

// Converts an image without padding. Deep components lose their low bits; a Bayer cell of 2 by 2 pixels has one colour.
// Bytes that are missing at the end are black.
std::vector<std::byte> toRgb8(const PixelFormat& format, std::uint32_t width, std::uint32_t height,
                              std::span<const std::byte> image);

}  // namespace vcam
