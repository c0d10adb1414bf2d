// What system, interface, device, stream and buffer have in common: registers of their own, events, and an orderly end.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "modules/event.h"
#include "modules/module_features.h"
#include "modules/port.h"

namespace vcam {

class Module : public Port {
 public:
  using Port::Port;

  EventSource& events() { return events_; }
  // Registers an event of a type and returns its handle.
  virtual void* registerEvent(EVENT_TYPE type);

  // Sends a module event, unless its notification is off; `data` are the event's numbers.
  void fireModuleEvent(std::uint64_t id, std::initializer_list<std::uint64_t> data);
  void fireError(GC_ERROR code, std::string_view text);

  // Closes the module whose handle this is, with all that is open below it.
  static void close(void* handle, Kind kind, const char* what);
  // The same for a module that is claimed already.
  void shutDown();

  const DescriptionInfo& description() override { return features().description(); }
  void read(std::uint64_t address, void* data, std::size_t size) override { features().read(address, data, size); }
  void write(std::uint64_t address, const void* data, std::size_t size, std::size_t& moved) override {
    features().write(address, data, size);
    moved = size;
  }

 protected:
  virtual ModuleFeatures& features() = 0;
  // Ends whatever calls on this module wait for.
  virtual void endCalls() {}
  // Closes what is open below; no call is inside this module any more.
  virtual void closeChildren() {}
  // Hands over the ownership, so that the module can end. Nothing of the owner may be used afterwards.
  virtual std::unique_ptr<Module> detach() = 0;

 private:
  EventSource events_;
};

// The open modules below another one.
template<class Child>
class Children {
 public:
  // Adds a child that `make` creates, unless `isThis` finds that it is open already.
  template<class IsThis, class Make>
  void* open(IsThis isThis, Make make, std::string_view what) {
    const std::lock_guard lock(mutex_);
    for (const auto& child : list_) {
      if (isThis(*child)) {
        fail(GC_ERR_RESOURCE_IN_USE, what, " is already open");
      }
    }
    std::unique_ptr<Child> child = make();
    HandleTable::insert(*child);
    list_.push_back(std::move(child));
    return list_.back()->handle();
  }

  std::unique_ptr<Module> take(const Child& child) {
    const std::lock_guard lock(mutex_);
    for (auto place = list_.begin(); place != list_.end(); ++place) {
      if (place->get() == &child) {
        std::unique_ptr<Module> taken = std::move(*place);
        list_.erase(place);
        return taken;
      }
    }
    return nullptr;
  }

  // Children cannot be closed while this runs.
  template<class Work>
  void forEach(Work work) {
    const std::lock_guard lock(mutex_);
    for (const auto& child : list_) {
      work(*child);
    }
  }

  void closeAll() {
    std::vector<void*> handles;
    forEach([&](Child& child) { handles.push_back(child.handle()); });
    for (void* handle : handles) {
      if (Object* child = HandleTable::claim(handle, kModules)) {
        static_cast<Module*>(child)->shutDown();
      } else {
        HandleTable::awaitErased(handle);
      }
    }
  }

 private:
  std::mutex mutex_;
  std::vector<std::unique_ptr<Child>> list_;
};

}  // namespace vcam
