// Writing pictures and raw images to files.
#include <png.h>

#include <bit>
#include <cerrno>
#include <fstream>

#include "paths.h"
#include "picture.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

std::ofstream openForWriting(const std::filesystem::path& file) {
  errno = 0;
  std::ofstream stream(file, std::ios::binary | std::ios::trunc);
  if (!stream)
    throw ToolError("cannot write " + pathText(file) + ": " + systemReason(),
                    "another name, or a folder that exists and that you may write to");
  return stream;
}

void finish(std::ofstream& stream, const std::filesystem::path& file) {
  stream.flush();
  if (!stream)
    throw ToolError("cannot write all of " + pathText(file), "is the disk full?");
}

void writeToStream(png_structp png, png_bytep data, png_size_t size) {
  auto* stream = static_cast<std::ofstream*>(png_get_io_ptr(png));
  stream->write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

void flushStream(png_structp /*png*/) {}

// libpng reports errors by this function, which must not return; the exception passes its C frames, which hold nothing.
[[noreturn]] void throwPngError(png_structp /*png*/, png_const_charp message) {
  throw ToolError(std::string("libpng: ") + message);
}

void ignorePngWarning(png_structp /*png*/, png_const_charp /*message*/) {}

struct PngWriter {
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, throwPngError, ignorePngWarning);
  png_infop info = png == nullptr ? nullptr : png_create_info_struct(png);
  PngWriter() = default;
  PngWriter(const PngWriter&) = delete;
  PngWriter& operator=(const PngWriter&) = delete;
  ~PngWriter() { png_destroy_write_struct(&png, &info); }
};

}  // namespace

void writePng(const Picture& picture, const std::filesystem::path& file) {
  std::ofstream stream = openForWriting(file);
  PngWriter writer;
  if (writer.info == nullptr)
    throw ToolError("cannot write " + pathText(file) + ": out of memory");
  const int type = picture.channels == 1   ? PNG_COLOR_TYPE_GRAY
                   : picture.channels == 3 ? PNG_COLOR_TYPE_RGB
                                           : PNG_COLOR_TYPE_RGB_ALPHA;
  png_set_write_fn(writer.png, &stream, writeToStream, flushStream);
  png_set_IHDR(writer.png, writer.info, picture.width, picture.height, static_cast<int>(picture.bits), type,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_compression_level(writer.png, 3);
  png_write_info(writer.png, writer.info);
  if (picture.bits == 16 && std::endian::native == std::endian::little)
    png_set_swap(writer.png);
  const std::size_t pitch = static_cast<std::size_t>(picture.width) * picture.channels * (picture.bits / 8);
  for (std::uint32_t y = 0; y < picture.height; ++y)
    png_write_row(writer.png, picture.samples.data() + y * pitch);
  png_write_end(writer.png, writer.info);
  finish(stream, file);
}

void writeRaw(std::span<const std::uint8_t> data, const std::filesystem::path& file) {
  std::ofstream stream = openForWriting(file);
  stream.write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size()));
  finish(stream, file);
}

}  // namespace tool
