// Geometry, pixel format and test patterns.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "../picture/picture.h"
#include "camera_core.h"

namespace vcam {

class ImageFormat {
 public:
  explicit ImageFormat(CameraCore& core) : core_(core) {}

  void declare();
  // Everything of the picture but the tones.
  PictureSettings settings();
  std::uint32_t height() const { return static_cast<std::uint32_t>(height_->integer()); }
  std::uint32_t offsetX() const { return static_cast<std::uint32_t>(offsetX_->integer()); }
  std::uint32_t offsetY() const { return static_cast<std::uint32_t>(offsetY_->integer()); }
  std::size_t imageSize() const;
  // Parts beside the intensity image that are enabled.
  bool componentEnabled(std::size_t component) const { return component_ != nullptr && component_->on(component); }
  bool multiPart() const { return componentEnabled(1) || componentEnabled(2); }

 private:
  void declareGeometry();
  void declareFormat();
  void declareComponents();
  void shrinkToSensor();

  CameraCore& core_;
  Feature* width_ = nullptr;
  Feature* height_ = nullptr;
  Feature* offsetX_ = nullptr;
  Feature* offsetY_ = nullptr;
  Feature* widthMax_ = nullptr;
  Feature* heightMax_ = nullptr;
  Feature* binningX_ = nullptr;
  Feature* binningY_ = nullptr;
  Feature* binningMode_ = nullptr;
  Feature* decimationX_ = nullptr;
  Feature* decimationY_ = nullptr;
  Feature* reverseX_ = nullptr;
  Feature* reverseY_ = nullptr;
  Feature* pixelFormat_ = nullptr;
  Feature* pattern_ = nullptr;
  Feature* component_ = nullptr;
  std::shared_ptr<const Scene> chart_;
  bool folderRead_ = false;
  std::vector<std::shared_ptr<const Scene>> folder_;
};

}  // namespace vcam
