// From handles to modules, and from a module to the one above it.
#pragma once

#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "core/handle_registry.h"
#include "gentl/base_module.h"
#include "gentl/event.h"
#include "ovi/ovi.h"

namespace GenTLCpp {
class TLInterface;
}

namespace OVI {

/**
 * The module behind a handle, if it is of class T: TransportLayer, TLInterface, Device, DataStream, Buffer, Event,
 * NewBufferEvent, or BaseModule for any.
 *
 * @return Success, or NotFound (-104) with `out` empty
 */
template<class T>
oviErr lookupModule(std::uint64_t handle, std::shared_ptr<T>& out) {
  std::shared_ptr<GenTLCpp::BaseModule> module = HandleRegistry::instance().find(handle);
  out.reset();
  if (module == nullptr) {
    return OVI_ERR_NOT_FOUND;
  }
  if constexpr (std::is_same_v<T, GenTLCpp::BaseModule>) {
    out = std::move(module);
  } else if constexpr (std::is_same_v<T, GenTLCpp::NewBufferEvent>) {
    out = std::dynamic_pointer_cast<T>(module);
  } else if (module->moduleType() == T::kModuleType) {
    out = std::static_pointer_cast<T>(std::move(module));
  }
  return out != nullptr ? OVI_SUCCESS : OVI_ERR_NOT_FOUND;
}

/** The same without a share: null, or a module that lives as long as the hold. */
template<class T>
T* holdModule(std::uint64_t handle, Hold& hold) noexcept {
  GenTLCpp::BaseModule* const module = HandleRegistry::instance().find(handle, hold);
  if constexpr (std::is_same_v<T, GenTLCpp::BaseModule>) {
    return module;
  } else {
    return module != nullptr && module->moduleType() == T::kModuleType ? static_cast<T*>(module) : nullptr;
  }
}

/** Takes a handle out of the registry, a stale one too, but not one of a module of another class. */
template<class T>
void removeModule(std::uint64_t handle) {
  const std::shared_ptr<GenTLCpp::BaseModule> module = HandleRegistry::instance().find(handle);
  if (module == nullptr || module->moduleType() == T::kModuleType) {
    HandleRegistry::instance().remove(handle);
  }
}

/** The module above: buffer, stream, device, interface, system. Empty for a system, and for an event, which is no
 * module that features or events could be looked for from. */
std::shared_ptr<GenTLCpp::BaseModule> parentOf(const GenTLCpp::BaseModule& module);

/** Ends the waits for filled buffers that are under way on a stream, until they are over. No other begins while it
 * lives: who came in between would be given a buffer that is about to be taken back. */
class StreamPause {
 public:
  explicit StreamPause(std::uint64_t streamHandle);
  StreamPause(const StreamPause&) = delete;
  StreamPause& operator=(const StreamPause&) = delete;

 private:
  /** Holds the waits for one event back while it lives. */
  class HeldWaits {
   public:
    explicit HeldWaits(std::shared_ptr<GenTLCpp::Event> event) noexcept : event_(std::move(event)) {
      event_->holdWaits();
    }
    HeldWaits(HeldWaits&&) noexcept = default;
    HeldWaits& operator=(HeldWaits&&) = delete;
    ~HeldWaits() {
      if (event_ != nullptr) {
        event_->letWaitsIn();
      }
    }

   private:
    std::shared_ptr<GenTLCpp::Event> event_;
  };
  std::vector<HeldWaits> held_;
};
/** Ends the waits for one event, and no other starts; for whoever unregisters it. */
void shutWaits(GenTLCpp::Event& event);
/** Ends the uses of a stream and the waits for events of all kinds on it, and none begins any more; for whoever closes
 * it. */
void shutStreamWaits(std::uint64_t streamHandle);
/** The same on a device and all its streams; for whoever closes it. */
void endDeviceWaits(std::uint64_t deviceHandle);
/** The same on an interface that no device is open on; for whoever closes it. */
void shutInterfaceWaits(GenTLCpp::TLInterface& tlInterface);
/** Ends all waits for events, of whatever kind, and no other starts; for whoever closes everything. */
void endAllWaits();

}  // namespace OVI
