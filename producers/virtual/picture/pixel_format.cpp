// The table of formats, and one packing loop for each layout.
#include "pixel_format.h"

#include <algorithm>

namespace vcam {
namespace {

constexpr std::array<PixelFormat, 20> kFormats{{
    {"Mono8", 0x01080001, 8, 8, PixelLayout::Mono},
    {"Mono10", 0x01100003, 16, 10, PixelLayout::Mono},
    {"Mono12", 0x01100005, 16, 12, PixelLayout::Mono},
    {"Mono16", 0x01100007, 16, 16, PixelLayout::Mono},
    {"Mono10p", 0x010A0046, 10, 10, PixelLayout::MonoPacked},
    {"Mono12p", 0x010C0047, 12, 12, PixelLayout::MonoPacked},
    {"BayerGR8", 0x01080008, 8, 8, PixelLayout::Bayer, {1, 0, 2, 1}},
    {"BayerRG8", 0x01080009, 8, 8, PixelLayout::Bayer, {0, 1, 1, 2}},
    {"BayerGB8", 0x0108000A, 8, 8, PixelLayout::Bayer, {1, 2, 0, 1}},
    {"BayerBG8", 0x0108000B, 8, 8, PixelLayout::Bayer, {2, 1, 1, 0}},
    {"RGB8", 0x02180014, 24, 8, PixelLayout::Rgb},
    {"BGR8", 0x02180015, 24, 8, PixelLayout::Bgr},
    {"RGBa8", 0x02200016, 32, 8, PixelLayout::RgbAlpha},
    {"BGRa8", 0x02200017, 32, 8, PixelLayout::BgrAlpha},
    {"RGB10", 0x02300018, 48, 10, PixelLayout::Rgb},
    {"RGB12", 0x0230001A, 48, 12, PixelLayout::Rgb},
    {"BGR12", 0x0230001B, 48, 12, PixelLayout::Bgr},
    {"RGB10p32", 0x0220001D, 32, 10, PixelLayout::Rgb10p32},
    {"Coord3D_C16", 0x011000B8, 16, 16, PixelLayout::Mono},
    {"Confidence8", 0x010800C6, 8, 8, PixelLayout::Mono},
}};

ToneTables makeIdentity() {
  ToneTables tones{};
  for (std::size_t i = 0; i < 256; ++i) {
    tones.luma[i] = static_cast<std::uint16_t>(i * 257);
  }
  tones.rgb.fill(tones.luma);
  return tones;
}

// Writes components one after another, each in as many little-endian bytes as its depth needs.
class ComponentWriter {
 public:
  ComponentWriter(std::byte* out, unsigned depth) : out_(out), shift_(16 - depth), wide_(depth > 8) {}

  void put(std::uint16_t tone) {
    const unsigned value = static_cast<unsigned>(tone) >> shift_;
    *out_++ = static_cast<std::byte>(value);
    if (wide_) {
      *out_++ = static_cast<std::byte>(value >> 8U);
    }
  }

 private:
  std::byte* out_;
  unsigned shift_;
  bool wide_;
};

void packMono(const PixelFormat& format, const ToneTables& tones, std::span<const Rgb8> pixels, std::byte* out) {
  ComponentWriter writer(out, format.depth);
  for (const Rgb8 pixel : pixels) {
    writer.put(tones.luma[lumaOf(pixel)]);
  }
}

void packMonoPacked(const PixelFormat& format, const ToneTables& tones, std::span<const Rgb8> pixels, std::byte* out) {
  const unsigned shift = 16 - format.depth;
  std::uint32_t pending = 0;
  unsigned pendingBits = 0;
  for (const Rgb8 pixel : pixels) {
    pending |= (static_cast<std::uint32_t>(tones.luma[lumaOf(pixel)]) >> shift) << pendingBits;
    pendingBits += format.depth;
    while (pendingBits >= 8) {
      *out++ = static_cast<std::byte>(pending);
      pending >>= 8U;
      pendingBits -= 8;
    }
  }
  if (pendingBits > 0) {
    *out = static_cast<std::byte>(pending);
  }
}

void packColour(const PixelFormat& format, const ToneTables& tones, std::span<const Rgb8> pixels, std::byte* out) {
  const bool blueFirst = format.layout == PixelLayout::Bgr || format.layout == PixelLayout::BgrAlpha;
  const bool alpha = format.layout == PixelLayout::RgbAlpha || format.layout == PixelLayout::BgrAlpha;
  ComponentWriter writer(out, format.depth);
  for (const Rgb8 pixel : pixels) {
    const std::uint16_t red = tones.rgb[0][pixel.r];
    const std::uint16_t blue = tones.rgb[2][pixel.b];
    writer.put(blueFirst ? blue : red);
    writer.put(tones.rgb[1][pixel.g]);
    writer.put(blueFirst ? red : blue);
    if (alpha) {
      writer.put(0xFFFF);
    }
  }
}

void packRgb10p32(const ToneTables& tones, std::span<const Rgb8> pixels, std::byte* out) {
  for (const Rgb8 pixel : pixels) {
    std::uint32_t word = (static_cast<std::uint32_t>(tones.rgb[0][pixel.r]) >> 6U) |
                         (static_cast<std::uint32_t>(tones.rgb[1][pixel.g]) >> 6U << 10U) |
                         (static_cast<std::uint32_t>(tones.rgb[2][pixel.b]) >> 6U << 20U);
    for (int i = 0; i < 4; ++i, word >>= 8U) {
      *out++ = static_cast<std::byte>(word);
    }
  }
}

void packBayer(const PixelFormat& format, const ToneTables& tones, std::span<const Rgb8> pixels, std::size_t line,
               std::byte* out) {
  const std::size_t row = (line % 2) * 2;
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    const std::uint8_t component = format.bayer[row + i % 2];
    const Rgb8 pixel = pixels[i];
    const std::uint8_t value = component == 0 ? pixel.r : component == 1 ? pixel.g : pixel.b;
    *out++ = static_cast<std::byte>(tones.rgb[component][value] >> 8U);
  }
}

}  // namespace

std::span<const PixelFormat> pixelFormats() {
  return kFormats;
}

const PixelFormat* findPixelFormat(std::uint32_t code) {
  const auto* const found = std::ranges::find_if(kFormats, [&](const auto& f) { return f.code == code; });
  return found == kFormats.end() ? nullptr : &*found;
}

const PixelFormat* findPixelFormat(std::string_view name) {
  const auto* const found = std::ranges::find_if(kFormats, [&](const auto& f) { return f.name == name; });
  return found == kFormats.end() ? nullptr : &*found;
}

const ToneTables& ToneTables::identity() {
  static const ToneTables tones = makeIdentity();
  return tones;
}

void packPixels(const PixelFormat& format, const ToneTables& tones, std::span<const Rgb8> pixels, std::size_t line,
                std::span<std::byte> out) {
  switch (format.layout) {
    case PixelLayout::Mono:
      return packMono(format, tones, pixels, out.data());
    case PixelLayout::MonoPacked:
      return packMonoPacked(format, tones, pixels, out.data());
    case PixelLayout::Rgb:
    case PixelLayout::Bgr:
    case PixelLayout::RgbAlpha:
    case PixelLayout::BgrAlpha:
      return packColour(format, tones, pixels, out.data());
    case PixelLayout::Rgb10p32:
      return packRgb10p32(tones, pixels, out.data());
    case PixelLayout::Bayer:
      return packBayer(format, tones, pixels, line, out.data());
  }
}

}  // namespace vcam
