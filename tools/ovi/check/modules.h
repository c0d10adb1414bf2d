// A producer's modules, opened as far as a group of rules needs them and closed at its end.
#pragma once

#include <string>

#include "check/info.h"

namespace tool::check {

enum class Depth { kLibrary, kSystem, kInterface, kDevice, kStream };

/// A device by the IDs of its interface and its own.
struct DeviceAddress {
  std::string interface;
  std::string device;
};

/// What a rule says when the device that the user named is not there.
std::string noDeviceText(const std::string& camera);

/// Opens from the library down to a depth, and closes in the reverse order.
class Modules {
 public:
  /// Throws Broken with the call that failed.
  Modules(Checker& check, Depth depth);
  /// Opens just this device, with the least access that the producer grants, down to kDevice or kStream.
  Modules(Checker& check, const DeviceAddress& address, Depth depth);
  ~Modules();
  Modules(const Modules&) = delete;
  Modules& operator=(const Modules&) = delete;

  TL_HANDLE tl = nullptr;
  IF_HANDLE iface = nullptr;
  DEV_HANDLE device = nullptr;
  PORT_HANDLE remote = nullptr;
  DS_HANDLE stream = nullptr;
  std::string interfaceId;
  std::string deviceId;
  std::string streamId;

 private:
  void open(Checker& check, Depth depth);
  void openDevice(Checker& check);
  bool openDeviceOf(Checker& check, const std::string& interface);
  void openToLook(Checker& check, const DeviceAddress& address, Depth depth);
  void openBelowDevice(Checker& check, Depth depth);
  void close();

  const ProducerFunctions& gentl_;
  bool initialized_ = false;
};

}  // namespace tool::check
