/// @file
/// The library itself in C++: its life, its log, and the search for cameras.
#pragma once

#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ovi/ovi.h"
#include "ovi/result.hpp"

namespace ovi {

/// Levels of the log; each one includes those before it.
enum class LogLevel : std::uint32_t { kNone = 0, kError = 1, kWarning = 2, kInfo = 4, kDebug = 8, kVerbose = 16 };

/// A camera of the latest discovery.
using DeviceInfo = oviDeviceInfo;
/// Receives a line of the log.
using LogFunction = std::function<void(LogLevel, std::string_view)>;
/// Receives the progress of a discovery.
using DiscoveryFunction = std::function<void(const oviDiscoveryInfo&)>;

/// Initialises the library and closes it again. One at a time in a process.
///
/// The log level of the first Library of a process stays in force for all later ones. The log function is called on
/// whatever thread logs, one call at a time; an exception that leaves it is dropped.
class Library {
 public:
  /// Initialises the library.
  explicit Library(LogLevel level = LogLevel::kWarning, LogFunction log = {}) {
    LogSlot& slot = logSlot();
    {
      const std::lock_guard<std::mutex> lock(slot.mutex);
      slot.function = std::move(log);
    }
    // The library appends its callback once more at every initialisation that names one, so it is named once a process.
    const bool first = !std::exchange(slot.attached, true);
    check(oviInit(static_cast<std::uint32_t>(level), first ? &Library::forwardLog : nullptr, nullptr), "oviInit");
  }
  ~Library() {
    oviClose();
    LogSlot& slot = logSlot();
    const std::lock_guard<std::mutex> lock(slot.mutex);
    slot.function = nullptr;
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  /// Finds cameras. The search path is added to the environment's, or replaces it; an empty one is that of the call
  /// before. An exception of the progress function leaves the call once the discovery is over.
  std::vector<DeviceInfo> discover(Milliseconds timeout = Milliseconds(1000), const DiscoveryFunction& progress = {},
                                   const std::string& searchPath = {}, bool searchPathOnly = false) const {
    const auto info = std::make_unique<oviDiscoveryInfo>();
    Progress context{progress, nullptr};
    progressContext() = &context;
    const oviErr code = oviDiscoverDevices(
        info.get(), detail::timeoutValue(timeout), progress ? &forwardProgress : nullptr,
        searchPath.empty() && !searchPathOnly ? nullptr : searchPath.c_str(), searchPathOnly ? 1 : 0);
    progressContext() = nullptr;
    if (context.exception)
      std::rethrow_exception(context.exception);
    check(code, "oviDiscoverDevices");
    return devices();
  }

  /// The cameras of the latest discovery, all of them.
  std::vector<DeviceInfo> devices() const {
    std::vector<DeviceInfo> found;
    const auto record = std::make_unique<oviDeviceInfo>();
    for (std::uint32_t i = 0; oviGetDeviceInfo(i, record.get()) == OVI_SUCCESS; ++i)
      found.push_back(*record);
    return found;
  }

  /// Producer files on the search path, whether they load or not.
  std::vector<std::string> producers() const {
    std::uint32_t count = 0;
    check(oviGetNumberOfTLProducers(&count), "oviGetNumberOfTLProducers");
    std::vector<std::string> paths;
    for (std::uint32_t i = 0; i < count; ++i) {
      char path[4096] = {};
      if (oviGetTLProducerPathByIndex(path, sizeof(path), i) == OVI_SUCCESS)
        paths.emplace_back(path);
    }
    return paths;
  }

  /// What a producer file tells about itself. One that is not in use is loaded for the question.
  oviTLProducerInfos producerInfo(const std::string& path) const {
    oviTLProducerInfos info{};
    check(oviGetTLProducerInfobyFilePath(&info, path.c_str()), "oviGetTLProducerInfobyFilePath", path);
    return info;
  }

  /// Whether the GigE producer that has such a switch lists cameras of other subnets.
  void setIgnoreSubnet(bool enabled) const {
    check(oviSetIgnoreSubnetEnabled(enabled ? 1 : 0), "oviSetIgnoreSubnetEnabled");
  }
  /// Whether reading a feature always asks the camera.
  void setFeatureCachingDisabled(bool disabled) const {
    check(oviSetFeatureCachingDisabled(disabled ? 1 : 0), "oviSetFeatureCachingDisabled");
  }
  /// What setFeatureCachingDisabled said last.
  bool isFeatureCachingDisabled() const {
    std::uint8_t disabled = 0;
    check(oviIsFeatureCachingDisabled(&disabled), "oviIsFeatureCachingDisabled");
    return disabled != 0;
  }

  /// Has a report written when the process crashes, see oviRegisterDebugExceptionHandler.
  static void reportCrashes() { oviRegisterDebugExceptionHandler(); }

  /// The library's version, "1.2.3".
  static std::string version() {
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
    std::uint32_t patch = 0;
    std::uint32_t build = 0;
    oviGetLibraryVersion(&major, &minor, &patch, &build);
    return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(patch);
  }

 private:
  struct LogSlot {
    std::mutex mutex;
    LogFunction function;
    bool attached = false;
  };
  static LogSlot& logSlot() {
    static LogSlot slot;
    return slot;
  }
  static void OVI_CALL forwardLog(std::uint32_t level, const char* message, void* /*userData*/) {
    LogSlot& slot = logSlot();
    const std::lock_guard<std::mutex> lock(slot.mutex);
    try {
      if (slot.function)
        slot.function(static_cast<LogLevel>(level), message);
    } catch (...) {  // An exception must not reach the library.
    }
  }
  struct Progress {
    const DiscoveryFunction& function;
    std::exception_ptr exception;
  };
  // The C callback has no context; it runs on the thread that discovers, so each thread has a place of its own.
  static Progress*& progressContext() {
    static thread_local Progress* context = nullptr;
    return context;
  }
  static void OVI_CALL forwardProgress(oviDiscoveryInfo* info) {
    Progress* context = progressContext();
    if (context == nullptr || context->exception)
      return;
    try {
      context->function(*info);
    } catch (...) {
      context->exception = std::current_exception();
    }
  }
};

}  // namespace ovi
