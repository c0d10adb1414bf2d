// Limits and increment of Converter nodes.
#include "nodes/converter_node.h"

#include <algorithm>
#include <cmath>

namespace GenApiEngine {

double ConverterNode::floatMin() {
  const ValueDescent descent(*this, state_, 0);
  return converter_.limits(*this).first;
}

double ConverterNode::floatMax() {
  const ValueDescent descent(*this, state_, 0);
  return converter_.limits(*this).second;
}

// Only a linear formula makes even steps of even steps.
bool ConverterNode::floatInc(double& increment) {
  const ValueDescent descent(*this, state_, 0);
  double raw = 0.0;
  NodeCore* const source = converter_.source(*this);
  if (source == nullptr || !parseYesNo(propertyText(Element::IsLinear), false) || !source->floatInc(raw)) {
    return false;
  }
  const double min = source->floatMin();
  const double start = min == -DBL_MAX ? 0.0 : min;
  increment = std::fabs(converter_.fromSource(*this, start + raw) - converter_.fromSource(*this, start));
  return true;
}

void ConverterNode::validFloats(std::vector<double>& values) {
  const ValueDescent descent(*this, state_, 0);
  std::vector<double> raw;
  if (NodeCore* const source = converter_.source(*this)) {
    source->validFloats(raw);
  }
  for (const double value : raw) {
    values.push_back(converter_.fromSource(*this, value));
  }
  std::ranges::sort(values);
}

}  // namespace GenApiEngine
