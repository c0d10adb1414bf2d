// Where a benchmark takes its images from: the library, or the producer without it.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "module_view.h"

namespace tool {

/// A running acquisition; it ends with the object.
class ImageSource {
 public:
  enum class Got { kNothing, kImage, kIncomplete };

  ImageSource() = default;
  ImageSource(const ImageSource&) = delete;
  ImageSource& operator=(const ImageSource&) = delete;
  virtual ~ImageSource() = default;

  /// Waits for an image, which is to be given back before the next is taken. Throws ToolError.
  virtual Got take(std::chrono::milliseconds timeout) = 0;
  virtual void giveBack() = 0;
  virtual const std::uint8_t* data() const = 0;
  virtual std::size_t size() const = 0;
};

std::unique_ptr<ImageSource> openSource(const ModuleView& view, std::uint32_t buffers);

/// The producer in this file, which this process has not loaded yet. It is asked what the library asks about an image.
/// @param camera       its ID
/// @param assignments  FEATURE=VALUE, set on the camera, as on one that the library opens
std::unique_ptr<ImageSource> openProducerSource(const std::string& file, const std::string& camera,
                                                const std::vector<std::string>& assignments, std::uint32_t buffers);

}  // namespace tool
