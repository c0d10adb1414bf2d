// Reads the components of each layout.
#include "rgb_conversion.h"

#include <algorithm>

namespace vcam {
namespace {

unsigned byteAt(std::span<const std::byte> line, std::size_t index) {
  return index < line.size() ? std::to_integer<unsigned>(line[index]) : 0;
}

// The 8 high bits of a component that begins at a bit of the line, lowest bit first.
std::uint8_t componentAt(std::span<const std::byte> line, std::size_t bit, unsigned depth) {
  const std::size_t byte = bit / 8;
  const unsigned word = byteAt(line, byte) | byteAt(line, byte + 1) << 8U | byteAt(line, byte + 2) << 16U;
  const unsigned value = word >> (bit % 8) & ((1U << depth) - 1);
  return static_cast<std::uint8_t>(value >> (depth - 8));
}

Rgb8 colourAt(const PixelFormat& format, std::span<const std::byte> line, std::size_t x) {
  const std::size_t first = x * format.bits;
  const bool alpha = format.layout == PixelLayout::RgbAlpha || format.layout == PixelLayout::BgrAlpha;
  const bool packed = format.layout == PixelLayout::Rgb10p32;
  const std::size_t step = packed ? format.depth : format.bits / (alpha ? 4 : 3);
  const Rgb8 read{componentAt(line, first, format.depth), componentAt(line, first + step, format.depth),
                  componentAt(line, first + 2 * step, format.depth)};
  const bool blueFirst = format.layout == PixelLayout::Bgr || format.layout == PixelLayout::BgrAlpha;
  return blueFirst ? Rgb8{read.b, read.g, read.r} : read;
}

Rgb8 bayerAt(const PixelFormat& format, std::span<const std::byte> upper, std::span<const std::byte> lower,
             std::size_t x) {
  std::array<unsigned, 3> sums{};
  std::array<unsigned, 3> counts{};
  for (std::size_t place = 0; place < 4; ++place) {
    const std::uint8_t component = format.bayer[place];
    sums[component] += byteAt(place < 2 ? upper : lower, x / 2 * 2 + place % 2);
    ++counts[component];
  }
  const auto mean = [&](std::size_t component) {
    return static_cast<std::uint8_t>(sums[component] / counts[component]);
  };
  return {mean(0), mean(1), mean(2)};
}

}  // namespace

std::vector<std::byte> toRgb8(const PixelFormat& format, std::uint32_t width, std::uint32_t height,
                              std::span<const std::byte> image) {
  std::vector<std::byte> result(std::size_t{width} * height * 3);
  const std::size_t pitch = lineBytes(format, width);
  const auto line = [&](std::size_t y) {
    const std::size_t begin = std::min(y * pitch, image.size());
    return image.subspan(begin, std::min(pitch, image.size() - begin));
  };
  const bool mono = format.layout == PixelLayout::Mono || format.layout == PixelLayout::MonoPacked;
  auto out = result.begin();
  for (std::size_t y = 0; y < height; ++y) {
    for (std::size_t x = 0; x < width; ++x) {
      Rgb8 pixel;
      if (format.layout == PixelLayout::Bayer) {
        pixel = bayerAt(format, line(y / 2 * 2), line(y / 2 * 2 + 1), x);
      } else if (mono) {
        const std::uint8_t grey = componentAt(line(y), x * format.bits, format.depth);
        pixel = {grey, grey, grey};
      } else {
        pixel = colourAt(format, line(y), x);
      }
      *out++ = static_cast<std::byte>(pixel.r);
      *out++ = static_cast<std::byte>(pixel.g);
      *out++ = static_cast<std::byte>(pixel.b);
    }
  }
  return result;
}

}  // namespace vcam
