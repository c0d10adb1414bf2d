// Nodes of a module as they are at one moment: features, and what lies behind them.
#include "node_states.h"

#include <algorithm>
#include <array>
#include <utility>

#include "feature_view.h"
#include "platform/console.h"

namespace tool {

namespace {

// What a number says as an answer to yes or no. A float's text also gets all of its digits.
std::optional<bool> saysYes(const ModuleView& view, const char* node, std::uint32_t type, std::string& text) {
  const std::uint64_t handle = view.handle();
  if (type == OVI_FEATURE_BOOLEAN) {
    bool value = false;
    if (oviGetFeatureBool(handle, node, &value, view.selector()) == OVI_SUCCESS)
      return value;
  } else if (type == OVI_FEATURE_INTEGER) {
    std::int64_t value = 0;
    if (oviGetFeatureInt(handle, node, &value, view.selector()) == OVI_SUCCESS)
      return value != 0;
  } else if (type == OVI_FEATURE_FLOAT) {
    double value = 0;
    if (oviGetFeatureFloat(handle, node, &value, view.selector()) != OVI_SUCCESS)
      return std::nullopt;
    text = numberText(value);
    return value != 0;
  } else if (type == OVI_FEATURE_ENUMERATION) {
    ovi::FeatureParameter entry{};
    if (oviGetFeatureEnum(handle, node, &entry, view.selector()) == OVI_SUCCESS)
      return entry.intValue != 0;
  }
  return std::nullopt;
}

}  // namespace

const NodeState& NodeStates::of(const std::string& node) {
  const auto [entry, isNew] = states_.try_emplace(node);
  if (isNew && view_ != nullptr)
    entry->second = ask(node);
  return entry->second;
}

void NodeStates::takeAround(const std::string& node) {
  // Far more than stands between a feature and what decides about it.
  constexpr std::size_t kMaxNodes = 400;
  std::vector<std::string> open{node};
  for (std::size_t next = 0; next < open.size(); ++next) {
    const std::string name = open[next];
    of(name);
    std::vector<std::string> children = view_->feature(name).children();
    for (std::string& child : children) {
      child = fromLibraryText(child);
      if (open.size() < kMaxNodes && std::ranges::find(open, child) == open.end())
        open.push_back(child);
    }
    states_[name].children = std::move(children);
  }
}

NodeState NodeStates::ask(const std::string& node) const {
  NodeState state;
  ovi::FeatureParameter record{};
  const ovi::Feature feature = view_->feature(node);
  const char* const name = feature.name().c_str();
  if (oviGetFeatureParameter(view_->handle(), name, &record, view_->selector()) == OVI_ERR_NOT_FOUND)
    return state;
  state.access = record.accessMode;
  state.isFeature = record.isFeature;
  std::array<char, 512> text{};
  if (!isReadable(record) || record.featureType == OVI_FEATURE_REGISTER ||
      oviGetFeatureOnModule(view_->handle(), name, text.data(), view_->selector()) != OVI_SUCCESS)
    return state;
  state.value = fromLibraryText(text.data());
  state.yes = saysYes(*view_, name, record.featureType, state.value);
  return state;
}

}  // namespace tool
