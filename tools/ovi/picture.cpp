// A camera's image as a picture that programs and people can open.
#include "picture.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

#include "hex.h"
#include "tool_error.h"

namespace tool {

namespace {

enum class Layout { kUnpacked, kPackedBits, kBayer, kTenBitsIn32 };

struct Format {
  std::uint32_t code;
  const char* name;
  Layout layout;
  std::uint32_t channels;  // samples a pixel
  std::uint32_t depth;     // significant bits a sample
  const char* order;       // of the samples in memory; for Bayer the first two rows' colours
};

constexpr std::array kFormats = {
    Format{0x01080001, "Mono8", Layout::kUnpacked, 1, 8, "L"},
    Format{0x01100003, "Mono10", Layout::kUnpacked, 1, 10, "L"},
    Format{0x01100005, "Mono12", Layout::kUnpacked, 1, 12, "L"},
    Format{0x01100025, "Mono14", Layout::kUnpacked, 1, 14, "L"},
    Format{0x01100007, "Mono16", Layout::kUnpacked, 1, 16, "L"},
    Format{0x010800C6, "Confidence8", Layout::kUnpacked, 1, 8, "L"},
    Format{0x011000B8, "Coord3D_C16", Layout::kUnpacked, 1, 16, "L"},
    Format{0x010A0046, "Mono10p", Layout::kPackedBits, 1, 10, "L"},
    Format{0x010C0047, "Mono12p", Layout::kPackedBits, 1, 12, "L"},
    Format{0x01080008, "BayerGR8", Layout::kBayer, 1, 8, "GRBG"},
    Format{0x01080009, "BayerRG8", Layout::kBayer, 1, 8, "RGGB"},
    Format{0x0108000A, "BayerGB8", Layout::kBayer, 1, 8, "GBRG"},
    Format{0x0108000B, "BayerBG8", Layout::kBayer, 1, 8, "BGGR"},
    Format{0x02180014, "RGB8", Layout::kUnpacked, 3, 8, "RGB"},
    Format{0x02180015, "BGR8", Layout::kUnpacked, 3, 8, "BGR"},
    Format{0x02200016, "RGBa8", Layout::kUnpacked, 4, 8, "RGBA"},
    Format{0x02200017, "BGRa8", Layout::kUnpacked, 4, 8, "BGRA"},
    Format{0x02300018, "RGB10", Layout::kUnpacked, 3, 10, "RGB"},
    Format{0x02300019, "BGR10", Layout::kUnpacked, 3, 10, "BGR"},
    Format{0x0230001A, "RGB12", Layout::kUnpacked, 3, 12, "RGB"},
    Format{0x0230001B, "BGR12", Layout::kUnpacked, 3, 12, "BGR"},
    Format{0x02300033, "RGB16", Layout::kUnpacked, 3, 16, "RGB"},
    Format{0x0220001D, "RGB10p32", Layout::kTenBitsIn32, 3, 10, "RGB"},
};

const Format* findFormat(std::uint32_t code) {
  const auto* found = std::ranges::find_if(kFormats, [&](const Format& f) { return f.code == code; });
  return found == kFormats.end() ? nullptr : found;
}

std::size_t sourceBytes(const Format& format, std::size_t pixels) {
  switch (format.layout) {
    case Layout::kPackedBits:
      return (pixels * format.depth + 7) / 8;
    case Layout::kTenBitsIn32:
      return pixels * 4;
    case Layout::kBayer:
      return pixels;
    case Layout::kUnpacked:
      break;
  }
  return pixels * format.channels * (format.depth > 8 ? 2 : 1);
}

std::size_t targetChannel(char colour) {
  switch (colour) {
    case 'G':
      return 1;
    case 'B':
      return 2;
    case 'A':
      return 3;
    default:
      return 0;
  }
}

// One sample of the source as it is stored, by its running number.
std::uint32_t sampleAt(const Format& format, std::span<const std::uint8_t> data, std::size_t index) {
  if (format.layout == Layout::kPackedBits) {
    const std::size_t bit = index * format.depth;
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < 3 && bit / 8 + i < data.size(); ++i)
      word |= static_cast<std::uint32_t>(data[bit / 8 + i]) << (8 * i);
    return (word >> (bit % 8)) & ((1U << format.depth) - 1U);
  }
  if (format.layout == Layout::kTenBitsIn32) {
    std::uint32_t word = 0;
    std::memcpy(&word, data.data() + index / 3 * 4, sizeof(word));
    return (word >> (10 * (index % 3))) & 0x3FFU;
  }
  if (format.depth > 8)
    return static_cast<std::uint32_t>(data[2 * index] | (data[2 * index + 1] << 8));
  return data[index];
}

// Spreads a sample of that depth over 16 bits, so that full scale stays full scale.
std::uint16_t toSixteenBits(std::uint32_t value, std::uint32_t depth) {
  const std::uint32_t limit = (1U << depth) - 1U;
  return static_cast<std::uint16_t>(std::min(value, limit) * 65535ULL / limit);
}

Picture decodeBayer(std::span<const std::uint8_t> data, std::uint32_t width, std::uint32_t height,
                    const Format& format) {
  Picture picture{width, height, 3, 8, {}};
  picture.samples.resize(static_cast<std::size_t>(width) * height * 3);
  for (std::uint32_t y = 0; y < height; ++y) {
    for (std::uint32_t x = 0; x < width; ++x) {
      // The mean of each colour over the pixel and its neighbours; a pixel's own colour is taken as it is.
      std::array<std::uint32_t, 3> sum{};
      std::array<std::uint32_t, 3> count{};
      const std::size_t own = targetChannel(format.order[(y % 2) * 2 + x % 2]);
      for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
          const std::int64_t nx = static_cast<std::int64_t>(x) + dx;
          const std::int64_t ny = static_cast<std::int64_t>(y) + dy;
          if (nx < 0 || ny < 0 || nx >= width || ny >= height)
            continue;
          const std::size_t colour = targetChannel(format.order[(ny % 2) * 2 + nx % 2]);
          if (colour == own && (dx != 0 || dy != 0))
            continue;
          sum.at(colour) += data[static_cast<std::size_t>(ny) * width + static_cast<std::size_t>(nx)];
          count.at(colour) += 1;
        }
      }
      std::uint8_t* target = &picture.samples[(static_cast<std::size_t>(y) * width + x) * 3];
      for (std::size_t c = 0; c < 3; ++c)
        target[c] = static_cast<std::uint8_t>(count.at(c) == 0 ? 0 : sum.at(c) / count.at(c));
    }
  }
  return picture;
}

}  // namespace

std::string pixelFormatName(std::uint32_t pixelFormat) {
  if (const Format* format = findFormat(pixelFormat))
    return format->name;
  return hexNumber(pixelFormat, 8);
}

Picture decodePicture(std::span<const std::uint8_t> data, std::uint32_t width, std::uint32_t height,
                      std::uint32_t pixelFormat) {
  const Format* format = findFormat(pixelFormat);
  if (format == nullptr)
    throw ToolError("cannot make a picture of pixel format " + pixelFormatName(pixelFormat),
                    "save the bytes as they are: --save raw, or a file name with .raw; or choose another PixelFormat");
  const std::size_t pixels = static_cast<std::size_t>(width) * height;
  if (pixels == 0 || data.size() < sourceBytes(*format, pixels))
    throw ToolError("the image holds " + std::to_string(data.size()) + " bytes, but " + std::to_string(width) + " x " +
                    std::to_string(height) + " " + format->name + " needs " +
                    std::to_string(sourceBytes(*format, pixels)));
  if (format->layout == Layout::kBayer)
    return decodeBayer(data, width, height, *format);

  Picture picture{width, height, format->channels, format->depth > 8 ? 16U : 8U, {}};
  const std::size_t samples = pixels * format->channels;
  picture.samples.resize(samples * (picture.bits / 8));
  for (std::size_t i = 0; i < samples; ++i) {
    const std::size_t pixel = i / format->channels;
    const std::size_t target = pixel * format->channels + targetChannel(format->order[i % format->channels]);
    const std::uint32_t value = sampleAt(*format, data, i);
    if (picture.bits == 8) {
      picture.samples[target] = static_cast<std::uint8_t>(value);
    } else {
      const std::uint16_t wide = toSixteenBits(value, format->depth);
      std::memcpy(&picture.samples[target * 2], &wide, sizeof(wide));
    }
  }
  return picture;
}

}  // namespace tool
