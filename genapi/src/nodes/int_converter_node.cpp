// Limits of IntConverter nodes.
#include "nodes/int_converter_node.h"

#include <algorithm>

namespace GenApiEngine {

// An integer converter that does not state its slope has no range at all; programs of the field count on that.
std::int64_t IntConverterNode::intMin() {
  const ValueDescent descent(*this, state_, 0);
  return converter_.slope() == Api::_UndefinedESlope ? 0 : converter_.limits(*this).first;
}

std::int64_t IntConverterNode::intMax() {
  const ValueDescent descent(*this, state_, 0);
  return converter_.slope() == Api::_UndefinedESlope ? 0 : converter_.limits(*this).second;
}

void IntConverterNode::validInts(std::vector<std::int64_t>& values) {
  const ValueDescent descent(*this, state_, 0);
  std::vector<std::int64_t> raw;
  if (NodeCore* const source = converter_.source(*this)) {
    source->validInts(raw);
  }
  for (const std::int64_t value : raw) {
    values.push_back(converter_.fromSource(*this, value));
  }
  std::ranges::sort(values);
}

}  // namespace GenApiEngine
