// Drawing of the test chart.
#include "scene.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "font.h"

namespace vcam {
namespace {

constexpr Rgb8 grey(unsigned value) {
  const auto v = static_cast<std::uint8_t>(std::min(value, 255U));
  return {v, v, v};
}

constexpr std::array<Rgb8, 8> kBars{{{235, 235, 235},
                                     {235, 220, 20},
                                     {20, 210, 220},
                                     {30, 200, 60},
                                     {210, 40, 200},
                                     {215, 40, 40},
                                     {40, 60, 215},
                                     {16, 16, 16}}};
constexpr Rgb8 kLine{96, 112, 140};
constexpr Rgb8 kPaper{232, 232, 228};
constexpr Rgb8 kInk{20, 20, 24};

Rgb8 mix(Rgb8 a, Rgb8 b, double share) {
  const auto one = [&](std::uint8_t from, std::uint8_t to) {
    return static_cast<std::uint8_t>(std::lround(from + (to - from) * share));
  };
  return {one(a.r, b.r), one(a.g, b.g), one(a.b, b.b)};
}

// The chart in units of the sensor's height, so that every sensor shows the same picture.
class ChartPainter {
 public:
  ChartPainter(std::uint32_t width, std::uint32_t height)
      : height_(height),
        aspect_(static_cast<double>(width) / height),
        hair_(std::max(1.0, height / 400.0) / height) {}

  Rgb8 at(std::uint32_t x, std::uint32_t y) const {
    const double u = (x + 0.5) / height_;
    const double v = (y + 0.5) / height_;
    if (u < 2 * hair_ || v < 2 * hair_ || u > aspect_ - 2 * hair_ || v > 1 - 2 * hair_) {
      return kPaper;
    }
    const double across = u / aspect_;
    if (v >= 0.18 && v < 0.40 && across >= 0.05 && across < 0.95) {
      return band((across - 0.05) / 0.90, v);
    }
    return figures(u, v);
  }

 private:
  static Rgb8 band(double across, double v) {
    if (v < 0.30) {
      return kBars[static_cast<std::size_t>(across * kBars.size())];
    }
    if (v < 0.35) {
      return grey(static_cast<unsigned>(across * 256));
    }
    return grey(static_cast<unsigned>(across * 16) * 17);
  }

  Rgb8 figures(double u, double v) const {
    const double radius = 0.20;
    const double middle = 0.69;
    const double dy = v - middle;
    const double star = u - aspect_ * 0.22;
    const double rings = u - aspect_ * 0.78;
    if (const double r = std::hypot(star, dy); r < radius) {
      const double angle = std::atan2(dy, star);
      return static_cast<int>(std::floor((angle + std::numbers::pi) / std::numbers::pi * 18)) % 2 == 0 ? kPaper : kInk;
    }
    if (const double r = std::hypot(rings, dy); r < radius) {
      return grey(static_cast<unsigned>(127.5 + 110 * std::cos(r * r / (radius * radius) * 60)));
    }
    if (const double du = std::abs(u - aspect_ * 0.5); du < radius * 0.75 && std::abs(dy) < radius * 0.75) {
      return patches(du < radius * 0.72 && std::abs(dy) < radius * 0.72, u - aspect_ * 0.5 + radius * 0.75,
                     dy + radius * 0.75, radius * 1.5);
    }
    const Rgb8 sky = mix({34, 48, 82}, {10, 14, 26}, v);
    const double cell = 1.0 / 12;
    return std::fmod(u, cell) < hair_ || std::fmod(v, cell) < hair_ ? kLine : sky;
  }

  // A checker board of warm and cold patches inside a frame.
  static Rgb8 patches(bool inside, double x, double y, double side) {
    if (!inside) {
      return kPaper;
    }
    const auto column = static_cast<unsigned>(x / side * 6);
    const auto row = static_cast<unsigned>(y / side * 6);
    const Rgb8 warm = mix({250, 200, 90}, {190, 50, 40}, row / 5.0);
    const Rgb8 cold = mix({60, 170, 190}, {40, 50, 130}, column / 5.0);
    return (column + row) % 2 == 0 ? warm : cold;
  }

  double height_;
  double aspect_;
  double hair_;
};

// Goes from 0 to range and back, one step a frame.
std::int64_t bounce(std::uint64_t position, std::uint64_t range) {
  if (range == 0) {
    return 0;
  }
  const std::uint64_t phase = position % (2 * range);
  return static_cast<std::int64_t>(phase < range ? phase : 2 * range - phase);
}

}  // namespace

Scene Scene::chart(std::uint32_t width, std::uint32_t height, bool colour, const std::string& title) {
  Scene scene(width, height);
  scene.colour_ = colour;
  scene.ballRadius_ = std::max<std::uint32_t>(4, height / 14);
  const ChartPainter painter(width, height);
  for (std::uint32_t y = 0; y < height; ++y) {
    for (std::uint32_t x = 0; x < width; ++x) {
      scene.pixels_[std::size_t{y} * width + x] = painter.at(x, y);
    }
  }
  const std::uint32_t dot = std::max<std::uint32_t>(1, height / 180);
  const auto textWidth = static_cast<std::uint32_t>(title.size()) * kGlyphAdvance * dot;
  const std::uint32_t left = textWidth < width ? (width - textWidth) / 2 : 0;
  const std::uint32_t top = height - height / 14;
  for (std::uint32_t y = top; y < std::min(height, top + kGlyphHeight * dot); ++y) {
    for (std::uint32_t x = left; x < std::min(width, left + textWidth); ++x) {
      if (textDot(title, (x - left) / dot, (y - top) / dot)) {
        scene.pixels_[std::size_t{y} * width + x] = kPaper;
      }
    }
  }
  if (!colour) {
    for (Rgb8& pixel : scene.pixels_) {
      pixel = grey(lumaOf(pixel));
    }
  }
  return scene;
}

Scene Scene::picture(std::uint32_t width, std::uint32_t height, const std::vector<Rgb8>& pixels,
                     std::uint32_t pictureWidth, std::uint32_t pictureHeight) {
  Scene scene(width, height);
  // The largest centred cut with the sensor's aspect ratio.
  const double scale = std::min(static_cast<double>(pictureWidth) / width, static_cast<double>(pictureHeight) / height);
  const double left = (pictureWidth - width * scale) / 2;
  const double top = (pictureHeight - height * scale) / 2;
  for (std::uint32_t y = 0; y < height; ++y) {
    const auto from = std::min(static_cast<std::uint32_t>(top + y * scale), pictureHeight - 1);
    for (std::uint32_t x = 0; x < width; ++x) {
      const auto column = std::min(static_cast<std::uint32_t>(left + x * scale), pictureWidth - 1);
      scene.pixels_[std::size_t{y} * width + x] = pixels[std::size_t{from} * pictureWidth + column];
    }
  }
  return scene;
}

Rect Scene::ballArea(std::uint64_t frameId) const {
  if (ballRadius_ == 0) {
    return {};
  }
  const std::uint64_t size = 2 * std::uint64_t{ballRadius_};
  const std::uint64_t speedX = std::max(1U, width_ / 120);
  const std::uint64_t speedY = std::max(1U, height_ / 150);
  const std::int64_t x = bounce(frameId * speedX, width_ > size ? width_ - size : 0);
  const std::int64_t y = bounce(frameId * speedY, height_ > size ? height_ - size : 0);
  return {x, y, x + static_cast<std::int64_t>(size), y + static_cast<std::int64_t>(size)};
}

Rgb8 Scene::pixel(std::uint32_t x, std::uint32_t y, const Rect& ball) const {
  if (ball.contains(x, y)) {
    const std::int64_t radius = ballRadius_;
    const std::int64_t dx = x - ball.x0 - radius;
    const std::int64_t dy = y - ball.y0 - radius;
    if (dx * dx + dy * dy < radius * radius) {
      // Lit from the upper left.
      const std::int64_t lx = dx + radius / 3;
      const std::int64_t ly = dy + radius / 3;
      const std::int64_t dark = std::min<std::int64_t>(200, (lx * lx + ly * ly) * 110 / (radius * radius));
      const Rgb8 shade{static_cast<std::uint8_t>(255 - dark / 2), static_cast<std::uint8_t>(215 - dark),
                       static_cast<std::uint8_t>(std::max<std::int64_t>(0, 120 - dark))};
      return colour_ ? shade : grey(lumaOf(shade));
    }
  }
  return background(x, y);
}

}  // namespace vcam
