// Reading PNG files with libpng's simplified interface, from memory so that any path works.
#include "image_folder.h"

#include <png.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <system_error>

namespace vcam {
namespace {

constexpr std::uint32_t kMaxSide = 32768;

struct DecodedPng {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::vector<Rgb8> pixels;
  std::string error;
};

DecodedPng decodePng(const std::vector<char>& bytes) {
  DecodedPng result;
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) == 0) {
    result.error = image.message;
    return result;
  }
  if (image.width == 0 || image.height == 0 || image.width > kMaxSide || image.height > kMaxSide) {
    png_image_free(&image);
    result.error = "its size is not supported";
    return result;
  }
  image.format = PNG_FORMAT_RGB;
  static_assert(sizeof(Rgb8) == 3);
  result.width = image.width;
  result.height = image.height;
  result.pixels.resize(std::size_t{image.width} * image.height);
  const png_color black{0, 0, 0};
  if (png_image_finish_read(&image, &black, result.pixels.data(), 0, nullptr) == 0) {
    result.error = image.message;
  }
  return result;
}

bool isPng(const std::filesystem::path& path) {
  std::string extension = path.extension().string();
  std::ranges::transform(extension, extension.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension == ".png";
}

}  // namespace

std::vector<std::shared_ptr<const Scene>> readImageFolder(const std::filesystem::path& folder, std::uint32_t width,
                                                          std::uint32_t height,
                                                          const std::function<void(const std::string&)>& report) {
  const auto tell = [&](const std::string& text) {
    if (report) {
      report(text);
    }
  };
  std::vector<std::filesystem::path> files;
  std::error_code error;
  for (std::filesystem::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
    if (isPng(it->path())) {
      files.push_back(it->path());
    }
  }
  if (error) {
    tell("The image folder " + folder.string() + " cannot be read: " + error.message());
  }
  std::ranges::sort(files);
  std::vector<std::shared_ptr<const Scene>> scenes;
  for (const auto& path : files) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const DecodedPng png = decodePng(bytes);
    if (png.error.empty()) {
      scenes.push_back(std::make_shared<const Scene>(Scene::picture(width, height, png.pixels, png.width, png.height)));
    } else {
      tell("The image " + path.string() + " is left out: " + png.error);
    }
  }
  return scenes;
}

}  // namespace vcam
