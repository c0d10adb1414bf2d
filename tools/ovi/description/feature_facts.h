// What a description says about features that the library's interface does not tell.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace tool {

class Description;

/// Another node that decides whether a node can be used.
struct Guard {
  enum class Decides { kImplemented, kAvailable, kLocked };

  Decides decides;
  std::string node;
};

/// A feature that belongs to the settings of a camera.
struct StreamableFeature {
  std::string name;
  std::vector<std::string> selectors;  ///< outermost first
};

class FeatureFacts {
 public:
  enum class Limit { kMinimum, kMaximum, kStep };

  /// @param name  for messages
  /// Throws ToolError for a content that is no description.
  FeatureFacts(const std::string& name, std::string content);
  ~FeatureFacts();
  FeatureFacts(const FeatureFacts&) = delete;
  FeatureFacts& operator=(const FeatureFacts&) = delete;

  /// The features that are marked as streamable, in the description's order.
  std::vector<StreamableFeature> streamable() const;

  bool isFeature(const std::string& node) const;
  std::vector<Guard> guards(const std::string& node) const;
  /// What the node's AccessMode and ImposedAccessMode leave: "RO", "WO" or "RW"; for a register without either, "RO".
  std::string fixedAccess(const std::string& node) const;
  /// What fills the node's memory when its port has none of its own: "an event" or "chunk data"; else empty.
  std::string filledBy(const std::string& node) const;
  /// Whether the value is computed, so that it cannot be written.
  bool isFormula(const std::string& node) const;
  /// Nodes that the value is read from and written to.
  std::vector<std::string> valueSources(const std::string& node) const;
  /// Nodes that the value comes from or is computed from.
  std::vector<std::string> terms(const std::string& node) const;
  /// All nodes that must be there for the node to be: terms, limits, and what tells where a register lies.
  std::vector<std::string> needs(const std::string& node) const;
  /// The nodes of an enumeration's entries.
  std::vector<std::string> entries(const std::string& node) const;
  /// Nodes that limit the value, own and of its sources.
  std::vector<std::string> limits(const std::string& node, Limit limit) const;

 private:
  std::unique_ptr<Description> description_;
};

}  // namespace tool
