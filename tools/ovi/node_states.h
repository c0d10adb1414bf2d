// Nodes of a module as they are at one moment: features, and what lies behind them.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "module_view.h"

namespace tool {

struct NodeState {
  std::uint32_t access = OVI_ACCESS_UNDEFINED;
  bool isFeature = false;
  std::string value;                  ///< as text; empty when it cannot be read
  std::optional<bool> yes;            ///< whether its value is not zero, when it has a number that can be read
  std::vector<std::string> children;  ///< what it is made of and depends on; after takeAround only
};

class NodeStates {
 public:
  /// The view must live until detach().
  explicit NodeStates(const ModuleView& view) : view_(&view) {}

  /// The node's state when it was first asked for. Nobody knows one that was not asked for before detach().
  const NodeState& of(const std::string& node);
  /// Asks for a node and everything that it depends on, within reason.
  void takeAround(const std::string& node);
  void detach() { view_ = nullptr; }

 private:
  NodeState ask(const std::string& node) const;

  const ModuleView* view_;
  std::map<std::string, NodeState> states_;
};

}  // namespace tool
