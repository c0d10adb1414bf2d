// The pixel formats of the cameras and how pixels are packed into them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace vcam {

struct Rgb8 {
  std::uint8_t r = 0;
  std::uint8_t g = 0;
  std::uint8_t b = 0;
  friend bool operator==(const Rgb8&, const Rgb8&) = default;
};

enum class PixelLayout { Mono, MonoPacked, Rgb, Bgr, RgbAlpha, BgrAlpha, Rgb10p32, Bayer };

struct PixelFormat {
  std::string_view name;
  std::uint32_t code;  // PFNC
  unsigned bits;       // occupied by a pixel
  unsigned depth;      // significant bits of a component
  PixelLayout layout;
  // Component (0 red, 1 green, 2 blue) at the four places of a Bayer cell, first line first.
  std::array<std::uint8_t, 4> bayer{};
};

std::span<const PixelFormat> pixelFormats();
// nullptr for a code that no camera offers.
const PixelFormat* findPixelFormat(std::uint32_t code);
const PixelFormat* findPixelFormat(std::string_view name);

constexpr std::size_t lineBytes(const PixelFormat& format, std::size_t width) {
  return (width * format.bits + 7) / 8;
}

// What an 8-bit component becomes, as 16 significant bits: exposure, gain, white balance and look-up table in one step.
struct ToneTables {
  std::array<std::array<std::uint16_t, 256>, 3> rgb;
  std::array<std::uint16_t, 256> luma;

  static const ToneTables& identity();
};

constexpr std::uint8_t lumaOf(Rgb8 pixel) {
  return static_cast<std::uint8_t>((77U * pixel.r + 150U * pixel.g + 29U * pixel.b) >> 8U);
}

// Packs a run of pixels of one line. The run begins at a column that is a multiple of 4 (so at a byte boundary in every
// format) and ends there or at the end of the line; line is the line's number, which Bayer formats need. The output
// holds lineBytes(format, pixels.size()) bytes.
void packPixels(const PixelFormat& format, const ToneTables& tones, std::span<const Rgb8> pixels, std::size_t line,
                std::span<std::byte> out);

}  // namespace vcam
