// The parsed, immutable form of a camera description, shared by all node maps that are made of it.
#pragma once

#include <bit>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "model/elements.h"
#include "model/text.h"

namespace GenApiEngine {

using NodeIndex = std::uint32_t;
inline constexpr NodeIndex kNoNode = 0xFFFFFFFFU;

/// One child element or attribute of a node.
struct Property {
  std::uint32_t text = 0;              ///< where its text starts
  std::uint32_t lengthAndElement = 0;  ///< 24 bits of length, 8 bits of element
  std::uint32_t attribute = 0;         ///< where the text of its attribute starts, NUL-terminated; 0 for none
  std::uint32_t target = kNoNode;      ///< the node that a reference means, or the number's place

  Element element() const { return static_cast<Element>(lengthAndElement & 0xFFU); }
  std::uint32_t length() const { return lengthAndElement >> 8; }
};

/// What the model knows of a node beside its properties.
struct NodeRecord {
  std::uint32_t name = 0;
  std::uint32_t nameLength = 0;
  std::uint32_t firstProperty = 0;
  std::uint32_t propertyCount = 0;
  NodeIndex owner = kNoNode;  ///< the enumeration of an entry
  NodeKind kind = Element::Node;
  bool standard : 1 = false;   ///< in the standard name space
  bool feature : 1 = false;    ///< reachable from Root through categories
  bool broken : 1 = false;     ///< cannot be built: not implemented
  bool inCycle : 1 = false;    ///< its value would need itself
  bool guarded : 1 = false;    ///< other nodes or an imposed mode restrict its access
  bool hasErrors : 1 = false;  ///< error nodes report on its writes
  bool polled : 1 = false;     ///< has a polling time
};

/// A node that depends on another, and how.
struct Dependent {
  std::uint32_t bits;
  NodeIndex node() const { return bits & 0x1FFFFFFFU; }
  Link link() const { return static_cast<Link>(bits >> 29); }
  static Dependent of(NodeIndex node, Link link) { return {node | (static_cast<std::uint32_t>(link) << 29)}; }
};

/// Something in a description that was forgiven.
struct ModelWarning {
  std::uint32_t line;
  std::string text;
};

/// What RegisterDescription says of the whole.
struct DescriptionInfo {
  std::string modelName, vendorName, toolTip, standardNameSpace, productGuid, versionGuid;
  std::uint16_t schema[3] = {1, 1, 0};
  std::uint16_t version[3] = {0, 0, 0};
};

/// Nanoseconds that the steps of loading took.
struct ModelTimes {
  std::int64_t prepare = 0;  ///< copying and converting the text
  std::int64_t parse = 0;    ///< the XML parser
  std::int64_t build = 0;    ///< records and properties
  std::int64_t link = 0;     ///< references, dependents, cycles
};

class Model {
 public:
  std::span<const NodeRecord> nodes() const { return nodes_; }
  const NodeRecord& node(NodeIndex index) const { return nodes_[index]; }
  std::span<const Property> properties(const NodeRecord& node) const {
    return std::span(properties_).subspan(node.firstProperty, node.propertyCount);
  }
  /// The first property of that element, or null.
  const Property* find(const NodeRecord& node, Element element) const;

  std::string_view name(const NodeRecord& node) const { return {text_.get() + node.name, node.nameLength}; }
  /// The name under which the node map knows the node; for an entry it holds its enumeration's name.
  std::string fullName(const NodeRecord& node) const;
  void appendFullName(std::string& text, const NodeRecord& node) const;
  std::string_view text(const Property& property) const { return {text_.get() + property.text, property.length()}; }
  const char* attribute(const Property& property) const { return text_.get() + property.attribute; }
  /// Whether blanks stood around the text.
  bool isPadded(const Property& property) const;
  bool hasNumber(const Property& property) const { return property.target != kNoNode; }
  std::int64_t integer(const Property& property) const { return numbers_[property.target]; }
  double number(const Property& property) const { return std::bit_cast<double>(numbers_[property.target]); }

  /// The index of the node of that name, with or without name-space prefix; kNoNode when there is none.
  NodeIndex indexOf(std::string_view full) const;

  /// Nodes whose caches fall when that node's do.
  std::span<const Dependent> dependents(NodeIndex index) const {
    return std::span(dependents_)
        .subspan(dependentsStart_[index], dependentsStart_[index + 1] - dependentsStart_[index]);
  }

  /// The selectors of that node, in document order.
  std::span<const std::pair<NodeIndex, NodeIndex>> selectorsOf(NodeIndex index) const;

  std::size_t propertyCount() const { return properties_.size(); }
  std::size_t linkCount() const { return dependents_.size(); }
  const DescriptionInfo& info() const { return info_; }
  std::span<const ModelWarning> warnings() const { return warnings_; }
  std::size_t warningsSuppressed() const { return warningsSuppressed_; }
  const ModelTimes& times() const { return times_; }
  std::size_t textBytes() const { return textSize_; }
  /// What the model holds in memory, its text included.
  std::size_t memoryBytes() const;
  /// Nodes with a polling time, ports, and nodes with an event ID: the few that a node map visits apart.
  std::span<const NodeIndex> polled() const { return polled_; }
  std::span<const NodeIndex> ports() const { return ports_; }

 private:
  friend class ModelBuilder;
  friend class ModelLinker;

  // The name is repeated here, so that a look-up goes through no record.
  struct IndexSlot {
    static constexpr std::uint32_t kComposed = 0xFFFFFFFFU;  // as length: an entry, whose name is put together
    std::uint32_t hash = 0;
    NodeIndex node = kNoNode;
    std::uint32_t name = 0;
    std::uint32_t length = 0;
  };

  NodeIndex findName(std::string_view full) const;
  bool matches(const IndexSlot& slot, std::uint32_t hash, std::string_view full) const {
    return slot.hash == hash && (slot.length == IndexSlot::kComposed
                                     ? hasFullName(nodes_[slot.node], full)
                                     : slot.length == full.size() && sameText(text_.get() + slot.name, full));
  }
  bool hasFullName(const NodeRecord& node, std::string_view full) const;

  std::unique_ptr<char[]> text_;
  std::size_t textSize_ = 0;
  std::vector<NodeRecord> nodes_;
  std::vector<Property> properties_;
  std::vector<std::int64_t> numbers_;  // integers, or the bits of doubles
  std::vector<Dependent> dependents_;
  std::vector<std::uint32_t> dependentsStart_;
  std::vector<IndexSlot> index_;                            // open addressing, a power of two
  std::vector<std::pair<NodeIndex, NodeIndex>> selectors_;  // selected node and its selector, sorted by the first
  std::vector<NodeIndex> polled_;
  std::vector<NodeIndex> ports_;
  DescriptionInfo info_;
  std::vector<ModelWarning> warnings_;
  std::size_t warningsSuppressed_ = 0;
  ModelTimes times_;
};

}  // namespace GenApiEngine
