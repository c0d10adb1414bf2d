// The facts of one enumeration entry.
#include "nodes/enum_entry_node.h"

#include "model/text.h"
#include "nodemap/node_map.h"

namespace GenApiEngine {

EnumEntryNode::EnumEntryNode(NodeMap& map, NodeIndex index) : ValueNode(map, index) {
  const Model& model = map.model();
  if (const Property* value = property(Element::Value); value != nullptr && model.hasNumber(*value)) {
    value_ = model.integer(*value);
  }
  const Property* numeric = property(Element::NumericValue);
  numeric_ = numeric != nullptr && model.hasNumber(*numeric) ? model.number(*numeric) : static_cast<double>(value_);
}

std::string_view EnumEntryNode::symbolic() const {
  const std::string_view own = propertyText(Element::Symbolic);
  return own.empty() ? name() : own;
}

bool EnumEntryNode::IsSelfClearing() {
  return parseYesNo(propertyText(Element::IsSelfClearing), false);
}

void EnumEntryNode::setText(std::string_view /*text*/, bool /*verify*/) {
  NODE_FAIL(*this, AccessException, "Node is not writable");
}

}  // namespace GenApiEngine
