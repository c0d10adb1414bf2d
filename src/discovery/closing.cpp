// The end of the library's use, asked for by the application or by the end of the process.
#include "discovery/closing.h"

#include <atomic>
#include <vector>

#include "core/global_state.h"
#include "core/handle_registry.h"
#include "core/log.h"
#include "core/log_setup.h"
#include "discovery/tl_discovery.h"
#include "exit_handler.h"
#include "gentl/base_module.h"
#include "gentl/event.h"
#include "gentl/module_lookup.h"
#include "platform/platform.h"

namespace OVI {

namespace {

// Drops every handle. Events are unregistered and streams and devices closed here and now, in this order, also when a
// thread whose wait was just ended still holds one for a moment: behind it the producer closes.
void closeModules() {
  HandleRegistry& registry = HandleRegistry::instance();
  for (const HandleRegistry::Module& event : registry.modulesOfKind(ModuleKind::Event))
    static_cast<GenTLCpp::Event&>(*event).unregisterBeforeClose();
  const std::vector<HandleRegistry::Module> streams = registry.modulesOfKind(ModuleKind::DataStream);
  const std::vector<HandleRegistry::Module> devices = registry.modulesOfKind(ModuleKind::Device);
  registry.clear();
  for (const HandleRegistry::Module& stream : streams)
    stream->close();
  for (const HandleRegistry::Module& device : devices)
    device->close();
}

std::atomic<unsigned long> openingProcess{0};  // The latest that has loaded producers.

void closeAtExit() {
  if (!isInitialized())
    return;
  setInitialized(false);  // First, so that threads which go on calling find nothing to do any more.
  detachCallback();
  // A forked child has the producers but not their threads: their closing would wait for them for ever, and belongs to
  // the parent.
  if (platform::processId() != openingProcess)
    return;
  endAllWaits();
  closeModules();
  TLDiscovery::instance().closeAtExit();
}

}  // namespace

oviErr oviClose() {
  if (!isInitialized())
    return OVI_ERR_NOT_INITIALIZED;
  OVI_LOG_DEBUG("OVI::oviClose") << "Closing Kestrova GenTL consumer library.";
  endAllWaits();
  closeModules();
  TLDiscovery::instance().closeAll();
  setInitialized(false);
  return OVI_SUCCESS;
}

void closeProducersAtExit() {
  openingProcess = platform::processId();
  platform::callAtExit(closeAtExit);
}

}  // namespace OVI
