// Switches of the process.
#include "core/global_state.h"

#include "core/log.h"

namespace OVI {

GlobalState& GlobalState::instance() {
  static GlobalState state;
  return state;
}

void GlobalState::setIgnoreSubnetEnabled(bool enabled) {
  const std::lock_guard lock(mutex_);
  ignoreSubnetEnabled_.store(enabled);
  OVI_LOG_INFO("OVI::GlobalState::setIgnoreSubnetEnabled")
      << "Ignore subnet is now: " << (enabled ? "Enabled" : "Disabled");
}

}  // namespace OVI
