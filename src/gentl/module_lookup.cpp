// From a module to the one above it, and the ending of waits over the registry.
#include "gentl/module_lookup.h"

#include <vector>

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
      event.endWaits();
    }
  });
}

void shutStreamWaits(std::uint64_t streamHandle) {
  forEachEvent(streamHandle, [](GenTLCpp::Event& event) { event.shutWaits(); });
  std::shared_ptr<GenTLCpp::DataStream> stream;
  if (lookupModule(streamHandle, stream) == OVI_SUCCESS) {
    stream->shutUses();
  }
}

void endDeviceWaits(std::uint64_t deviceHandle) {
  std::vector<HandleRegistry::Handle> streams;
  static_cast<void>(HandleRegistry::instance().listRelated(deviceHandle, ModuleKind::DataStream, streams));
  for (const HandleRegistry::Handle stream : streams) {
    shutStreamWaits(stream);
  }
  forEachEvent(deviceHandle, [](GenTLCpp::Event& event) { event.shutWaits(); });
}

void endAllWaits() {
  for (const HandleRegistry::Module& module : HandleRegistry::instance().modulesOfKind(ModuleKind::Event)) {
    static_cast<GenTLCpp::Event&>(*module).shutWaits();
  }
  for (const HandleRegistry::Module& module : HandleRegistry::instance().modulesOfKind(ModuleKind::DataStream)) {
    static_cast<GenTLCpp::DataStream&>(*module).shutUses();
  }
}

}  // namespace OVI
