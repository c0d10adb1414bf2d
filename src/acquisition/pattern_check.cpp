// The check of an image against the camera's test pattern.
#include "pattern_check.h"

#include <algorithm>
#include <atomic>
#include <system_error>
#include <thread>
#include <vector>

namespace OVI {

namespace {

/** The bytes of every row. */
std::vector<std::uint8_t> expectedRow(const PatternImage& image, std::uint8_t counter) {
  std::vector<std::uint8_t> row(std::size_t{image.width} * image.channels);
  auto out = row.begin();
  for (std::uint32_t x = 0; x < image.width; ++x) {
    out = std::fill_n(out, image.channels, static_cast<std::uint8_t>(x + counter));
  }
  return row;
}

/** Compares blocks of a fixed size without a branch inside, which compilers turn into vector code. */
bool equalBytes(const std::uint8_t* left, const std::uint8_t* right, std::size_t size) noexcept {
  constexpr std::size_t kBlock = 256;
  std::size_t at = 0;
  for (; at + kBlock <= size; at += kBlock) {
    std::uint8_t difference = 0;
    for (std::size_t i = 0; i < kBlock; ++i) {
      difference = static_cast<std::uint8_t>(difference | (left[at + i] ^ right[at + i]));
    }
    if (difference != 0) {
      return false;
    }
  }
  return std::equal(left + at, left + size, right + at);
}

}  // namespace

unsigned patternBands() noexcept {
  return std::max(2U, std::thread::hardware_concurrency());
}

bool matchesTestPattern(const PatternImage& image, std::uint8_t counter, unsigned bands) {
  const std::size_t rowSize = std::size_t{image.width} * image.channels;
  if (image.data == nullptr || (rowSize != 0 && image.size / rowSize < image.height)) {
    return false;
  }
  if (image.height == 0) {
    return true;  // However long its rows claim to be.
  }
  const std::vector<std::uint8_t> expected = expectedRow(image, counter);
  std::atomic<bool> differs{false};
  const auto checkRows = [&](std::uint32_t first, std::uint32_t end) {
    for (std::uint32_t row = first; row < end; ++row) {
      if (!equalBytes(image.data + rowSize * row, expected.data(), rowSize)) {
        differs.store(true, std::memory_order_relaxed);
        return;
      }
    }
  };

  const std::uint32_t bandRows = image.height / bands;
  std::vector<std::thread> workers;
  workers.reserve(bands);
  for (unsigned band = 0; band < bands; ++band) {
    const std::uint32_t first = band * bandRows;
    const std::uint32_t end = band + 1 == bands ? image.height : first + bandRows;
    if (first == end) {
      continue;
    }
    try {
      workers.emplace_back(checkRows, first, end);
    } catch (const std::system_error&) {
      checkRows(first, end);  // No thread to be had: this one does it.
    }
  }
  for (std::thread& worker : workers) {
    worker.join();
  }
  return !differs.load(std::memory_order_relaxed);
}

}  // namespace OVI
