// Limits of Integer nodes: their own, narrowed by those of what they stand for.
#include "nodes/integer_node.h"

#include "nodes/property_values.h"

namespace GenApiEngine {

std::int64_t IntegerNode::intMin() {
  const ValueDescent descent(*this, state_, 0);
  std::int64_t min = limits_.min(*this, std::numeric_limits<std::int64_t>::min());
  source_.forEachTarget(*this, [&min](NodeCore& target) { min = std::max(min, target.intMin()); });
  return min;
}

std::int64_t IntegerNode::intMax() {
  const ValueDescent descent(*this, state_, 0);
  constexpr std::int64_t kNone = std::numeric_limits<std::int64_t>::max();
  // All ones below the minimum were meant as the largest number there is.
  std::int64_t max = limits_.maxIsAllOnes() && intMin() > -1 ? kNone : limits_.max(*this, kNone);
  source_.forEachTarget(*this, [&max](NodeCore& target) { max = std::min(max, target.intMax()); });
  return max;
}

std::int64_t IntegerNode::intInc() {
  const ValueDescent descent(*this, state_, 0);
  if (limits_.hasInc()) {
    return limits_.inc(*this, 1);
  }
  NodeCore* const source = source_.node(*this);
  return source == nullptr ? 1 : source->intInc();
}

void IntegerNode::validInts(std::vector<std::int64_t>& values) {
  const ValueDescent descent(*this, state_, 0);
  values = validIntegersFrom(propertyText(Element::ValidValueSet));
  if (NodeCore* const source = values.empty() ? source_.node(*this) : nullptr) {
    source->validInts(values);
  }
}

}  // namespace GenApiEngine
