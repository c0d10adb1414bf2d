// Data about a frame that travel with it.
#pragma once

#include <cstddef>
#include <span>

#include "camera_core.h"
#include "frame_plan.h"

namespace vcam {

class ChunkControl {
 public:
  explicit ChunkControl(CameraCore& core) : core_(core) {}

  void declare();
  // Lays the enabled chunks behind the image and lets the payload grow by them.
  void layOut(FramePlan& plan) const;
  // Writes the chunks of a frame whose image has been drawn. Needs no lock.
  void write(const FramePlan& plan, std::span<std::byte> buffer) const;

 private:
  CameraCore& core_;
  Feature* active_ = nullptr;
  Feature* enable_ = nullptr;
};

}  // namespace vcam
