// The modules that a producer opens and closes: system, interface, device and data stream differ only in their names.
#pragma once

#include <atomic>
#include <memory>
#include <utility>

#include "gentl/base_module.h"
#include "gentl/exceptions.h"
#include "gentl/export_table.h"
#include "gentl/trace.h"

namespace GenTLCpp {

/** The texts of a module class. */
struct ModuleTexts {
  const char* parentClosed;  // Somebody uses the module while its parent is closed.
  const char* closed;        // Somebody asks for the handle of the closed module.
};

/**
 * A module with a parent, its entry points and an open state.
 *
 * Functions is its export table; Close is the member of it that closes the module.
 */
template<class Parent, class Functions, auto Close>
class OpenModule : public BaseModule {
 public:
  const std::shared_ptr<Parent>& getParent() const noexcept { return parent_; }

  GC_ERROR closeModule() override {
    if (isClosed()) {
      return GC_ERR_SUCCESS;
    }
    void* handle = getRawHandle();
    if (closed_.exchange(true)) {
      return GC_ERR_SUCCESS;
    }
    return (functions_.*Close)(handle);
  }

  bool isClosed() const override { return closed_.load(std::memory_order_acquire) || parent_->isClosed(); }
  bool isOpen() const override { return !isClosed(); }

  bool isAccessible() const override {
    if (parent_->isClosed()) {
      throw ClosedException(texts_.parentClosed);
    }
    return !closed_.load(std::memory_order_acquire);
  }

  /** The GenTL handle. @throws ClosedException */
  void* getHandle() const {
    if (!isAccessible()) {
      throw ClosedException(texts_.closed);
    }
    return getRawHandle();
  }

  std::shared_ptr<Event> registerEvent(EVENT_TYPE eventType) override;
  LibraryHandle getLibraryHandle() const override { return functions_.library; }

 protected:
  OpenModule(std::shared_ptr<Parent> parent, LibraryHandle library, void* handle, const ModuleTexts& texts)
      : BaseModule(handle),
        parent_(std::move(parent)),
        functions_(library),
        eventFunctions_(library),
        texts_(texts) {}

  const Functions& functions() const noexcept { return functions_; }

  /** Registers at the producer; null when it succeeds without an event. */
  EVENT_HANDLE registerEventHandle(EVENT_TYPE eventType) const {
    EVENT_HANDLE event = nullptr;
    checkGenTLError(eventFunctions_.GCRegisterEvent(getHandle(), eventType, &event));
    return event;
  }

 private:
  std::shared_ptr<Parent> parent_;
  std::atomic<bool> closed_{false};
  Functions functions_;
  EventFunctions eventFunctions_;
  ModuleTexts texts_;
};

/** An Event on the module; in event.cpp, which knows the class. */
std::shared_ptr<Event> makeEvent(std::shared_ptr<BaseModule> module, EVENT_TYPE eventType, EVENT_HANDLE handle);

template<class Parent, class Functions, auto Close>
std::shared_ptr<Event> OpenModule<Parent, Functions, Close>::registerEvent(EVENT_TYPE eventType) {
  EVENT_HANDLE event = registerEventHandle(eventType);
  return event != nullptr ? makeEvent(sharedFromThis(), eventType, event) : nullptr;
}

}  // namespace GenTLCpp
