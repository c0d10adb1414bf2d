// Where the text of String nodes comes from.
#include "nodes/string_node.h"

#include "nodemap/node_map.h"

namespace GenApiEngine {

EAccessMode StringNode::naturalAccess() {
  NodeCore* const source = other(source_);
  return source == nullptr ? Api::RW : source->accessMode();
}

void StringNode::fetchString(std::string& out, ReadFlags flags) {
  if (NodeCore* const source = other(source_)) {
    source->readString(out, flags);
  } else {
    out = constant_;
  }
}

void StringNode::storeString(std::string_view value, bool verify) {
  if (NodeCore* const source = other(source_)) {
    source->writeString(value, verify);
  } else {
    constant_ = value;
    map().markWritten(index());
  }
}

std::int64_t StringNode::maxLength() {
  const ValueDescent descent(*this, state_, 0);
  NodeCore* const source = other(source_);
  return source == nullptr ? std::numeric_limits<std::int64_t>::max() : source->maxLength();
}

}  // namespace GenApiEngine
