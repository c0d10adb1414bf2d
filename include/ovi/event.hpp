/// @file
/// An event in C++: registered as long as it lives.
#pragma once

#include <cstdint>
#include <system_error>
#include <utility>

#include "ovi/feature.hpp"
#include "ovi/ovi.h"
#include "ovi/result.hpp"

namespace ovi {

/// A registered event.
class Event {
 public:
  /// Registers the event; the kind is OVI_EVENT_...
  Event(std::uint64_t moduleHandle, std::uint32_t kind, Module module) {
    check(oviRegisterEvent(moduleHandle, kind, &handle_, static_cast<std::uint32_t>(module)), "oviRegisterEvent");
  }
  ~Event() {
    if (handle_ != 0)
      oviUnregisterEvent(handle_);
  }
  /// The other one is not registered any more.
  Event(Event&& other) noexcept : handle_(std::exchange(other.handle_, 0)) {}
  Event& operator=(Event&&) = delete;

  std::uint64_t handle() const noexcept { return handle_; }  ///< For calls of the C interface
  /// The record of the next event; null when the time is over or the wait was ended. It belongs to the library.
  const oviEventData* wait(Milliseconds timeout) const {
    std::error_code error;
    const oviEventData* data = wait(timeout, error);
    if (error && error != Errc::kTimeout && error != Errc::kAborted)
      throw Error(error.value(), "oviWaitForEvent");
    return data;
  }
  /// The record of the next event, or null with the reason in error.
  const oviEventData* wait(Milliseconds timeout, std::error_code& error) const {
    void* data = nullptr;
    const oviErr code = oviWaitForEvent(handle_, detail::timeoutValue(timeout), &data);
    error = makeErrorCode(code);
    return code == OVI_SUCCESS ? static_cast<const oviEventData*>(data) : nullptr;
  }
  /// Ends the waits of other threads.
  void kill() const { check(oviEventKill(handle_), "oviEventKill"); }

 private:
  std::uint64_t handle_ = 0;
};

}  // namespace ovi
