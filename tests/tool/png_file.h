// A PNG file's pixels.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace tool_test {

struct PngFile {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint32_t channels = 0;
  std::uint32_t bits = 0;
  std::vector<std::uint16_t> samples;

  std::uint16_t at(std::uint32_t x, std::uint32_t y, std::uint32_t channel = 0) const {
    return samples.at((std::size_t{y} * width + x) * channels + channel);
  }
  /// A sample as a share of the largest one, 0 to 255.
  double level(std::uint32_t x, std::uint32_t y, std::uint32_t channel = 0) const {
    return at(x, y, channel) * 255.0 / (bits == 16 ? 65535.0 : 255.0);
  }
};

/// Fails the test when the file cannot be read.
PngFile readPng(const std::filesystem::path& file);

}  // namespace tool_test
