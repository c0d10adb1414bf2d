// What a camera looks at: a still picture the size of its sensor, and a ball that moves over it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pixel_format.h"

namespace vcam {

struct Rect {
  std::int64_t x0 = 0;
  std::int64_t y0 = 0;
  std::int64_t x1 = 0;  // one past the last column
  std::int64_t y1 = 0;  // one past the last line
  bool contains(std::int64_t x, std::int64_t y) const { return x >= x0 && x < x1 && y >= y0 && y < y1; }
};

class Scene {
 public:
  // A test chart with colour bars, grey ramp and steps, star, rings and a title; without colour all of it is grey.
  static Scene chart(std::uint32_t width, std::uint32_t height, bool colour, const std::string& title);
  // A picture, cut and scaled to fill the sensor.
  static Scene picture(std::uint32_t width, std::uint32_t height, const std::vector<Rgb8>& pixels,
                       std::uint32_t pictureWidth, std::uint32_t pictureHeight);

  std::uint32_t width() const { return width_; }
  std::uint32_t height() const { return height_; }
  Rgb8 background(std::uint32_t x, std::uint32_t y) const { return pixels_[std::size_t{y} * width_ + x]; }

  // The square in which the ball of a frame lies; empty when the scene has none.
  Rect ballArea(std::uint64_t frameId) const;
  // A pixel with the ball of a frame, whose area the caller has asked before.
  Rgb8 pixel(std::uint32_t x, std::uint32_t y, const Rect& ball) const;

 private:
  Scene(std::uint32_t width, std::uint32_t height)
      : width_(width),
        height_(height),
        pixels_(std::size_t{width} * height) {}

  std::uint32_t width_;
  std::uint32_t height_;
  std::uint32_t ballRadius_ = 0;
  bool colour_ = true;
  std::vector<Rgb8> pixels_;
};

}  // namespace vcam
