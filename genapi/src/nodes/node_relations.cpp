// What a node tells of its description: its properties, and the nodes that it depends on or that depend on it.
#include <algorithm>
#include <array>
#include <iterator>
#include <span>
#include <utility>

#include "model/text.h"
#include "nodemap/node_map.h"
#include "nodes/node_core.h"

namespace GenApiEngine {

// Properties.

void NodeCore::GetPropertyNames(gcstring_vector& names) const {
  names.clear();
  names.push_back("Name");
  std::array<bool, static_cast<std::size_t>(Element::Unknown) + 1> listed{};
  for (const Property& property : properties()) {
    bool& known = listed[static_cast<std::size_t>(property.element())];
    // The node of an offset is the attribute of the index before it.
    if (property.length() != 0 && property.element() != Element::pOffset && !std::exchange(known, true)) {
      names.push_back(toGc(infoOf(property.element()).name));
    }
  }
}

bool NodeCore::GetProperty(const gcstring& name, gcstring& value, gcstring& attribute) {
  value = gcstring();
  attribute = gcstring();
  const Model& model = map_.model();
  if (name == "Name") {
    value = GetName(false);
    return true;
  }
  std::string values;
  std::string attributes;
  bool found = false;
  const std::span<const Property> all = properties();
  for (std::size_t i = 0; i < all.size(); ++i) {
    const Property& property = all[i];
    if (property.length() == 0 || property.element() == Element::pOffset ||
        infoOf(property.element()).name != name.c_str()) {
      continue;
    }
    if (std::exchange(found, true)) {
      values += '\t';
      attributes += '\t';
    }
    NodeCore* const entry = property.element() == Element::pEnumEntry ? other(property.target) : nullptr;
    values += entry != nullptr ? entry->nodeName() : toUtf8(model.text(property));
    const std::string_view own = trim(model.attribute(property));
    const bool hasNodeForIt = own.empty() && i + 1 < all.size() && all[i + 1].element() == Element::pOffset;
    attributes += hasNodeForIt ? model.text(all[i + 1]) : own;
  }
  if (found) {
    value = toGc(values);
    attribute = attributes.find_first_not_of('\t') == std::string::npos ? gcstring() : toGc(attributes);
  }
  return found;
}

// Relations.

void NodeCore::GetChildren(Api::NodeList_t& children, Api::ELinkType linkType) const {
  children.clear();
  std::vector<NodeIndex> found;
  const auto atLeast = [&](Link link) {
    for (const Property& property : properties()) {
      if (infoOf(property.element()).link >= link && property.target != kNoNode) {
        found.push_back(property.target);
      }
    }
  };
  switch (linkType) {
    case Api::ctParentNodes:
      GetParents(children);
      return;
    case Api::ctReadingChildren:
      atLeast(Link::Reads);
      break;
    case Api::ctWritingChildren:
      atLeast(Link::Writes);
      break;
    case Api::ctInvalidatingChildren:
      atLeast(Link::Invalidates);
      break;
    case Api::ctValueChangingChildren:
      atLeast(Link::Computes);
      break;
    case Api::ctTerminalNodes:
      collectTerminals(found);
      break;
    case Api::ctDependingNodes: {
      std::vector<bool> seen(map_.GetNumNodes());
      seen[index_] = true;
      std::vector<NodeIndex> open{index_};
      for (std::size_t at = 0; at < open.size(); ++at) {
        for (const Dependent dependent : map_.model().dependents(open[at])) {
          if (!seen[dependent.node()]) {
            seen[dependent.node()] = true;
            open.push_back(dependent.node());
            found.push_back(dependent.node());
          }
        }
      }
      break;
    }
  }
  keepOnce(found);
  std::ranges::for_each(found, [&](NodeIndex index) { children.push_back(other(index)); });
}

void NodeCore::collectTerminals(std::vector<NodeIndex>& out) const {
  std::vector<bool> seen(map_.GetNumNodes());
  std::vector<NodeIndex> open{index_};
  seen[index_] = true;
  while (!open.empty()) {
    const NodeIndex at = open.back();
    open.pop_back();
    bool terminal = true;
    for (const Property& property : map_.model().properties(map_.model().node(at))) {
      if (infoOf(property.element()).link == Link::Writes && property.target != kNoNode) {
        terminal = false;
        if (!seen[property.target]) {
          seen[property.target] = true;
          open.push_back(property.target);
        }
      }
    }
    if (terminal) {
      out.push_back(at);
    }
  }
}

void NodeCore::GetParents(Api::NodeList_t& parents) const {
  parents.clear();
  std::vector<NodeIndex> found;
  std::ranges::transform(map_.model().dependents(index_), std::back_inserter(found), &Dependent::node);
  keepOnce(found);
  std::ranges::for_each(found, [&](NodeIndex index) { parents.push_back(other(index)); });
}

void NodeCore::keepOnce(std::vector<NodeIndex>& nodes) const {
  std::vector<bool> seen(map_.GetNumNodes());
  std::erase_if(nodes, [&](NodeIndex index) {
    const bool known = seen[index];
    seen[index] = true;
    return known;
  });
}

bool NodeCore::IsSelector() const {
  return propertyNode(Element::pSelected) != kNoNode;
}

void NodeCore::GetSelectedFeatures(Api::FeatureList_t& features) const {
  features.clear();
  for (const Property& property : properties()) {
    NodeCore* const selected = property.element() == Element::pSelected ? other(property.target) : nullptr;
    if (selected != nullptr && selected->asValue() != nullptr) {
      features.push_back(selected->asValue());
    }
  }
}

void NodeCore::GetSelectingFeatures(Api::FeatureList_t& features) const {
  features.clear();
  for (const auto& [selected, selector] : map_.model().selectorsOf(index_)) {
    if (Api::IValue* const value = other(selector)->asValue()) {
      features.push_back(value);
    }
  }
}

}  // namespace GenApiEngine
