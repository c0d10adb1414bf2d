// The check of images against the moving ramp of a camera's test pattern.
#include "pattern_check.h"

#include <cstring>

#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

constexpr const char* kFeature = "TestPattern";
constexpr const char* kPattern = "GreyHorizontalRampMoving";

}  // namespace

TestPattern::TestPattern(const ovi::Device& device) : device_(device) {
  char text[512] = {};
  char format[512] = {};
  if (oviGetFeature(device.handle(), kFeature, text) != OVI_SUCCESS)
    throw ToolError("the camera has no test pattern: there is no feature \"TestPattern\"",
                    "stream without --check-pattern");
  if (oviGetFeature(device.handle(), "PixelFormat", format) == OVI_SUCCESS) {
    const std::string name = format;
    if (name.find('8') == std::string::npos)
      throw ToolError("the test pattern can be checked with 8 bits a sample only, and PixelFormat = " + name,
                      "ovi set PixelFormat=Mono8, or another one with 8 bits");
  }
  if (const oviErr code = oviSetFeature(device.handle(), kFeature, kPattern); code != OVI_SUCCESS)
    throw ToolError(
        "the camera cannot show the test pattern " + std::string(kPattern) + ": " + ovi::makeErrorCode(code).message(),
        "ovi features TestPattern");
  before_ = text;
}

TestPattern::~TestPattern() {
  oviSetFeature(device_.handle(), kFeature, before_.c_str());
}

bool PatternCheck::matches(const ovi::Image& image) {
  const std::size_t bytesPerPixel = std::max<std::size_t>(1, oviBitsPerPixelFromFormat(image.pixelFormat()) / 8);
  const std::size_t rowSize = image.width() * bytesPerPixel;
  if (image.data() == nullptr || rowSize == 0 || image.size() / rowSize < image.height())
    return false;
  row_.resize(rowSize);
  const std::uint8_t start = image.data()[0];
  for (std::size_t x = 0; x < image.width(); ++x)
    std::memset(&row_[x * bytesPerPixel], static_cast<std::uint8_t>(start + x), bytesPerPixel);
  for (std::size_t y = 0; y < image.height(); ++y)
    if (std::memcmp(image.data() + y * rowSize, row_.data(), rowSize) != 0)
      return false;
  const auto offset = static_cast<std::uint8_t>(start - image.frameID());
  const bool follows = !offset_ || *offset_ == offset;
  offset_ = offset;
  return follows;
}

}  // namespace tool
