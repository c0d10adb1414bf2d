// Events of all modules: register, wait for all but images, kill, unregister.
#include "acquisition/events.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/handle_registry.h"
#include "core/log.h"
#include "core/result.h"
#include "event_record.h"
#include "features/node_lookup.h"
#include "features/typed_access.h"
#include "gentl/data_stream.h"
#include "gentl/device.h"
#include "gentl/event.h"
#include "gentl/guard.h"
#include "gentl/module_lookup.h"
#include "image_wait.h"

namespace OVI {

namespace {

using GenTLCpp::BaseModule;
using GenTLCpp::DataStream;
using GenTLCpp::Event;
using GenTLCpp::NewBufferEvent;

/** The event kinds that are registered on the module that a selector picks. */
struct EventKind {
  std::uint32_t kind;
  EVENT_TYPE type;
};
constexpr EventKind kModuleEvents[] = {{OVI_EVENT_ERROR, EVENT_ERROR}, {OVI_EVENT_MODULE, EVENT_MODULE}};

constexpr const char* kNoEvent = "Could not find event object for provided handle!";

// A producer that cannot tell how long its events' data get has this much room, and no producer has more than the most.
constexpr std::size_t kUnknownDataSize = 4096;
constexpr std::size_t kLargestDataSize = std::size_t{16} << 20;

std::size_t dataSizeOf(const Event& event) {
  try {
    return std::clamp(event.getMaxDataSize(), std::size_t{1}, kLargestDataSize);
  } catch (const GenTLCpp::GenTLException& error) {
    if (isNoValue(error.code())) {
      return kUnknownDataSize;
    }
    throw;
  }
}

/** What to register, and where. */
struct Registration {
  std::shared_ptr<BaseModule> target;
  std::uint32_t selector;
  EVENT_TYPE type;
};

oviErr findTarget(const char* site, std::uint64_t moduleHandle, const std::shared_ptr<BaseModule>& module,
                  std::uint32_t kind, std::uint32_t moduleSelector, Registration& out) {
  if (kind == OVI_EVENT_NEW_BUFFER) {
    if (module->moduleType() != DataStream::kModuleType) {
      OVI_LOG_ERROR(site) << "DataStream not found for provided module handle, could not register new buffer event! "
                             "Perhaps handle is not a data stream module?";
      return OVI_ERR_NOT_FOUND;
    }
    out = {module, OVI_MODULE_DATA_STREAM, EVENT_NEW_BUFFER};
    return OVI_SUCCESS;
  }
  const auto* known = std::ranges::find_if(kModuleEvents, [&](const EventKind& entry) { return entry.kind == kind; });
  if (known == std::end(kModuleEvents)) {
    OVI_LOG_ERROR(site) << "Failed to register event on module:  Handle: [" << moduleHandle
                        << "] Error: Event object was NULL";
    return OVI_ERR_INVALID_PARAMETER;
  }
  out = {nullptr, moduleSelector, known->type};
  if (findModule(moduleHandle, moduleSelector, out.target) != OVI_SUCCESS) {
    OVI_LOG_ERROR(site) << "Failed to register event on module: Could not find requested module for given parameters. "
                           "Event type was: "
                        << kind << " Module type: " << moduleSelector;
    return OVI_ERR_NOT_FOUND;
  }
  return OVI_SUCCESS;
}

/**
 * The handle of the module that an event is registered on. A system or an interface that devices share goes with the
 * first of them that is closed; for the others it is entered again.
 */
std::uint64_t handleOfTarget(const std::shared_ptr<BaseModule>& module, const std::shared_ptr<BaseModule>& target) {
  HandleRegistry& registry = HandleRegistry::instance();
  std::uint64_t handle = registry.handleOf(target.get());
  std::shared_ptr<BaseModule> device = module;
  while (handle == 0 && device != nullptr && device->moduleType() != GenTLCpp::Device::kModuleType) {
    device = parentOf(*device);
  }
  if (handle == 0) {
    registry.registerOwned(registry.handleOf(device.get()), target, static_cast<ModuleKind>(target->moduleType()),
                           handle);
  }
  return handle;
}

std::shared_ptr<Event> registerAt(const Registration& registration) {
  if (registration.type == EVENT_NEW_BUFFER) {
    return static_cast<DataStream&>(*registration.target).registerNewBufferEvent();
  }
  return registration.target->registerEvent(registration.type);
}

/** Waits for an event that brings no image. The record's address goes out before the wait. */
oviErr waitForData(Event& event, std::uint64_t timeout, void** data) {
  constexpr const char* kSite = "OVI::oviWaitForEvent";
  EventRecord& record = recordOf(event);
  *data = record.data();
  try {
    std::vector<char> eventData(record.dataSize());
    event.requireOpenModule();  // A wait that begins later is told so; the closing ends those that are under way.
    const Event::Stay stay(event, timeout);
    const std::size_t size = event.getData(stay, eventData.data(), eventData.size(), timeout);
    const std::uint64_t id = eventIdOf(event, eventData.data(), size);
    record.fill(eventData.data(), size, id, eventValueOf(event, eventData.data(), size));
    return OVI_SUCCESS;
  } catch (const GenTLCpp::AbortException& error) {
    OVI_LOG_DEBUG(kSite) << "Event was aborted! Error: " << error.what();
    return mapGenTLError(error.code());
  } catch (const GenTLCpp::GenTLException& error) {
    OVI_LOG_WARNING(kSite) << "Failed to get event data! Error: " << error.what();
    return mapGenTLError(error.code());
  }
}

oviErr findEvent(const char* site, std::uint64_t handle, std::shared_ptr<Event>& out) {
  const oviErr result = lookupModule(handle, out);
  if (result != OVI_SUCCESS) {
    OVI_LOG_ERROR(site) << kNoEvent;
  }
  return result;
}

}  // namespace

oviErr oviRegisterEvent(std::uint64_t moduleHandle, std::uint32_t kind, std::uint64_t* eventHandle,
                        std::uint32_t moduleSelector) {
  constexpr const char* kSite = "OVI::oviRegisterEvent";
  if (moduleHandle == 0 || eventHandle == nullptr) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  std::shared_ptr<BaseModule> module;
  if (lookupModule(moduleHandle, module) != OVI_SUCCESS) {
    OVI_LOG_ERROR(kSite) << "Failed to to get module! Perhaps, invalid handle? Handle value: " << moduleHandle;
    return OVI_ERR_NOT_FOUND;
  }
  Registration registration;
  const oviErr found = findTarget(kSite, moduleHandle, module, kind, moduleSelector, registration);
  if (found != OVI_SUCCESS) {
    return found;
  }
  const auto failed = [&](LogRecord& record) {
    record << "Failed to register event on module:  Handle: [" << moduleHandle << "] Error: ";
  };
  return guarded(kSite, Severity::Error, failed, [&]() -> oviErr {
    // Whoever closes the module meets an event that is registered and listed, or none.
    const BaseModule::Use use(*registration.target);
    const std::shared_ptr<Event> event = registerAt(registration);
    if (event == nullptr) {
      OVI_LOG_ERROR(kSite) << "Failed to register event on module:  Handle: [" << moduleHandle
                           << "] Error: Event object was NULL";
      return OVI_ERR_UNKNOWN;
    }
    const std::uint64_t targetHandle = handleOfTarget(module, registration.target);
    event->attach(std::make_shared<EventRecord>(kind, targetHandle, registration.selector, dataSizeOf(*event)));
    return HandleRegistry::instance().registerOwned(targetHandle, event, ModuleKind::Event, *eventHandle);
  });
}

oviErr oviWaitForEvent(std::uint64_t eventHandle, std::uint64_t timeout, void** data) {
  constexpr const char* kSite = "OVI::oviWaitForEvent";
  if (eventHandle == 0 || data == nullptr) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  Hold hold;
  auto* const event = holdModule<Event>(eventHandle, hold);
  if (event == nullptr) {
    OVI_LOG_ERROR(kSite) << kNoEvent;
    return OVI_ERR_NOT_FOUND;
  }
  if (event->getEventType() != EVENT_NEW_BUFFER) {
    return waitForData(*event, timeout, data);
  }
  oviNewBufferEventData* image = nullptr;
  const oviErr result = waitForImage(*event, timeout, image);
  if (image != nullptr) {
    *data = image;
  }
  return result;
}

oviErr oviGetNextImage(std::uint64_t eventHandle, oviNewBufferEventData* record, std::uint64_t timeout) {
  if (eventHandle == 0 || record == nullptr) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  Hold hold;
  auto* const event = holdModule<Event>(eventHandle, hold);
  oviErr result = event != nullptr ? OVI_SUCCESS : OVI_ERR_NOT_FOUND;
  oviNewBufferEventData* image = nullptr;
  if (event != nullptr && event->getEventType() == EVENT_NEW_BUFFER) {
    result = waitForImage(*event, timeout, image, record);
  }
  if (image == nullptr) {
    *record = {};  // An image has filled all of it.
  }
  return result;
}

oviErr oviEventKill(std::uint64_t eventHandle) {
  constexpr const char* kSite = "OVI::oviEventKill";
  if (eventHandle == 0) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  std::shared_ptr<Event> event;
  const oviErr found = findEvent(kSite, eventHandle, event);
  if (found != OVI_SUCCESS) {
    return found;
  }
  return guarded(kSite, Severity::Error, "Failed killingevent! Error: ", [&]() -> oviErr {
    if (!event->killWaits()) {
      OVI_LOG_ERROR(kSite) << kNoEvent;  // Its module is being closed.
      return OVI_ERR_NOT_FOUND;
    }
    return OVI_SUCCESS;
  });
}

oviErr oviUnregisterEvent(std::uint64_t eventHandle) {
  if (eventHandle == 0) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  std::shared_ptr<Event> event;
  oviErr result = lookupModule(eventHandle, event);
  if (result == OVI_SUCCESS) {
    result = guarded("OVI::oviUnregisterEvent", Severity::Error, "Error when unregistering event! Error: ", [&] {
      shutWaits(*event);
      event->unregister();
      return OVI_SUCCESS;
    });
  }
  removeModule<Event>(eventHandle);
  return result;
}

oviErr oviGetImageSize(std::uint64_t deviceHandle, std::int64_t* size) {
  return size == nullptr ? OVI_ERR_INVALID_PARAMETER
                         : OVI::oviGetFeatureInt(deviceHandle, "PayloadSize", size, OVI_MODULE_REMOTE_DEVICE);
}

}  // namespace OVI
