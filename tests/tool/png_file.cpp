// A PNG file's pixels.
#include "png_file.h"

#include <gtest/gtest.h>
#include <png.h>

#include <cstdio>
#include <memory>

namespace tool_test {

PngFile readPng(const std::filesystem::path& file) {
  PngFile picture;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(file.string().c_str(), "rb"), &std::fclose);
  if (!stream) {
    ADD_FAILURE() << "cannot open " << file;
    return picture;
  }
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, stream.get());
  png_read_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
  picture.width = png_get_image_width(png, info);
  picture.height = png_get_image_height(png, info);
  picture.channels = png_get_channels(png, info);
  picture.bits = png_get_bit_depth(png, info);
  const png_bytepp rows = png_get_rows(png, info);
  for (std::uint32_t y = 0; y < picture.height; ++y)
    for (std::uint32_t i = 0; i < picture.width * picture.channels; ++i)
      picture.samples.push_back(
          picture.bits == 16 ? static_cast<std::uint16_t>(rows[y][2 * i] << 8 | rows[y][2 * i + 1]) : rows[y][i]);
  png_destroy_read_struct(&png, &info, nullptr);
  return picture;
}

}  // namespace tool_test
