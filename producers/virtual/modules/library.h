// The producer as a whole: what exists between GCInitLib and GCCloseLib.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "camera/camera.h"
#include "options.h"

namespace vcam {

class Recorder;
class System;

// One camera and the cable it hangs on.
struct CameraSlot {
  std::unique_ptr<Camera> camera;
  std::size_t interfaceIndex = 0;
  std::atomic<bool> present{true};
  bool foreignSubnet = false;
  // Grows each time the cable is plugged in; a device that was opened before stays lost.
  std::atomic<std::uint64_t> plugs{0};
};

struct InterfaceEntry {
  std::string id;
  std::string displayName;
  std::string tlType;
};

// Names of the producer; the same for GCGetInfo, TLGetInfo and the system's node map.
struct ProducerIdentity {
  std::string id;
  std::string vendor;
  std::string model;
  std::string version;
  std::string tlType;
  std::string name;
  std::string pathName;
  std::string displayName;
};

// What lives between GCInitLib and GCCloseLib.
struct Session {
  Options options;
  ProducerIdentity identity;
  std::vector<InterfaceEntry> interfaces;
  std::vector<std::unique_ptr<CameraSlot>> cameras;
  std::shared_ptr<Recorder> recorder;  // in the recording variant
};

class Library {
 public:
  // Never destroyed: a process may end without closing the producer.
  static Library& instance();

  static bool isInitialized() noexcept { return initialized_.load(std::memory_order_acquire); }

  void open();
  void close();

  ProducerIdentity identity();
  // Null when this producer does not record.
  std::shared_ptr<Recorder> recorder();

  void* openSystem();
  std::unique_ptr<System> takeSystem();

  // Orders about one device, or about all when the ID is empty; they hold from one GCInitLib to the next, too. False
  // for an ID that no camera has. The cable:
  bool setPresent(const std::string& deviceId, bool present);
  // Commands that take a while:
  bool setBusyPolls(const std::string& deviceId, std::uint32_t polls);
  // Plugs every device in and forgets what was ordered.
  void withdrawOrders();

 private:
  // What was ordered about a device, as long as it was not withdrawn.
  struct Order {
    std::optional<bool> present;
    std::uint32_t busyPolls = 0;
  };

  // All of these run under mutex_.
  void follow(CameraSlot& slot, const Order& order);
  template<class Change>
  bool order(const std::string& deviceId, Change change);

  inline static std::atomic<bool> initialized_{false};

  std::mutex mutex_;
  std::unique_ptr<Session> session_;
  std::map<std::string, Order> orders_;
  std::mutex systemMutex_;  // taken after mutex_
  std::unique_ptr<System> system_;
};

}  // namespace vcam
