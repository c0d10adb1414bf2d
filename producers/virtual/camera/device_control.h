// Identity, temperature, link, maintenance and raw registers of a camera.
#pragma once

#include <functional>
#include <string>

#include "camera_core.h"
#include "file_store.h"

namespace vcam {

class DeviceControl {
 public:
  struct Hooks {
    std::function<void()> reset;           // back to the power-on state
    std::function<void(double)> overheat;  // the temperature passed its limit upwards
  };

  DeviceControl(CameraCore& core, FileStore& store, Hooks hooks)
      : core_(core),
        store_(store),
        hooks_(std::move(hooks)) {}

  void declare();
  // After the map is sealed: takes what was kept from earlier.
  void powerOn();
  std::string userId() const { return userId_->text(); }
  void setFirmwareVersion(const std::string& version) { firmware_->setText(version); }

 private:
  void declareIdentity();
  void declareTemperature();
  void declareLink();
  void declareRegisters();
  double temperature(std::size_t place) const;
  void watchTemperature();

  CameraCore& core_;
  FileStore& store_;
  Hooks hooks_;
  Feature* userId_ = nullptr;
  Feature* firmware_ = nullptr;
  Feature* temperatureLimit_ = nullptr;
  std::uint64_t latched_ = 0;
  bool watching_ = false;
  bool hot_ = false;
};

}  // namespace vcam
