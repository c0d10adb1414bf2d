// The callbacks that an application has registered at one node.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "nodes/node_core.h"

namespace GenApiEngine {

/// The callbacks of one node. While some are being called, ended ones are only put aside.
struct NodeCore::Callbacks {
  std::vector<Api::CNodeCallback*> registered;
  std::vector<Api::CNodeCallback*> ended;
  std::uint32_t running = 0;

  void destroyEnded() {
    for (Api::CNodeCallback* callback : std::exchange(ended, {})) {
      callback->Destroy();
    }
  }
};

}  // namespace GenApiEngine
