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
      function(*event);
    }
  }
}

void warnUnless(bool areOver, const char* site) {
  if (!areOver) {
    OVI_LOG_WARNING(site)
        << "A producer has not ended a wait for an event within two seconds after EventKill; what was "
           "to follow is done while it waits.";
  }
}

void shutEvents(std::uint64_t moduleHandle) {
  forEachEvent(moduleHandle, [](GenTLCpp::Event& event) { warnUnless(event.shutWaits(), "OVI::shutWaits"); });
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
    case GenTLCpp::kEventModule:
      return static_cast<const GenTLCpp::Event&>(module).getParent();
    default:
      return nullptr;
  }
}

void endStreamWaits(std::uint64_t streamHandle) {
  forEachEvent(streamHandle, [](GenTLCpp::Event& event) {
    if (event.getEventType() == EVENT_NEW_BUFFER) {
      warnUnless(event.endWaits(), "OVI::endWaits");
    }
  });
}

void shutStreamWaits(std::uint64_t streamHandle) {
  shutEvents(streamHandle);
  std::shared_ptr<GenTLCpp::DataStream> stream;
  if (lookupModule(streamHandle, stream) == OVI_SUCCESS) {
    stream->shutUses();
  }
  // Registering is a use: from here on there is no new event, but one may have come before.
  shutEvents(streamHandle);
}

void endDeviceWaits(std::uint64_t deviceHandle) {
  std::vector<HandleRegistry::Handle> streams;
  static_cast<void>(HandleRegistry::instance().listRelated(deviceHandle, ModuleKind::DataStream, streams));
  for (const HandleRegistry::Handle stream : streams) {
    shutStreamWaits(stream);
  }
  shutEvents(deviceHandle);
}

void endAllWaits() {
  const auto shutAll = [] {
    for (const HandleRegistry::Module& module : HandleRegistry::instance().modulesOfKind(ModuleKind::Event)) {
      warnUnless(static_cast<GenTLCpp::Event&>(*module).shutWaits(), "OVI::shutWaits");
    }
  };
  shutAll();
  for (const HandleRegistry::Module& module : HandleRegistry::instance().modulesOfKind(ModuleKind::DataStream)) {
    static_cast<GenTLCpp::DataStream&>(*module).shutUses();
  }
  shutAll();  // As with one stream.
}

}  // namespace OVI
