// From a module to the one above it, and the ending of waits over the registry.
#include "gentl/module_lookup.h"

#include <vector>

#include "core/log.h"
#include "gentl/buffer.h"
#include "gentl/data_stream.h"
#include "gentl/device.h"
#include "gentl/tl_interface.h"

namespace OVI {

namespace {

/** Calls a function of every event that is registered on the module. */
template<class Function>
void forEachEvent(std::uint64_t moduleHandle, Function&& function) {
  std::vector<HandleRegistry::Handle> events;
  static_cast<void>(HandleRegistry::instance().listRelated(moduleHandle, ModuleKind::Event, events));
  for (const HandleRegistry::Handle handle : events) {
    std::shared_ptr<GenTLCpp::Event> event;
    if (lookupModule(handle, event) == OVI_SUCCESS) {
      function(event);
    }
  }
}

constexpr const char* kWait = "A producer has not ended a wait for an event two seconds after EventKill";
constexpr const char* kUse = "A producer has not returned from a call of a device or a stream for two seconds";

void warnUnless(bool areOver, const char* what) {
  if (!areOver) {
    OVI_LOG_WARNING("OVI::endWaits") << what << "; what was to follow is done beside it.";
  }
}

void shutUses(GenTLCpp::BaseModule& module) {
  warnUnless(module.shutUses(), kUse);
}

}  // namespace

std::shared_ptr<GenTLCpp::BaseModule> parentOf(const GenTLCpp::BaseModule& module) {
  switch (module.moduleType()) {
    case GenTLCpp::kInterfaceModule:
      return static_cast<const GenTLCpp::TLInterface&>(module).getParent();
    case GenTLCpp::kDeviceModule:
      return static_cast<const GenTLCpp::Device&>(module).getParent();
    case GenTLCpp::kDataStreamModule:
      return static_cast<const GenTLCpp::DataStream&>(module).getParent();
    case GenTLCpp::kBufferModule:
      return static_cast<const GenTLCpp::Buffer&>(module).getParent();
    default:
      return nullptr;
  }
}

void shutWaits(GenTLCpp::Event& event) {
  warnUnless(event.shutWaits(), kWait);
}

StreamPause::StreamPause(std::uint64_t streamHandle) {
  forEachEvent(streamHandle, [this](const std::shared_ptr<GenTLCpp::Event>& event) {
    if (event->getEventType() == EVENT_NEW_BUFFER) {
      held_.emplace_back(event);
      warnUnless(event->endWaits(), kWait);
    }
  });
}

// Registering an event and opening a stream are uses: once these are over, there is nothing new to miss.
void shutStreamWaits(std::uint64_t streamHandle) {
  std::shared_ptr<GenTLCpp::DataStream> stream;
  if (lookupModule(streamHandle, stream) == OVI_SUCCESS) {
    shutUses(*stream);
  }
  forEachEvent(streamHandle, [](const auto& event) { shutWaits(*event); });
}

void endDeviceWaits(std::uint64_t deviceHandle) {
  std::shared_ptr<GenTLCpp::Device> device;
  if (lookupModule(deviceHandle, device) == OVI_SUCCESS) {
    shutUses(*device);
  }
  std::vector<HandleRegistry::Handle> streams;
  static_cast<void>(HandleRegistry::instance().listRelated(deviceHandle, ModuleKind::DataStream, streams));
  for (const HandleRegistry::Handle stream : streams) {
    shutStreamWaits(stream);
  }
  forEachEvent(deviceHandle, [](const auto& event) { shutWaits(*event); });
}

void shutInterfaceWaits(GenTLCpp::TLInterface& tlInterface) {
  shutUses(tlInterface);
  // Not by its handle: that has gone with a device, but the events of the interface stay.
  for (const HandleRegistry::Module& module : HandleRegistry::instance().modulesOfKind(ModuleKind::Event)) {
    auto& event = static_cast<GenTLCpp::Event&>(*module);
    if (event.getParent().get() == &tlInterface) {
      shutWaits(event);
    }
  }
}

void endAllWaits() {
  for (const ModuleKind kind : {ModuleKind::Device, ModuleKind::DataStream}) {
    for (const HandleRegistry::Module& module : HandleRegistry::instance().modulesOfKind(kind)) {
      shutUses(*module);
    }
  }
  for (const HandleRegistry::Module& module : HandleRegistry::instance().modulesOfKind(ModuleKind::Event)) {
    shutWaits(static_cast<GenTLCpp::Event&>(*module));
  }
}

}  // namespace OVI
