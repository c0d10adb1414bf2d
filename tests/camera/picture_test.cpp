// Pixel packing, test patterns, the chart with its frame ID, and pictures of a folder.
#include "picture/picture.h"

#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

#include "picture/image_folder.h"

namespace vcam {
namespace {

std::vector<std::byte> bytes(std::initializer_list<int> values) {
  std::vector<std::byte> result;
  std::transform(values.begin(), values.end(), std::back_inserter(result),
                 [](int v) { return static_cast<std::byte>(v); });
  return result;
}

TEST(PixelFormats, PackPixelsAsTheFormatLaysThemOut) {
  const std::vector<Rgb8> colours{{0x10, 0x20, 0x30}, {0xFF, 0x00, 0x80}};
  const std::vector<Rgb8> greys{{0x12, 0x12, 0x12}, {0xFF, 0xFF, 0xFF}, {0, 0, 0}, {0x80, 0x80, 0x80}};
  struct Case {
    const char* format;
    const std::vector<Rgb8>& pixels;
    std::size_t line;
    std::vector<std::byte> packed;
  };
  // An 8-bit component v is v * 257 in 16 bits; narrower depths are its upper bits.
  const std::vector<Case> cases{
      {"Mono8", greys, 0, bytes({0x12, 0xFF, 0x00, 0x80})},
      {"Mono10", greys, 0, bytes({0x48, 0x00, 0xFF, 0x03, 0x00, 0x00, 0x02, 0x02})},
      {"Mono12", greys, 0, bytes({0x21, 0x01, 0xFF, 0x0F, 0x00, 0x00, 0x08, 0x08})},
      {"Mono16", greys, 0, bytes({0x12, 0x12, 0xFF, 0xFF, 0x00, 0x00, 0x80, 0x80})},
      // 0x048, 0x3FF, 0x000, 0x202 in 10 bits each, the lowest bits first.
      {"Mono10p", greys, 0, bytes({0x48, 0xFC, 0x0F, 0x80, 0x80})},
      // 0x121, 0xFFF, 0x000, 0x808 in 12 bits each.
      {"Mono12p", greys, 0, bytes({0x21, 0xF1, 0xFF, 0x00, 0x80, 0x80})},
      {"RGB8", colours, 0, bytes({0x10, 0x20, 0x30, 0xFF, 0x00, 0x80})},
      {"BGR8", colours, 0, bytes({0x30, 0x20, 0x10, 0x80, 0x00, 0xFF})},
      {"RGBa8", colours, 0, bytes({0x10, 0x20, 0x30, 0xFF, 0xFF, 0x00, 0x80, 0xFF})},
      {"BGRa8", colours, 0, bytes({0x30, 0x20, 0x10, 0xFF, 0x80, 0x00, 0xFF, 0xFF})},
      {"RGB10", colours, 0, bytes({0x40, 0x00, 0x80, 0x00, 0xC0, 0x00, 0xFF, 0x03, 0x00, 0x00, 0x02, 0x02})},
      {"RGB12", colours, 0, bytes({0x01, 0x01, 0x02, 0x02, 0x03, 0x03, 0xFF, 0x0F, 0x00, 0x00, 0x08, 0x08})},
      {"BGR12", colours, 0, bytes({0x03, 0x03, 0x02, 0x02, 0x01, 0x01, 0x08, 0x08, 0x00, 0x00, 0xFF, 0x0F})},
      // 0x040 | 0x080 << 10 | 0x0C0 << 20 and 0x3FF | 0x202 << 20.
      {"RGB10p32", colours, 0, bytes({0x40, 0x00, 0x02, 0x0C, 0xFF, 0x03, 0x20, 0x20})},
      {"BayerRG8", colours, 0, bytes({0x10, 0x00})},
      {"BayerRG8", colours, 1, bytes({0x20, 0x80})},
      {"BayerGR8", colours, 0, bytes({0x20, 0xFF})},
      {"BayerGR8", colours, 1, bytes({0x30, 0x00})},
      {"BayerGB8", colours, 0, bytes({0x20, 0x80})},
      {"BayerGB8", colours, 1, bytes({0x10, 0x00})},
      {"BayerBG8", colours, 0, bytes({0x30, 0x00})},
      {"BayerBG8", colours, 1, bytes({0x20, 0xFF})},
  };
  for (const Case& c : cases) {
    const PixelFormat* const format = findPixelFormat(std::string_view(c.format));
    ASSERT_NE(format, nullptr) << c.format;
    std::vector<std::byte> out(lineBytes(*format, c.pixels.size()));
    packPixels(*format, ToneTables::identity(), c.pixels, c.line, out);
    EXPECT_EQ(out, c.packed) << c.format << " line " << c.line;
  }
}

PictureSettings settingsOf(const std::string& format, std::uint32_t width, std::uint32_t height) {
  PictureSettings settings;
  settings.format = findPixelFormat(std::string_view(format));
  settings.width = width;
  settings.height = height;
  settings.chart = std::make_shared<const Scene>(Scene::chart(320, 240, true, "TEST"));
  return settings;
}

std::vector<std::byte> render(const Picture& picture, std::uint64_t frameId) {
  std::vector<std::byte> out(picture.size());
  picture.render(frameId, out);
  return out;
}

TEST(Patterns, EveryByteOfAColumnIsColumnPlusCounter) {
  for (const std::string format : {"Mono8", "RGB8", "BGR8", "RGBa8", "BGRa8"}) {
    PictureSettings settings = settingsOf(format, 300, 6);
    settings.pattern = Pattern::GreyHorizontalRampMoving;
    const Picture picture(settings);
    const std::size_t channels = settings.format->bits / 8;
    for (const std::uint64_t frame : {0U, 1U, 255U, 256U}) {
      const std::vector<std::byte> out = render(picture, frame);
      for (std::size_t i = 0; i < out.size(); ++i) {
        const std::size_t column = i / channels % settings.width;
        ASSERT_EQ(std::to_integer<unsigned>(out[i]), (column + frame) % 256)
            << format << " frame " << frame << " byte " << i;
      }
    }
  }
}

TEST(Patterns, OthersFollowTheirFormulas) {
  struct Case {
    Pattern pattern;
    unsigned (*at)(unsigned x, unsigned y, unsigned n);
  };
  for (const Case& c :
       {Case{Pattern::Black, [](unsigned, unsigned, unsigned) { return 0U; }},
        Case{Pattern::White, [](unsigned, unsigned, unsigned) { return 255U; }},
        Case{Pattern::GreyHorizontalRamp, [](unsigned x, unsigned, unsigned) { return x % 256; }},
        Case{Pattern::GreyVerticalRampMoving, [](unsigned, unsigned y, unsigned n) { return (y + n) % 256; }},
        Case{Pattern::GreyDiagonalRampMoving, [](unsigned x, unsigned y, unsigned n) { return (x + y + n) % 256; }},
        Case{Pattern::HorizontalLineMoving, [](unsigned, unsigned y, unsigned n) { return y == n % 40 ? 255U : 0U; }},
        Case{Pattern::VerticalLineMoving, [](unsigned x, unsigned, unsigned n) { return x == n % 64 ? 255U : 0U; }},
        Case{Pattern::FrameCounter, [](unsigned, unsigned, unsigned n) { return n % 256; }}}) {
    PictureSettings settings = settingsOf("Mono8", 64, 40);
    settings.pattern = c.pattern;
    const std::vector<std::byte> out = render(Picture(settings), 77);
    for (unsigned i = 0; i < out.size(); ++i) {
      ASSERT_EQ(std::to_integer<unsigned>(out[i]), c.at(i % 64, i / 64, 77))
          << static_cast<int>(c.pattern) << " at " << i;
    }
  }
}

// The frame ID out of the strip of a picture in a format with whole bytes.
std::uint64_t readStrip(const std::vector<std::byte>& image, const PictureSettings& settings) {
  const FrameStamp stamp(settings.width, settings.height);
  const std::size_t pixelBytes = settings.format->bits / 8;
  std::uint64_t id = 0;
  for (std::uint32_t bit = 0; bit < stamp.bits; ++bit) {
    const std::size_t pixel = bit * stamp.cellWidth + stamp.cellWidth / 2;
    const std::size_t at = pixel * pixelBytes + (settings.format->depth > 8 ? 1 : 0);
    if (image[at] != std::byte{0}) {
      id |= std::uint64_t{1} << bit;
    }
  }
  return id;
}

TEST(Chart, SpellsTheFrameIdInEveryFormatSizeAndSetting) {
  for (const std::string format : {"Mono8", "Mono12", "RGB8", "BGRa8", "RGB10", "BayerRG8"}) {
    for (const bool dark : {false, true}) {
      PictureSettings settings = settingsOf(format, 160, 100);
      settings.offsetX = 40;
      settings.reverseX = true;
      settings.decimationX = 1;
      if (dark) {
        settings.tones = ToneTables{};
      }
      const Picture picture(settings);
      for (const std::uint64_t id : {0ULL, 1ULL, 0xA5A5ULL, 0x89ABCDEFULL}) {
        EXPECT_EQ(readStrip(render(picture, id), settings), id) << format << (dark ? " dark" : "");
      }
    }
  }
  const PictureSettings tiny = settingsOf("Mono8", 16, 2);
  EXPECT_EQ(readStrip(render(Picture(tiny), 0xB), tiny), 0xBU);
}

// Copying the background and drawing what moves must give the same as drawing everything.
TEST(Chart, MovingPartsAreDrawnWhereTheyBelong) {
  struct Case {
    std::uint32_t width, height, offsetX, offsetY, binning, decimation;
    bool reverseX, reverseY;
  };
  for (const Case& c : {Case{320, 240, 0, 0, 1, 1, false, false}, Case{100, 80, 60, 40, 1, 1, false, false},
                        Case{100, 80, 36, 42, 1, 1, true, true}, Case{160, 120, 0, 0, 2, 1, false, true},
                        Case{60, 60, 20, 20, 1, 3, true, false}, Case{80, 60, 0, 0, 2, 2, true, true}}) {
    PictureSettings settings = settingsOf("RGB8", c.width, c.height);
    settings.offsetX = c.offsetX;
    settings.offsetY = c.offsetY;
    settings.binningX = settings.binningY = c.binning;
    settings.decimationX = settings.decimationY = c.decimation;
    settings.reverseX = c.reverseX;
    settings.reverseY = c.reverseY;
    const Picture picture(settings);
    const FrameStamp stamp(c.width, c.height);
    bool moved = false;
    for (std::uint64_t frame = 0; frame < 400; frame += 13) {
      const std::vector<std::byte> out = render(picture, frame);
      for (std::uint32_t y = 0; y < c.height; ++y) {
        for (std::uint32_t x = 0; x < c.width; ++x) {
          // Stamps are widened to whole groups of four pixels.
          if (stamp.strip.contains(x & ~3U, y) || stamp.box.contains(x & ~3U, y)) {
            continue;
          }
          const std::size_t at = (std::size_t{y} * c.width + x) * 3;
          const Rgb8 drawn{std::to_integer<std::uint8_t>(out[at]), std::to_integer<std::uint8_t>(out[at + 1]),
                           std::to_integer<std::uint8_t>(out[at + 2])};
          ASSERT_EQ(drawn, picture.pixelAt(x, y, frame)) << x << "," << y << " frame " << frame << " width " << c.width;
          moved = moved || !(picture.pixelAt(x, y, frame) == picture.pixelAt(x, y, 0));
        }
      }
    }
    EXPECT_TRUE(moved);
  }
}

TEST(ImageFolder, ReadsItsPicturesInOrderAndReportsBrokenOnes) {
  const std::filesystem::path folder = std::filesystem::absolute("pictures");
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  const auto save = [&](const char* name, unsigned char level) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = 8;
    image.height = 4;
    image.format = PNG_FORMAT_RGB;
    const std::vector<unsigned char> pixels(8 * 4 * 3, level);
    ASSERT_NE(png_image_write_to_file(&image, (folder / name).string().c_str(), 0, pixels.data(), 0, nullptr), 0);
  };
  save("b.png", 200);
  save("a.PNG", 100);
  std::ofstream(folder / "broken.png") << "no picture";
  std::ofstream(folder / "note.txt") << "no picture either";
  std::vector<std::string> reports;
  const auto scenes = readImageFolder(folder, 32, 32, [&](const std::string& text) { reports.push_back(text); });
  ASSERT_EQ(scenes.size(), 2U);
  ASSERT_EQ(reports.size(), 1U);
  EXPECT_NE(reports[0].find("broken.png"), std::string::npos);

  PictureSettings settings = settingsOf("Mono8", 32, 32);
  settings.pattern = Pattern::ImageFolder;
  settings.folder = scenes;
  const Picture picture(settings);
  for (const auto& [frame, level] : {std::pair{0, 100U}, std::pair{1, 200U}, std::pair{4, 100U}}) {
    EXPECT_EQ(std::to_integer<unsigned>(render(picture, static_cast<std::uint64_t>(frame)).back()), level);
  }
}

}  // namespace
}  // namespace vcam
