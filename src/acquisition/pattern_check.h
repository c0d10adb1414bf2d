// The check of an image against the camera's test pattern.
#pragma once

#include <cstddef>
#include <cstdint>

namespace OVI {

/** An image as the check sees it: rows follow one another without padding. */
struct PatternImage {
  const std::uint8_t* data;
  std::size_t size;  // Bytes that may be read.
  std::uint32_t width;
  std::uint32_t height;
  std::uint32_t channels;
};

/**
 * Whether every byte of pixel column x is (x + counter) modulo 256, in every row and channel. An image with fewer bytes
 * than its geometry needs fails.
 *
 * The rows are shared out to `bands` threads, which are gone when the function returns.
 */
bool matchesTestPattern(const PatternImage& image, std::uint8_t counter, unsigned bands);

/** As many bands as the machine runs threads, at least two. */
unsigned patternBands() noexcept;

}  // namespace OVI
