// A sequencer: sets of exposure and gain that follow one another, each with two paths out of it.
#pragma once

#include <array>
#include <cstdint>

#include "camera_core.h"
#include "signal.h"

namespace vcam {

class Sequencer {
 public:
  static constexpr std::size_t kSets = 8;

  explicit Sequencer(CameraCore& core) : core_(core) {}

  void declare();
  bool on() const { return mode_ != nullptr && mode_->on(); }
  std::size_t activeSet() const { return on() ? active_ : 0; }
  // The set's values where the sequencer runs and controls them, otherwise those given.
  double exposure(double otherwise) const { return on() && enabled_->on(0) ? sets_[active_].exposure : otherwise; }
  double gain(double otherwise) const { return on() && enabled_->on(1) ? sets_[active_].gain : otherwise; }
  bool watchesFrames() const;
  // A frame took the values of the active set.
  void frameBegun();
  void signal(Signal signal);

 private:
  static constexpr std::size_t kPaths = 2;
  struct Values {
    double exposure = 10000;
    double gain = 0;
  };

  CameraCore& core_;
  Feature* mode_ = nullptr;
  Feature* enabled_ = nullptr;
  Feature* setSelector_ = nullptr;
  Feature* startSet_ = nullptr;
  Feature* next_ = nullptr;
  Feature* source_ = nullptr;
  std::array<Values, kSets> sets_{};
  std::size_t active_ = 0;
};

}  // namespace vcam
