// Rendering: the still background is packed once, a frame copies it and draws only what moves.
#include "picture.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

#include "font.h"

namespace vcam {
namespace {

constexpr Rgb8 kBright{255, 255, 255};
constexpr Rgb8 kDark{0, 0, 0};
constexpr Rgb8 kBox{12, 12, 16};
constexpr std::array<Rgb8, 8> kColorBars{
    {{255, 255, 255}, {255, 255, 0}, {0, 255, 255}, {0, 255, 0}, {255, 0, 255}, {255, 0, 0}, {0, 0, 255}, {0, 0, 0}}};

Rgb8 patternPixel(const PictureSettings& s, std::uint64_t x, std::uint64_t y, std::uint64_t n) {
  const auto grey = [](std::uint64_t value) {
    const auto v = static_cast<std::uint8_t>(value);
    return Rgb8{v, v, v};
  };
  switch (s.pattern) {
    case Pattern::White:
      return grey(255);
    case Pattern::GreyHorizontalRamp:
      return grey(x);
    case Pattern::GreyVerticalRamp:
      return grey(y);
    case Pattern::GreyHorizontalRampMoving:
      return grey(x + n);
    case Pattern::GreyVerticalRampMoving:
      return grey(y + n);
    case Pattern::HorizontalLineMoving:
      return grey(y == n % s.height ? 255 : 0);
    case Pattern::VerticalLineMoving:
      return grey(x == n % s.width ? 255 : 0);
    case Pattern::GreyDiagonalRampMoving:
      return grey(x + y + n);
    case Pattern::ColorBar:
      return kColorBars[x * kColorBars.size() / s.width];
    case Pattern::FrameCounter:
      return grey(n);
    case Pattern::Chart:
    case Pattern::ImageFolder:
    case Pattern::Black:
      break;
  }
  return kDark;
}

bool variesByLine(Pattern pattern) {
  return pattern == Pattern::GreyVerticalRamp || pattern == Pattern::GreyVerticalRampMoving ||
         pattern == Pattern::HorizontalLineMoving || pattern == Pattern::GreyDiagonalRampMoving;
}

}  // namespace

FrameStamp::FrameStamp(std::uint32_t width, std::uint32_t height)
    : bits(std::min(32U, width / 4)),
      cellWidth(bits < 32 ? 4 : std::clamp(width / 64, 4U, 16U)),
      cellHeight(std::min(std::max(2U, cellWidth), height)),
      dot(std::clamp(std::min(width / 100, height / 60), 1U, 8U)),
      strip{0, 0, std::int64_t{bits} * cellWidth, cellHeight} {
  const std::uint32_t glyph = kGlyphAdvance * dot;
  const std::uint32_t boxHeight = (kGlyphHeight + 2) * dot;
  if (width > glyph + dot && height >= cellHeight + boxHeight) {
    digits = std::min(8U, (width - dot) / glyph);
    box = {0, cellHeight, std::int64_t{digits} * glyph + dot, std::int64_t{cellHeight} + boxHeight};
  }
}

Picture::Picture(PictureSettings settings)
    : settings_(std::move(settings)),
      lineSize_(lineBytes(*settings_.format, settings_.width)),
      stamp_(settings_.width, settings_.height) {}

void Picture::render(std::uint64_t frameId, std::span<std::byte> out) const {
  if (settings_.pattern == Pattern::Chart) {
    renderScene(*settings_.chart, frameId, out);
  } else if (settings_.pattern == Pattern::ImageFolder) {
    const auto& folder = settings_.folder;
    renderScene(folder.empty() ? *settings_.chart : *folder[frameId % folder.size()], frameId, out);
  } else {
    renderPattern(frameId, out);
  }
}

Rgb8 Picture::pixelAt(std::uint32_t x, std::uint32_t y, std::uint64_t frameId) const {
  return scenePixel(*settings_.chart, x, y, settings_.chart->ballArea(frameId));
}

void Picture::renderScene(const Scene& scene, std::uint64_t frameId, std::span<std::byte> out) const {
  const Rect all{0, 0, settings_.width, settings_.height};
  if (&scene == settings_.chart.get()) {
    std::call_once(backgroundOnce_, [&] {
      background_.resize(size());
      drawScene(scene, all, Rect{}, background_);
    });
    std::memcpy(out.data(), background_.data(), background_.size());
    const Rect ball = scene.ballArea(frameId);
    drawScene(scene, widen(fromSensor(scene, ball)), ball, out);
  } else {
    drawScene(scene, all, Rect{}, out);
  }
  drawStamp(frameId, out);
}

void Picture::renderPattern(std::uint64_t frameId, std::span<std::byte> out) const {
  std::vector<Rgb8> pixels(settings_.width);
  const PixelFormat& format = *settings_.format;
  // A sensor with a colour mask has two kinds of lines even where the pattern has one.
  const std::uint32_t distinct = variesByLine(settings_.pattern)       ? settings_.height
                                 : format.layout == PixelLayout::Bayer ? std::min(2U, settings_.height)
                                                                       : 1;
  const bool alphaToo =
      settings_.pattern == Pattern::GreyHorizontalRampMoving && format.depth == 8 && format.bits == 32;
  for (std::uint32_t y = 0; y < settings_.height; ++y) {
    const std::span<std::byte> line = out.subspan(y * lineSize_, lineSize_);
    if (y >= distinct) {
      std::memcpy(line.data(), out.data() + (y - distinct) * lineSize_, lineSize_);
      continue;
    }
    for (std::uint32_t x = 0; x < settings_.width; ++x) {
      pixels[x] = patternPixel(settings_, x, y, frameId);
    }
    packPixels(format, ToneTables::identity(), pixels, y, line);
    for (std::uint32_t x = 0; alphaToo && x < settings_.width; ++x) {
      line[4 * std::size_t{x} + 3] = line[4 * std::size_t{x}];
    }
  }
}

void Picture::drawScene(const Scene& scene, const Rect& area, const Rect& ball, std::span<std::byte> out) const {
  if (area.x0 >= area.x1) {
    return;
  }
  std::vector<Rgb8> pixels(static_cast<std::size_t>(area.x1 - area.x0));
  for (std::int64_t y = area.y0; y < area.y1; ++y) {
    for (std::size_t i = 0; i < pixels.size(); ++i) {
      pixels[i] = scenePixel(scene, static_cast<std::uint32_t>(area.x0) + static_cast<std::uint32_t>(i),
                             static_cast<std::uint32_t>(y), ball);
    }
    pack({area.x0, y, area.x1, y + 1}, settings_.tones, pixels, out);
  }
}

void Picture::drawStamp(std::uint64_t frameId, std::span<std::byte> out) const {
  const Rect strip = widen(stamp_.strip);
  std::vector<Rgb8> pixels(static_cast<std::size_t>(strip.x1 - strip.x0), kDark);
  for (std::size_t x = 0; x < pixels.size(); ++x) {
    const std::size_t bit = x / stamp_.cellWidth;
    pixels[x] = bit < stamp_.bits && ((frameId >> bit) & 1U) != 0 ? kBright : kDark;
  }
  for (std::int64_t y = strip.y0; y < strip.y1; ++y) {
    pack({strip.x0, y, strip.x1, y + 1}, ToneTables::identity(), pixels, out);
  }
  if (stamp_.digits == 0) {
    return;
  }
  std::string text(stamp_.digits, '0');
  std::uint64_t rest = frameId;
  for (std::size_t i = text.size(); i-- > 0; rest /= 10) {
    text[i] = static_cast<char>('0' + rest % 10);
  }
  const Rect box = widen(stamp_.box);
  pixels.assign(static_cast<std::size_t>(box.x1 - box.x0), kBox);
  for (std::int64_t y = box.y0; y < box.y1; ++y) {
    const auto row = static_cast<std::uint32_t>(y - box.y0) / stamp_.dot;
    for (std::size_t x = 0; x < pixels.size(); ++x) {
      const auto column = static_cast<std::uint32_t>(x) / stamp_.dot;
      pixels[x] = row > 0 && column > 0 && textDot(text, column - 1, row - 1) ? kBright : kBox;
    }
    pack({box.x0, y, box.x1, y + 1}, ToneTables::identity(), pixels, out);
  }
}

void Picture::pack(const Rect& run, const ToneTables& tones, std::span<const Rgb8> pixels,
                   std::span<std::byte> out) const {
  const PixelFormat& format = *settings_.format;
  const auto line = static_cast<std::size_t>(run.y0);
  const std::size_t start = line * lineSize_ + static_cast<std::size_t>(run.x0) * format.bits / 8;
  packPixels(format, tones, pixels, line, out.subspan(start, lineBytes(format, pixels.size())));
}

// Cuts an area to the image and lets it begin and end where a pixel begins a byte in every format.
Rect Picture::widen(Rect area) const {
  area.x0 = std::clamp<std::int64_t>(area.x0, 0, settings_.width) & ~std::int64_t{3};
  area.x1 = std::min<std::int64_t>((std::max(area.x1, area.x0) + 3) & ~std::int64_t{3}, settings_.width);
  area.y0 = std::clamp<std::int64_t>(area.y0, 0, settings_.height);
  area.y1 = std::clamp<std::int64_t>(area.y1, area.y0, settings_.height);
  return area;
}

Rect Picture::fromSensor(const Scene& scene, const Rect& area) const {
  const auto axis = [](std::int64_t& low, std::int64_t& high, std::int64_t step, std::int64_t full, std::int64_t offset,
                       bool reverse) {
    low = low / step;
    high = (high + step - 1) / step;
    if (reverse) {
      const std::int64_t mirroredLow = full - high;
      high = full - low;
      low = mirroredLow;
    }
    low -= offset;
    high -= offset;
  };
  Rect result = area;
  const std::int64_t stepX = std::int64_t{settings_.binningX} * settings_.decimationX;
  const std::int64_t stepY = std::int64_t{settings_.binningY} * settings_.decimationY;
  axis(result.x0, result.x1, stepX, scene.width() / stepX, settings_.offsetX, settings_.reverseX);
  axis(result.y0, result.y1, stepY, scene.height() / stepY, settings_.offsetY, settings_.reverseY);
  return result;
}

Rgb8 Picture::scenePixel(const Scene& scene, std::uint32_t x, std::uint32_t y, const Rect& ball) const {
  const PictureSettings& s = settings_;
  const std::uint32_t stepX = s.binningX * s.decimationX;
  const std::uint32_t stepY = s.binningY * s.decimationY;
  const auto place = [](std::uint32_t position, std::uint32_t full, bool reverse) {
    const std::uint32_t inside = std::min(position, full - 1);
    return reverse ? full - 1 - inside : inside;
  };
  const std::uint32_t left = place(s.offsetX + x, scene.width() / stepX, s.reverseX) * stepX;
  const std::uint32_t top = place(s.offsetY + y, scene.height() / stepY, s.reverseY) * stepY;
  if (s.binningX == 1 && s.binningY == 1) {
    return scene.pixel(left, top, ball);
  }
  std::uint32_t r = 0;
  std::uint32_t g = 0;
  std::uint32_t b = 0;
  for (std::uint32_t v = 0; v < s.binningY; ++v) {
    for (std::uint32_t u = 0; u < s.binningX; ++u) {
      const Rgb8 pixel = scene.pixel(left + u, top + v, ball);
      r += pixel.r;
      g += pixel.g;
      b += pixel.b;
    }
  }
  const std::uint32_t divisor = s.binningSums ? 1 : s.binningX * s.binningY;
  const auto component = [&](std::uint32_t sum) { return static_cast<std::uint8_t>(std::min(255U, sum / divisor)); };
  return {component(r), component(g), component(b)};
}

}  // namespace vcam
