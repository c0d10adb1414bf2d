// What a description says about features that the library's interface does not tell.
#include "description/feature_facts.h"

#include <GenApi/GenApi.h>

#include <algorithm>
#include <array>
#include <set>
#include <string_view>

#include "description/description.h"
#include "description/test_port.h"
#include "text.h"

namespace tool {

namespace {

constexpr std::array kSources = {"pValue", "pValueCopy", "pValueIndexed", "pValueDefault"};
constexpr std::array kOtherNeeds = {"pMin", "pMax", "pInc", "pIndex", "pOffset", "pAddress", "pLength"};

// What the elements of that name hold: a node's name each, or a word.
std::vector<std::string> property(GenApi::INode& node, const char* element) {
  GenICam::gcstring value;
  GenICam::gcstring attribute;
  if (!node.GetProperty(element, value, attribute))
    return {};
  return split({value.c_str(), value.size()}, "\t\r\n ");
}

std::string firstWord(GenApi::INode& node, const char* element) {
  const std::vector<std::string> words = property(node, element);
  return words.empty() ? std::string() : words.front();
}

template<class Elements>
std::vector<std::string> references(GenApi::INode* node, const Elements& elements) {
  std::vector<std::string> names;
  for (const char* element : elements) {
    if (node == nullptr)
      break;
    const std::vector<std::string> held = property(*node, element);
    names.insert(names.end(), held.begin(), held.end());
  }
  return names;
}

// Selectors of selectors come before those that they select.
void collectSelectors(GenApi::INode& node, std::vector<std::string>& selectors, std::set<std::string>& seen) {
  const auto* const selected = dynamic_cast<GenApi::ISelector*>(&node);
  if (selected == nullptr || !seen.insert(node.GetName().c_str()).second)
    return;
  GenApi::FeatureList_t selecting;
  selected->GetSelectingFeatures(selecting);
  for (GenApi::IValue* const value : selecting) {
    GenApi::INode& selector = *value->GetNode();
    collectSelectors(selector, selectors, seen);
    const std::string name = selector.GetName().c_str();
    if (&selector != &node && std::ranges::find(selectors, name) == selectors.end())
      selectors.push_back(name);
  }
}

GenApi::INode* nodeOf(const Description& description, const std::string& name) {
  return description.nodeMap().GetNode(name.c_str());
}

}  // namespace

FeatureFacts::FeatureFacts(const std::string& name, std::string content)
    : description_(std::make_unique<Description>(name, std::move(content), makeZeroPort())) {}

FeatureFacts::~FeatureFacts() = default;

std::vector<StreamableFeature> FeatureFacts::streamable() const {
  GenApi::NodeList_t nodes;
  description_->nodeMap().GetNodes(nodes);
  std::vector<StreamableFeature> features;
  for (GenApi::INode* const node : nodes) {
    const GenApi::EInterfaceType type = node->GetPrincipalInterfaceType();
    if (!node->IsStreamable() || !node->IsFeature() || type == GenApi::intfICommand || type == GenApi::intfICategory)
      continue;
    StreamableFeature& feature = features.emplace_back(StreamableFeature{node->GetName().c_str(), {}});
    std::set<std::string> seen;
    collectSelectors(*node, feature.selectors, seen);
  }
  return features;
}

bool FeatureFacts::isFeature(const std::string& node) const {
  const GenApi::INode* const found = nodeOf(*description_, node);
  return found != nullptr && found->IsFeature();
}

std::vector<Guard> FeatureFacts::guards(const std::string& node) const {
  std::vector<Guard> guards;
  for (const auto& [element, decides] :
       {std::pair("pIsImplemented", Guard::Decides::kImplemented),
        std::pair("pIsAvailable", Guard::Decides::kAvailable), std::pair("pIsLocked", Guard::Decides::kLocked)})
    for (const std::string& guard : references(nodeOf(*description_, node), std::array{element}))
      guards.push_back({decides, guard});
  return guards;
}

std::string FeatureFacts::fixedAccess(const std::string& node) const {
  GenApi::INode* const found = nodeOf(*description_, node);
  if (found == nullptr)
    return "RW";
  if (std::string imposed = firstWord(*found, "ImposedAccessMode"); imposed == "RO" || imposed == "WO")
    return imposed;
  std::string own = firstWord(*found, "AccessMode");
  if (own.empty())
    return dynamic_cast<GenApi::IRegister*>(found) != nullptr ? "RO" : "RW";
  return own;
}

std::string FeatureFacts::filledBy(const std::string& node) const {
  for (const std::string& name : references(nodeOf(*description_, node), std::array{"pPort"})) {
    GenApi::INode* const port = nodeOf(*description_, name);
    if (port != nullptr && !firstWord(*port, "EventID").empty())
      return "an event";
    if (port != nullptr && !firstWord(*port, "ChunkID").empty())
      return "chunk data";
  }
  return {};
}

bool FeatureFacts::isFormula(const std::string& node) const {
  GenApi::INode* const found = nodeOf(*description_, node);
  return found != nullptr && !firstWord(*found, "Formula").empty();
}

std::vector<std::string> FeatureFacts::valueSources(const std::string& node) const {
  return references(nodeOf(*description_, node), kSources);
}

std::vector<std::string> FeatureFacts::terms(const std::string& node) const {
  std::vector<std::string> names = valueSources(node);
  const std::vector<std::string> variables = references(nodeOf(*description_, node), std::array{"pVariable"});
  names.insert(names.end(), variables.begin(), variables.end());
  return names;
}

std::vector<std::string> FeatureFacts::needs(const std::string& node) const {
  std::vector<std::string> names = terms(node);
  const std::vector<std::string> others = references(nodeOf(*description_, node), kOtherNeeds);
  names.insert(names.end(), others.begin(), others.end());
  return names;
}

std::vector<std::string> FeatureFacts::entries(const std::string& node) const {
  return references(nodeOf(*description_, node), std::array{"pEnumEntry"});
}

std::vector<std::string> FeatureFacts::limits(const std::string& node, Limit limit) const {
  const char* const element = limit == Limit::kMinimum ? "pMin" : limit == Limit::kMaximum ? "pMax" : "pInc";
  std::vector<std::string> names;
  std::set<std::string> seen;
  for (std::vector<std::string> open{node}; !open.empty();) {
    const std::string one = open.back();
    open.pop_back();
    if (!seen.insert(one).second)
      continue;
    const std::vector<std::string> own = references(nodeOf(*description_, one), std::array{element});
    names.insert(names.end(), own.begin(), own.end());
    const std::vector<std::string> sources = valueSources(one);
    open.insert(open.end(), sources.begin(), sources.end());
  }
  return names;
}

}  // namespace tool
