// Events of the camera with their data.
#pragma once

#include <cstdint>

#include "camera_core.h"
#include "signal.h"

namespace vcam {

class EventControl {
 public:
  explicit EventControl(CameraCore& core) : core_(core) {}

  void declare();
  // Whether an event that belongs to a single frame is switched on.
  bool watchesFrames() const;
  void signal(Signal signal, std::uint64_t frameId);
  void overheat(double temperature);

 private:
  bool enabled(std::size_t index) const { return notification_->on(index); }
  void send(std::size_t index, std::uint64_t frameId, double value);

  CameraCore& core_;
  Feature* notification_ = nullptr;
};

}  // namespace vcam
