// Name look-up and texts of a model.
#include "model/model.h"

#include <algorithm>
#include <array>

#include "base/limits.h"

namespace GenApiEngine {
namespace {

constexpr std::string_view kEntryPrefix = "EnumEntry_";
constexpr std::array<std::string_view, 2> kNameSpaces{"Std::", "Cust::"};

}  // namespace

const Property* Model::find(const NodeRecord& node, Element element) const {
  const auto all = properties(node);
  const auto it = std::ranges::find_if(all, [element](const Property& p) { return p.element() == element; });
  return it == all.end() ? nullptr : &*it;
}

std::string Model::fullName(const NodeRecord& node) const {
  std::string full;
  appendFullName(full, node);
  return full;
}

void Model::appendFullName(std::string& text, const NodeRecord& node) const {
  if (node.owner != kNoNode) {
    text.append(kEntryPrefix).append(name(nodes_[node.owner])).push_back('_');
  }
  text.append(name(node));
}

bool Model::hasFullName(const NodeRecord& node, std::string_view full) const {
  const std::string_view own = name(node);
  if (node.owner == kNoNode) {
    return own == full;
  }
  const std::string_view enumeration = name(nodes_[node.owner]);
  const std::size_t prefix = kEntryPrefix.size() + enumeration.size() + 1;
  return full.size() == prefix + own.size() && full.starts_with(kEntryPrefix) && full.ends_with(own) &&
         full[prefix - 1] == '_' && full.substr(kEntryPrefix.size(), enumeration.size()) == enumeration;
}

NodeIndex Model::findName(std::string_view full) const {
  if (index_.empty()) {
    return kNoNode;
  }
  const std::uint32_t hash = hashText(full);
  const std::size_t mask = index_.size() - 1;
  std::size_t slot = hash & mask;
  do {
    const IndexSlot& entry = index_[slot];
    if (entry.node == kNoNode) {
      return kNoNode;
    }
    if (matches(entry, hash, full)) {
      return entry.node;
    }
    slot = (slot + 1) & mask;
  } while (((slot - hash) & mask) < kMaxProbes);
  return kNoNode;
}

NodeIndex Model::indexOf(std::string_view full) const {
  if (const NodeIndex found = findName(full); found != kNoNode) {
    return found;
  }
  for (const std::string_view prefix : kNameSpaces) {
    if (full.starts_with(prefix)) {
      return findName(full.substr(prefix.size()));
    }
  }
  return kNoNode;
}

// Where the parser cut blanks off a text's end it has put a NUL in place of the first; otherwise that stands in place
// of the next tag's bracket.
bool Model::isPadded(const Property& property) const {
  const char* const end = text_.get() + property.text + property.length();
  return isBlank(text_[property.text - 1]) || isBlank(*end) || (*end == '\0' && (isBlank(end[1]) || end[1] == '<'));
}

std::span<const std::pair<NodeIndex, NodeIndex>> Model::selectorsOf(NodeIndex index) const {
  const auto [first, last] = std::ranges::equal_range(selectors_, std::pair(index, NodeIndex{0}),
                                                      [](const auto& a, const auto& b) { return a.first < b.first; });
  return {first, last};
}

std::size_t Model::memoryBytes() const {
  const auto bytes = [](const auto& vector) { return vector.capacity() * sizeof(vector[0]); };
  return sizeof *this + textSize_ + 2 + bytes(nodes_) + bytes(properties_) + bytes(numbers_) + bytes(dependents_) +
         bytes(dependentsStart_) + bytes(index_) + bytes(polled_) + bytes(ports_) + bytes(warnings_);
}

}  // namespace GenApiEngine
