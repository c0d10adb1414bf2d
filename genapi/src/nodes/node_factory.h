// Makes the node object for each kind of node.
#pragma once

#include <cstddef>

#include "nodes/node_core.h"

namespace GenApiEngine {

std::size_t sizeOfNode(NodeKind kind);

/// Makes the node in the map's arena.
NodeCore* makeNode(NodeMap& map, NodeIndex index);

}  // namespace GenApiEngine
