// One picture of a camera under given settings: a pure function of the settings and the frame ID.
//
// How a frame is proved from its ID. The chart and the folder pictures carry a strip along the top edge that spells the
// ID in binary, lowest bit first from the left, and below it a box that shows it in digits; FrameStamp says where and
// how large. Both are burned in after cutting, binning and mirroring, so they are the same in every such setting. A
// cell is bright (the largest value) for 1 and 0 for 0 in every format, whatever exposure and gain are. The
// test patterns are formulas of column, line and frame ID, written at Pattern.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string_view>
#include <vector>

#include "pixel_format.h"
#include "scene.h"

namespace vcam {

// What each shows at column x and line y of frame n, as an 8-bit grey value (stretched to the depth of the format).
enum class Pattern : std::uint8_t {
  Chart,                     // the scene, not a pattern
  Black,                     // 0
  White,                     // 255
  GreyHorizontalRamp,        // x mod 256
  GreyVerticalRamp,          // y mod 256
  GreyHorizontalRampMoving,  // (x + n) mod 256; in formats of 8 bits every byte of the pixel, alpha included
  GreyVerticalRampMoving,    // (y + n) mod 256
  HorizontalLineMoving,      // 255 where y = n mod height, else 0
  VerticalLineMoving,        // 255 where x = n mod width, else 0
  GreyDiagonalRampMoving,    // (x + y + n) mod 256
  ColorBar,                  // eight vertical bars: white, yellow, cyan, green, magenta, red, blue, black
  FrameCounter,              // n mod 256
  ImageFolder,               // picture n mod count of a folder
};

struct PictureSettings {
  const PixelFormat* format = nullptr;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  // The offsets count in pixels after binning and decimation, in the mirrored picture when it is mirrored.
  std::uint32_t offsetX = 0;
  std::uint32_t offsetY = 0;
  std::uint32_t binningX = 1;
  std::uint32_t binningY = 1;
  bool binningSums = false;  // sums saturate; otherwise the mean
  std::uint32_t decimationX = 1;
  std::uint32_t decimationY = 1;
  bool reverseX = false;
  bool reverseY = false;
  Pattern pattern = Pattern::Chart;
  ToneTables tones = ToneTables::identity();
  std::shared_ptr<const Scene> chart;
  std::vector<std::shared_ptr<const Scene>> folder;  // for Pattern::ImageFolder; the chart stands in when it is empty
};

// Where the frame ID is written into an image of a given size.
struct FrameStamp {
  FrameStamp(std::uint32_t width, std::uint32_t height);

  std::uint32_t bits;        // cells of the strip, at most 32
  std::uint32_t cellWidth;   // pixels
  std::uint32_t cellHeight;  // pixels
  std::uint32_t digits = 0;  // decimal digits shown, the lowest ones; 0 when the image is too small
  std::uint32_t dot;         // pixels of a dot of the font
  Rect strip;
  Rect box;  // around the digits
};

class Picture {
 public:
  explicit Picture(PictureSettings settings);

  const PictureSettings& settings() const { return settings_; }
  std::size_t size() const { return lineSize_ * settings_.height; }

  // Draws a frame; out holds at least size() bytes. Any thread.
  void render(std::uint64_t frameId, std::span<std::byte> out) const;
  // A picture of the chart alone, without patterns: what render() shows at a pixel before tones and packing.
  Rgb8 pixelAt(std::uint32_t x, std::uint32_t y, std::uint64_t frameId) const;

 private:
  void renderScene(const Scene& scene, std::uint64_t frameId, std::span<std::byte> out) const;
  void renderPattern(std::uint64_t frameId, std::span<std::byte> out) const;
  void drawScene(const Scene& scene, const Rect& area, const Rect& ball, std::span<std::byte> out) const;
  void drawStamp(std::uint64_t frameId, std::span<std::byte> out) const;
  void pack(const Rect& run, const ToneTables& tones, std::span<const Rgb8> pixels, std::span<std::byte> out) const;
  Rect widen(Rect area) const;
  Rect fromSensor(const Scene& scene, const Rect& area) const;
  Rgb8 scenePixel(const Scene& scene, std::uint32_t x, std::uint32_t y, const Rect& ball) const;

  PictureSettings settings_;
  std::size_t lineSize_;
  FrameStamp stamp_;
  mutable std::once_flag backgroundOnce_;
  mutable std::vector<std::byte> background_;  // the chart without its moving parts, packed
};

}  // namespace vcam
