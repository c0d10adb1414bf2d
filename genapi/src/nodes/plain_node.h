// Node nodes: just a name, guards and invalidators.
#pragma once

#include "nodes/node_core.h"

namespace GenApiEngine {

class PlainNode final : public NodeCore {
 public:
  using NodeCore::NodeCore;
};

}  // namespace GenApiEngine
