// The end of the library's use, asked for by the application or by the end of the process.
#include "discovery/closing.h"

#include <cstdlib>

#include "core/global_state.h"
#include "core/handle_registry.h"
#include "core/log.h"
#include "core/log_setup.h"
#include "discovery/tl_discovery.h"
#include "exit_handler.h"
#include "gentl/module_lookup.h"

namespace OVI {

namespace {

void closeAtExit() {
  if (!isInitialized())
    return;
  setInitialized(false);  // First, so that threads which go on calling find nothing to do any more.
  detachCallback();
  endAllWaits();
  HandleRegistry::instance().clear();
  TLDiscovery::instance().closeAtExit();
}

}  // namespace

oviErr oviClose() {
  if (!isInitialized())
    return OVI_ERR_NOT_INITIALIZED;
  OVI_LOG_DEBUG("OVI::oviClose") << "Closing Kestrova GenTL consumer library.";
  endAllWaits();
  HandleRegistry::instance().clear();
  TLDiscovery::instance().closeAll();
  setInitialized(false);
  return OVI_SUCCESS;
}

void closeProducersAtExit() {
  static_cast<void>(std::atexit(closeAtExit));
}

}  // namespace OVI
