// What the tree producer lists and answers, as tests write it.
#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "gentl_interface/GenTL.h"

namespace tree {

/** The infos of a device that has none of its own: all of them present. */
inline std::map<int, std::string> infosOf(const std::string& model, const std::string& vendor) {
  return {{DEVICE_INFO_VENDOR, vendor},
          {DEVICE_INFO_MODEL, model},
          {DEVICE_INFO_TLTYPE, "Custom"},
          {DEVICE_INFO_DISPLAYNAME, "display of " + model},
          {DEVICE_INFO_USER_DEFINED_NAME, "f\xC3\xBCr mich"},
          {DEVICE_INFO_SERIAL_NUMBER, "4711"},
          {DEVICE_INFO_VERSION, "1.2"}};
}

struct Device {
  std::string id;
  std::map<int, std::string> infos;  // By DEVICE_INFO_CMD; a missing one is answered "not implemented".
  std::int32_t accessStatus = DEVICE_ACCESS_STATUS_READWRITE;
  bool isOpen = false;
};

struct Interface {
  std::string id;
  std::vector<Device> devices;
  bool isListed = true;
  bool isOpen = false;
  std::uint32_t registers[1] = {0};  // What its one boolean feature, "IgnoreSubnet", is stored in.
};

/** Tests change it while nobody uses the producer, or under its mutex. */
struct Script {
  std::recursive_mutex mutex;
  std::vector<Interface> interfaces;
  std::uint32_t systemRegister = 1;  // "EnableKitharaIncreasedInterruptInterval" of the system module.
  std::vector<std::string> calls;    // Names of the functions that open, update and close, in order.
  /** Asked at every call; a code other than 0 is the answer. */
  std::function<GC_ERROR(std::string_view function, int command)> fault;
};

using GetScript = Script* (*)();

}  // namespace tree
