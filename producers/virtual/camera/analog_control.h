// Exposure, gain, black level, gamma, white balance and look-up tables: what makes a component of the scene a value.
#pragma once

#include "../picture/pixel_format.h"
#include "camera_core.h"

namespace vcam {

constexpr std::size_t kLutEntries = 256;  // of one look-up table

class AnalogControl {
 public:
  explicit AnalogControl(CameraCore& core) : core_(core) {}

  void declareExposure(const char* category);
  void declare();
  double exposure() const { return exposure_->floating(); }  // us
  double gain() const { return gain_->floating(); }          // dB
  // What 8-bit components become with a given exposure and gain.
  ToneTables tones(double exposure, double gain) const;
  Feature& lutValues() { return *lutValue_; }

 private:
  void declareLut();
  std::uint16_t throughLut(std::size_t selector, double share) const;

  CameraCore& core_;
  Feature* exposure_ = nullptr;
  Feature* gain_ = nullptr;
  Feature* blackLevel_ = nullptr;
  Feature* gamma_ = nullptr;
  Feature* balance_ = nullptr;
  Feature* lutEnable_ = nullptr;
  Feature* lutValue_ = nullptr;
};

}  // namespace vcam
