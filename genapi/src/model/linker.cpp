// Resolves once what a description says by name: duplicates, references, who depends on whom, features, cycles.
#include <algorithm>
#include <bit>
#include <iterator>
#include <numeric>
#include <string_view>
#include <unordered_set>

#include "Base/GCException.h"
#include "base/limits.h"
#include "base/number_text.h"
#include "model/builder_detail.h"

namespace GenApiEngine {

void ModelLinker::link() {
  indexNames();
  mergeCategories();
  if (anyDropped_) {
    removeDropped();
  }
  resolveReferences();
  collectDependents();
  markFeatures();
  markCycles();
}

void ModelLinker::indexNames() {
  const std::size_t count = model_.nodes_.size();
  model_.index_.assign(std::bit_ceil(std::max<std::size_t>(16, count + count / 3)), {});
  dropped_.assign(count, false);
  std::string scratch;
  for (NodeIndex i = 0; i < count; ++i) {
    const NodeRecord& record = model_.nodes_[i];
    std::string_view full = model_.name(record);
    if (record.owner != kNoNode) {
      scratch.clear();
      model_.appendFullName(scratch, record);
      full = scratch;
    }
    if ((record.owner != kNoNode && dropped_[record.owner]) || !insertName(i, full)) {
      dropped_[i] = true;
      anyDropped_ = true;
    }
  }
}

// False when another node keeps the name.
bool ModelLinker::insertName(NodeIndex index, std::string_view full) {
  const std::uint32_t hash = hashText(full);
  const std::size_t mask = model_.index_.size() - 1;
  std::size_t slot = hash & mask;
  for (; model_.index_[slot].node != kNoNode; slot = (slot + 1) & mask) {
    if (((slot - hash) & mask) >= kMaxProbes - 1) {
      warn(model_.nodes_[index], "'" + std::string(full) + "' is skipped, as many names were made to resemble it");
      return false;
    }
    Model::IndexSlot& taken = model_.index_[slot];
    if (model_.matches(taken, hash, full)) {
      const NodeIndex loser = resolveDuplicate(taken.node, index);
      if (loser == index) {
        return false;
      }
      dropped_[loser] = true;
      anyDropped_ = true;
      taken = slotOf(hash, index);
      return true;
    }
  }
  model_.index_[slot] = slotOf(hash, index);
  return true;
}

Model::IndexSlot ModelLinker::slotOf(std::uint32_t hash, NodeIndex index) const {
  const NodeRecord& record = model_.nodes_[index];
  return {hash, index, record.name, record.owner == kNoNode ? record.nameLength : Model::IndexSlot::kComposed};
}

// Which of two nodes with one name is dropped.
NodeIndex ModelLinker::resolveDuplicate(NodeIndex first, NodeIndex second) {
  const NodeRecord& a = model_.nodes_[first];
  const NodeRecord& b = model_.nodes_[second];
  const bool injected = documentOfNode_[first] != documentOfNode_[second];
  if (a.kind == NodeKind::Category && b.kind == NodeKind::Category) {
    merges_.emplace_back(first, second);
    if (!injected) {
      warn(b, "category '" + model_.fullName(b) + "' is defined twice, its features are joined");
    }
    return second;
  }
  if (injected) {
    const Property* property = model_.find(b, Element::MergePriority);
    const auto priority = property != nullptr ? describedInteger(model_.text(*property)).value_or(0) : 0;
    if (priority != 0) {
      return priority > 0 ? first : second;
    }
    // An entry goes with its enumeration, which was judged before it.
    if (b.owner == kNoNode) {
      throw RUNTIME_EXCEPTION("Node '%s' is defined in both descriptions and the injected one has no MergePriority",
                              model_.fullName(b).c_str());
    }
    return first;
  }
  warn(b, "node '" + model_.fullName(b) + "' is defined twice, the first definition counts");
  return second;
}

// Puts the features of all categories of one name into the first of them.
void ModelLinker::mergeCategories() {
  std::ranges::stable_sort(merges_, {}, &std::pair<NodeIndex, NodeIndex>::first);
  for (auto next = merges_.begin(); next != merges_.end();) {
    NodeRecord& target = model_.nodes_[next->first];
    const std::span<const Property> own = model_.properties(target);
    std::vector<Property> merged(own.begin(), own.end());
    std::unordered_set<std::string_view> known;
    for (const Property& property : own) {
      if (property.element() == Element::pFeature) {
        known.insert(model_.text(property));
      }
    }
    for (const NodeIndex into = next->first; next != merges_.end() && next->first == into; ++next) {
      std::ranges::copy_if(
          model_.properties(model_.nodes_[next->second]), std::back_inserter(merged), [&](const Property& property) {
            return property.element() == Element::pFeature && known.insert(model_.text(property)).second;
          });
    }
    target.firstProperty = static_cast<std::uint32_t>(model_.properties_.size());
    target.propertyCount = static_cast<std::uint32_t>(merged.size());
    model_.properties_.insert(model_.properties_.end(), merged.begin(), merged.end());
  }
}

// A register needs the formula within it, whatever other node has its name: the address would be another one.
void ModelLinker::keepInnerFormulas() {
  for (NodeIndex i = 0; i < model_.nodes_.size(); ++i) {
    if (dropped_[i]) {
      continue;
    }
    for (const Property& property : model_.properties(model_.nodes_[i])) {
      if (property.element() == Element::IntSwissKnife && property.target != kNoNode) {
        dropped_[property.target] = false;
      }
    }
  }
}

void ModelLinker::removeDropped() {
  keepInnerFormulas();
  std::vector<NodeIndex> moved(model_.nodes_.size(), kNoNode);
  std::vector<NodeRecord> kept;
  kept.reserve(model_.nodes_.size());
  for (NodeIndex i = 0; i < model_.nodes_.size(); ++i) {
    const NodeRecord& record = model_.nodes_[i];
    if (!dropped_[i] && (record.owner == kNoNode || !dropped_[record.owner])) {
      moved[i] = static_cast<NodeIndex>(kept.size());
      kept.push_back(record);
    }
  }
  for (NodeRecord& record : kept) {
    if (record.owner != kNoNode) {
      record.owner = moved[record.owner];
    }
    for (Property& property : std::span(model_.properties_).subspan(record.firstProperty, record.propertyCount)) {
      if (infoOf(property.element()).lexical == Lexical::Reference && property.target != kNoNode) {
        property.target = moved[property.target];
      }
    }
  }
  model_.nodes_ = std::move(kept);
  std::vector<Model::IndexSlot> old = std::move(model_.index_);
  model_.index_.assign(old.size(), {});
  const std::size_t mask = old.size() - 1;
  for (const Model::IndexSlot& entry : old) {
    if (entry.node != kNoNode && moved[entry.node] != kNoNode) {
      std::size_t slot = entry.hash & mask;
      while (model_.index_[slot].node != kNoNode) {
        slot = (slot + 1) & mask;
      }
      model_.index_[slot] = entry;
      model_.index_[slot].node = moved[entry.node];
    }
  }
}

// The port that a register without pPort means: the device's, or the only one that waits for no chunk or event.
NodeIndex ModelLinker::defaultPort() const {
  const NodeIndex device = model_.indexOf("Device");
  if (device != kNoNode && model_.nodes_[device].kind == NodeKind::Port) {
    return device;
  }
  NodeIndex only = kNoNode;
  for (NodeIndex i = 0; i < model_.nodes_.size(); ++i) {
    const NodeRecord& record = model_.nodes_[i];
    if (record.kind == NodeKind::Port && model_.find(record, Element::ChunkID) == nullptr &&
        model_.find(record, Element::pChunkID) == nullptr && model_.find(record, Element::EventID) == nullptr) {
      if (only != kNoNode) {
        return kNoNode;
      }
      only = i;
    }
  }
  return only;
}

void ModelLinker::resolveReferences() {
  const NodeIndex impliedPort = defaultPort();
  edges_.reserve(model_.properties_.size() / 2);
  for (NodeIndex i = 0; i < model_.nodes_.size(); ++i) {
    NodeRecord& record = model_.nodes_[i];
    if (record.kind == NodeKind::Port) {
      model_.ports_.push_back(i);
    }
    if (record.polled) {
      model_.polled_.push_back(i);
    }
    for (Property& property : std::span(model_.properties_).subspan(record.firstProperty, record.propertyCount)) {
      const ElementInfo& info = infoOf(property.element());
      if (info.lexical != Lexical::Reference) {
        continue;
      }
      if (property.target == kNoNode && !resolve(record, property, impliedPort)) {
        continue;
      }
      if (property.element() == Element::pSelected) {
        edges_.push_back({i, Dependent::of(property.target, Link::Invalidates)});
        model_.selectors_.emplace_back(property.target, i);
      } else if (info.link != Link::None) {
        edges_.push_back({property.target, Dependent::of(i, info.link)});
      }
    }
  }
  std::ranges::stable_sort(model_.selectors_, {}, &std::pair<NodeIndex, NodeIndex>::first);
}

// False, with a warning, when the node that is meant is not there or of a kind that cannot be meant.
bool ModelLinker::resolve(NodeRecord& record, Property& property, NodeIndex impliedPort) {
  const std::string_view text = model_.text(property);
  const bool isPort = property.element() == Element::pPort;
  if (isPort && text.empty()) {
    property.target = impliedPort;
  } else if (isPort && text == lastPortName_) {
    property.target = lastPort_;
  } else {
    property.target = model_.indexOf(text);
  }
  if (property.target == kNoNode && property.element() == Element::pVariable) {
    // "Gain.Max" as the text of a variable is the limit of Gain.
    property.target = model_.indexOf(text.substr(0, text.find('.')));
  }
  const bool isThere = property.target != kNoNode;
  if (isThere && suits(record, property)) {
    if (isPort && !text.empty()) {
      lastPortName_ = text;
      lastPort_ = property.target;
    }
    return true;
  }
  const ElementInfo& info = infoOf(property.element());
  const std::string_view kind = isThere ? infoOf(model_.nodes_[property.target].kind).name : std::string_view();
  warn(record, std::string(info.name) + " of '" + model_.fullName(record) + "' means '" +
                   std::string(text.substr(0, 100)) + "', which is " +
                   (isThere ? "of the wrong kind: " + std::string(kind) : std::string("not there")));
  record.broken = record.broken || info.essential;
  property.target = kNoNode;
  return false;
}

// Whether the node that a reference leads to has what the reference is there for.
bool ModelLinker::suits(const NodeRecord& record, const Property& property) const {
  const NodeKind target = model_.nodes_[property.target].kind;
  // A variable may ask any node for its access mode, visibility or caching mode.
  const bool asksForPart = property.element() == Element::pVariable &&
                           (model_.text(property).find('.') != std::string_view::npos ||
                            std::string_view(model_.attribute(property)).find('.') != std::string_view::npos);
  return asksForPart || canRefer(property.element(), record.kind, target);
}

void ModelLinker::collectDependents() {
  std::vector<std::uint32_t>& start = model_.dependentsStart_;
  start.assign(model_.nodes_.size() + 1, 0);
  for (const Edge& edge : edges_) {
    ++start[edge.on + 1];
  }
  std::partial_sum(start.begin(), start.end(), start.begin());
  model_.dependents_.resize(edges_.size());
  std::vector<std::uint32_t> next(start.begin(), start.end() - 1);
  for (const Edge& edge : edges_) {
    model_.dependents_[next[edge.on]++] = edge.dependent;
  }
  edges_ = {};
}

void ModelLinker::markFeatures() {
  const NodeIndex root = model_.indexOf("Root");
  if (root == kNoNode || model_.nodes_[root].kind != NodeKind::Category) {
    return;
  }
  std::vector<NodeIndex> open{root};
  model_.nodes_[root].feature = true;
  while (!open.empty()) {
    const NodeRecord& category = model_.nodes_[open.back()];
    open.pop_back();
    for (const Property& property : model_.properties(category)) {
      if (property.element() != Element::pFeature || property.target == kNoNode) {
        continue;
      }
      NodeRecord& member = model_.nodes_[property.target];
      if (!member.feature) {
        member.feature = true;
        if (member.kind == NodeKind::Category) {
          open.push_back(property.target);
        }
      }
    }
  }
}

// Takes away, again and again, the nodes that need no other node for their value. What is left needs itself.
void ModelLinker::markCycles() {
  const std::size_t count = model_.nodes_.size();
  std::vector<std::uint32_t> needs(count, 0);
  for (const Dependent dependent : model_.dependents_) {
    if (dependent.link() >= Link::Computes) {
      ++needs[dependent.node()];
    }
  }
  std::vector<NodeIndex> ready;
  ready.reserve(count);
  for (NodeIndex i = 0; i < count; ++i) {
    if (needs[i] == 0) {
      ready.push_back(i);
    }
  }
  for (std::size_t at = 0; at < ready.size(); ++at) {
    for (const Dependent dependent : model_.dependents(ready[at])) {
      if (dependent.link() >= Link::Computes && --needs[dependent.node()] == 0) {
        ready.push_back(dependent.node());
      }
    }
  }
  if (ready.size() == count) {
    return;
  }
  for (NodeIndex i = 0; i < count; ++i) {
    if (needs[i] != 0) {
      NodeRecord& record = model_.nodes_[i];
      record.inCycle = true;
      record.broken = true;
      warn(record, "the value of '" + model_.fullName(record) + "' depends on itself, the node is not implemented");
    }
  }
}

void ModelLinker::warn(const NodeRecord& node, std::string text) {
  warnings_.add(lines_.lineOf(node.name), std::move(text));
}

}  // namespace GenApiEngine
