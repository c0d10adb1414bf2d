// Limits of Float nodes: their own, narrowed by those of what they stand for.
#include "nodes/float_node.h"

#include "nodes/property_values.h"

namespace GenApiEngine {

double FloatNode::floatMin() {
  const ValueDescent descent(*this, state_, 0);
  double min = limits_.min(*this, -DBL_MAX);
  source_.forEachTarget(*this, [&min](NodeCore& target) { min = std::max(min, target.floatMin()); });
  return min;
}

double FloatNode::floatMax() {
  const ValueDescent descent(*this, state_, 0);
  double max = limits_.max(*this, DBL_MAX);
  source_.forEachTarget(*this, [&max](NodeCore& target) { max = std::min(max, target.floatMax()); });
  return max;
}

bool FloatNode::floatInc(double& increment) {
  const ValueDescent descent(*this, state_, 0);
  if (limits_.hasInc()) {
    increment = limits_.inc(*this, 1.0);
    return true;
  }
  NodeCore* const source = source_.node(*this);
  return source != nullptr && source->floatInc(increment);
}

void FloatNode::validFloats(std::vector<double>& values) {
  const ValueDescent descent(*this, state_, 0);
  values = validFloatsFrom(propertyText(Element::ValidValueSet));
  if (NodeCore* const source = values.empty() ? source_.node(*this) : nullptr) {
    source->validFloats(values);
  }
}

}  // namespace GenApiEngine
