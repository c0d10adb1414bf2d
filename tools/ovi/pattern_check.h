// The check of images against the moving ramp of a camera's test pattern.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ovi/ovi.hpp"

namespace tool {

/// Switches a camera's test pattern on, and back when it is destroyed. Throws ToolError for a camera without one, or
/// with pixels of other than 8 bits a sample.
class TestPattern {
 public:
  explicit TestPattern(const ovi::Device& device);
  ~TestPattern();
  TestPattern(const TestPattern&) = delete;
  TestPattern& operator=(const TestPattern&) = delete;

 private:
  const ovi::Device& device_;
  std::string before_;
};

/// Whether images show the pattern: each row counts its pixels from a start value in every byte, and the start value
/// counts the frames.
class PatternCheck {
 public:
  bool matches(const ovi::Image& image);

 private:
  std::vector<std::uint8_t> row_;
  std::optional<std::uint8_t> offset_;  // start value less frame ID, the same for all images
};

}  // namespace tool
