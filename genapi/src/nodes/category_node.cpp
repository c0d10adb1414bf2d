// What categories answer for their features.
#include "nodes/category_node.h"

#include <algorithm>
#include <vector>

namespace GenApiEngine {

void CategoryNode::GetFeatures(Api::FeatureList_t& features) const {
  features.clear();
  std::vector<NodeIndex> listed;
  for (const Property& property : properties()) {
    NodeCore* const member = property.element() == Element::pFeature ? other(property.target) : nullptr;
    if (member != nullptr && member->asValue() != nullptr) {
      listed.push_back(property.target);
    }
  }
  keepOnce(listed);
  std::ranges::for_each(listed, [&](NodeIndex index) { features.push_back(other(index)->asValue()); });
}

EAccessMode CategoryNode::naturalAccess() {
  for (const Property& property : properties()) {
    NodeCore* const member = property.element() == Element::pFeature ? other(property.target) : nullptr;
    if (member != nullptr && member != this && Api::IsImplemented(member->accessMode())) {
      return Api::RO;
    }
  }
  return Api::NI;
}

Api::EVisibility CategoryNode::ownVisibility() {
  if (isSet(kValueBusy)) {
    return Api::Invisible;
  }
  const ValueDescent descent(*this, state_, kValueBusy);
  Api::EVisibility lowest = Api::Invisible;
  bool any = false;
  for (const Property& property : properties()) {
    if (NodeCore* const member = property.element() == Element::pFeature ? other(property.target) : nullptr) {
      any = true;
      lowest = std::min(lowest, member->visibility());
    }
  }
  return any ? lowest : NodeCore::ownVisibility();
}

std::string CategoryNode::textValue(ReadFlags /*flags*/) {
  return GetDisplayName().c_str();
}

void CategoryNode::setText(std::string_view /*text*/, bool /*verify*/) {
  NODE_FAIL(*this, AccessException, "Node is not writable");
}

}  // namespace GenApiEngine
