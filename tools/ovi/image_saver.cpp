// Saving images of a stream under numbered names.
#include "image_saver.h"

#include <span>

#include "picture.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

SaveFormat saveFormatFromText(const std::string& text) {
  if (equalsIgnoringCase(text, "png"))
    return SaveFormat::kPng;
  if (equalsIgnoringCase(text, "raw"))
    return SaveFormat::kRaw;
  if (equalsIgnoringCase(text, "none"))
    return SaveFormat::kNone;
  throw ToolError("there is no image format \"" + text + "\"", "--save png, raw or none; --to names the folder",
                  ExitCode::kUsage);
}

void saveImage(const ovi::Image& image, const std::filesystem::path& file, SaveFormat format) {
  const std::span<const std::uint8_t> data(image.data(), image.size());
  if (format == SaveFormat::kRaw)
    writeRaw(data, file);
  else
    writePng(decodePicture(data, image.width(), image.height(), image.pixelFormat()), file);
}

std::string imageFileName(const ovi::Image& image, SaveFormat format) {
  std::string number = std::to_string(image.frameID());
  number.insert(0, number.size() < 6 ? 6 - number.size() : 0, '0');
  return "frame-" + number + "-" + std::to_string(image.width()) + "x" + std::to_string(image.height()) + "-" +
         pixelFormatName(image.pixelFormat()) + (format == SaveFormat::kRaw ? ".raw" : ".png");
}

}  // namespace tool
