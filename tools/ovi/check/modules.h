// A producer's modules, opened as far as a group of rules needs them and closed at its end.
#pragma once

#include <GenApi/GenApi.h>

#include <memory>
#include <string>

#include "check/info.h"

namespace tool::check {

enum class Depth { kLibrary, kSystem, kInterface, kDevice, kStream };

/// A device by the IDs of its interface and its own.
struct DeviceAddress {
  std::string interface;
  std::string device;
};

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

/// How long updates of lists may take: the library's own default.
constexpr std::uint64_t kUpdateTime = 1000;  // ms

std::vector<std::string> interfaceIds(Checker& check, TL_HANDLE tl);
std::vector<std::string> deviceIds(Checker& check, IF_HANDLE iface);
std::vector<std::string> streamIds(Checker& check, DEV_HANDLE device);

/// The node map of a port, over the producer's own reads and writes.
class PortMap {
 public:
  /// Throws Broken when there is no usable description.
  PortMap(Checker& check, PORT_HANDLE port);
  ~PortMap();
  PortMap(const PortMap&) = delete;
  PortMap& operator=(const PortMap&) = delete;

  GenApi::INodeMap& map() const { return *map_; }
  /// The description's size in bytes, as it was read.
  std::size_t bytes() const { return bytes_; }
  bool has(const char* node) const;
  /// Runs a command until it is done; tells the rule that is being checked when that takes more than one poll.
  void execute(Checker& check, const char* command);
  /// The value of an integer node.
  std::optional<std::int64_t> integer(const char* node) const;
  void lock(bool on);
  /// Sets a feature, or executes a command, from "Name=Value", as the tool's other commands do. Throws Broken.
  void assign(const std::string& assignment);

 private:
  std::unique_ptr<GenApi::IPort> port_;
  GenApi::INodeMap* map_ = nullptr;
  std::size_t bytes_ = 0;
};

}  // namespace tool::check
