// Where the value of Integer and Float nodes comes from: a constant, another node, or one of several by an index; and
// the limits that such a node may have of its own.
#pragma once

#include <algorithm>
#include <bit>

#include "base/number_text.h"
#include "model/text.h"
#include "nodemap/node_map.h"
#include "nodes/node_core.h"

namespace GenApiEngine {

template<class T>
struct ValueSlot {
  NodeIndex node = kNoNode;
  T constant{};
};

/// Number access by type, so that the same code serves integers and floats.
template<class T>
struct NumberOf;
template<>
struct NumberOf<std::int64_t> {
  static std::int64_t read(NodeCore& node, ReadFlags flags) { return node.readInt(flags); }
  static void write(NodeCore& node, std::int64_t value, bool verify) { node.writeInt(value, verify); }
  static std::int64_t constant(const Model& model, const Property& property) { return model.integer(property); }
  static std::int64_t inc(NodeCore& node) { return node.intInc(); }
  static std::int64_t min(NodeCore& node) { return node.intMin(); }
  static std::int64_t max(NodeCore& node) { return node.intMax(); }
};
template<>
struct NumberOf<double> {
  static double read(NodeCore& node, ReadFlags flags) { return node.readFloat(flags); }
  static void write(NodeCore& node, double value, bool verify) { node.writeFloat(value, verify); }
  static double constant(const Model& model, const Property& property) { return model.number(property); }
  /// 0 for a number without increment.
  static double inc(NodeCore& node) {
    double increment = 0;
    return node.floatInc(increment) ? increment : 0;
  }
  static double min(NodeCore& node) { return node.floatMin(); }
  static double max(NodeCore& node) { return node.floatMax(); }
};

template<class T>
class ValueSource {
 public:
  explicit ValueSource(const NodeCore& owner);

  T read(NodeCore& owner, ReadFlags flags) {
    const ValueSlot<T>& slot = current(owner, flags);
    NodeCore* const node = owner.other(slot.node);
    return node == nullptr ? slot.constant : NumberOf<T>::read(*node, flags);
  }
  void write(NodeCore& owner, T value, bool verify);
  EAccessMode access(NodeCore& owner);
  /// The node that the value comes from now; null for a constant or while the index cannot be read.
  NodeCore* node(const NodeCore& owner);
  /// Calls visit(NodeCore&) for the source and for all copies.
  template<class F>
  void forEachTarget(NodeCore& owner, F&& visit);

 private:
  struct Entry {
    std::int64_t index = 0;
    ValueSlot<T> slot;
  };
  struct Table {
    NodeIndex index = kNoNode;
    std::span<Entry> entries;
    bool hasOtherwise = false;
    ValueSlot<T> otherwise;
  };

  ValueSlot<T>& current(NodeCore& owner, ReadFlags flags);
  bool sameIncrements(NodeCore& owner);
  static ValueSlot<T> slotOf(const NodeCore& owner, const Property& property);

  ValueSlot<T> main_;
  Table* table_ = nullptr;
  bool hasCopies_ = false;
};

/// The limits that a node states itself.
template<class T>
class OwnLimits {
 public:
  explicit OwnLimits(const NodeCore& owner);

  /// The stated limit, or otherwise.
  T min(const NodeCore& owner, T otherwise) const { return get(owner, kMin, otherwise); }
  T max(const NodeCore& owner, T otherwise) const { return get(owner, kMax, otherwise); }
  T inc(const NodeCore& owner, T otherwise) const { return get(owner, kInc, otherwise); }
  bool hasInc() const { return limits_ != nullptr && (*limits_)[kInc].has; }
  /// Whether the maximum is the constant whose bits are all ones, -1.
  bool maxIsAllOnes() const {
    return limits_ != nullptr && (*limits_)[kMax].has && (*limits_)[kMax].slot.node == kNoNode &&
           (*limits_)[kMax].slot.constant == T{-1};
  }

 private:
  struct Limit {
    bool has = false;
    ValueSlot<T> slot;
  };
  enum Which { kMin, kMax, kInc };

  T get(const NodeCore& owner, Which which, T otherwise) const {
    if (limits_ == nullptr || !(*limits_)[which].has) {
      return otherwise;
    }
    const ValueSlot<T>& slot = (*limits_)[which].slot;
    NodeCore* const node = owner.other(slot.node);
    return node == nullptr ? slot.constant : NumberOf<T>::read(*node, {});
  }

  std::array<Limit, 3>* limits_ = nullptr;
};

template<class T>
ValueSlot<T> ValueSource<T>::slotOf(const NodeCore& owner, const Property& property) {
  if (infoOf(property.element()).lexical == Lexical::Reference) {
    return {property.target, {}};
  }
  const Model& model = owner.map().model();
  return {kNoNode, model.hasNumber(property) ? NumberOf<T>::constant(model, property) : T{}};
}

template<class T>
ValueSource<T>::ValueSource(const NodeCore& owner) {
  std::size_t entries = 0;
  for (const Property& property : owner.properties()) {
    switch (property.element()) {
      case Element::Value:
      case Element::pValue:
        main_ = slotOf(owner, property);
        break;
      case Element::pValueCopy:
        hasCopies_ = true;
        break;
      case Element::ValueIndexed:
      case Element::pValueIndexed:
      case Element::ValueDefault:
      case Element::pValueDefault:
        ++entries;
        break;
      default:
        break;
    }
  }
  const NodeIndex index = owner.propertyNode(Element::pIndex);
  if (index == kNoNode || entries == 0) {
    return;
  }
  Arena& arena = owner.map().arena();
  table_ = arena.array<Table>(1).data();
  table_->index = index;
  table_->entries = arena.array<Entry>(entries);
  std::size_t next = 0;
  for (const Property& property : owner.properties()) {
    const Element element = property.element();
    if (element == Element::ValueIndexed || element == Element::pValueIndexed) {
      const auto at = describedInteger(owner.map().model().attribute(property));
      if (at) {
        table_->entries[next++] = {*at, slotOf(owner, property)};
      }
    } else if (element == Element::ValueDefault || element == Element::pValueDefault) {
      table_->otherwise = slotOf(owner, property);
      table_->hasOtherwise = true;
    }
  }
  table_->entries = table_->entries.first(next);
}

template<class T>
ValueSlot<T>& ValueSource<T>::current(NodeCore& owner, ReadFlags flags) {
  if (table_ == nullptr) {
    return main_;
  }
  const std::int64_t index = owner.other(table_->index)->readInt({false, flags.ignoreCache});
  const auto found = std::find_if(table_->entries.begin(), table_->entries.end(),
                                  [index](const Entry& entry) { return entry.index == index; });
  return found == table_->entries.end() ? table_->otherwise : found->slot;
}

template<class T>
void ValueSource<T>::write(NodeCore& owner, T value, bool verify) {
  if (hasCopies_) {
    for (const Property& property : owner.properties()) {
      const Element element = property.element();
      NodeCore* const target =
          element == Element::pValue || element == Element::pValueCopy ? owner.other(property.target) : nullptr;
      if (target != nullptr) {
        NumberOf<T>::write(*target, value, verify);
      }
    }
    if (main_.node != kNoNode) {
      return;
    }
  }
  ValueSlot<T>& slot = current(owner, {});
  if (NodeCore* const target = owner.other(slot.node)) {
    NumberOf<T>::write(*target, value, verify);
  } else {
    slot.constant = value;
    owner.map().markWritten(owner.index());
  }
}

template<class T>
EAccessMode ValueSource<T>::access(NodeCore& owner) {
  NodeCore* source = owner.other(main_.node);
  if (table_ != nullptr) {
    NodeCore* const index = owner.other(table_->index);
    if (!Api::IsReadable(index->accessMode())) {
      return index->accessMode() == Api::NI ? Api::NI : Api::NA;
    }
    try {
      const ValueSlot<T>& slot = current(owner, {});
      if (&slot == &table_->otherwise && !table_->hasOtherwise) {
        return Api::NA;  // The description has no value for this index.
      }
      source = owner.other(slot.node);
    } catch (const GENICAM_NAMESPACE::GenericException&) {
      return Api::NA;
    }
  }
  EAccessMode mode = source == nullptr ? Api::RW : source->accessMode();
  if (hasCopies_) {
    for (const Property& property : owner.properties()) {
      NodeCore* const copy = property.element() == Element::pValueCopy ? owner.other(property.target) : nullptr;
      if (copy != nullptr) {
        mode = Api::Combine(mode, copy->accessMode());
      }
    }
    if (Api::IsWritable(mode) && !sameIncrements(owner)) {
      mode = Api::Combine(mode, Api::RO);
    }
  }
  return mode;
}

// What fits one target would not fit another whose increment differs.
template<class T>
bool ValueSource<T>::sameIncrements(NodeCore& owner) {
  T known{};  // 0 until a target has one
  bool same = true;
  try {
    forEachTarget(owner, [&](NodeCore& target) {
      const T increment = NumberOf<T>::inc(target);
      same = same && (known == T{} || increment == T{} || increment == known);
      known = increment == T{} ? known : increment;
    });
  } catch (const GENICAM_NAMESPACE::GenericException&) {
    // An increment that cannot be read restricts nothing.
  }
  return same;
}

template<class T>
NodeCore* ValueSource<T>::node(const NodeCore& owner) {
  if (table_ == nullptr) {
    return owner.other(main_.node);
  }
  try {
    return owner.other(current(const_cast<NodeCore&>(owner), {}).node);
  } catch (...) {
    return nullptr;
  }
}

template<class T>
template<class F>
void ValueSource<T>::forEachTarget(NodeCore& owner, F&& visit) {
  if (NodeCore* const source = owner.other(table_ == nullptr ? main_.node : current(owner, {}).node)) {
    visit(*source);
  }
  if (hasCopies_) {
    for (const Property& property : owner.properties()) {
      NodeCore* const copy = property.element() == Element::pValueCopy ? owner.other(property.target) : nullptr;
      if (copy != nullptr) {
        visit(*copy);
      }
    }
  }
}

template<class T>
OwnLimits<T>::OwnLimits(const NodeCore& owner) {
  const Model& model = owner.map().model();
  const auto setLimit = [&](Which which, const Property& property, bool reference) {
    if (reference && property.target == kNoNode) {
      return;
    }
    if (limits_ == nullptr) {
      limits_ = owner.map().arena().template array<std::array<Limit, 3>>(1).data();
    }
    Limit& limit = (*limits_)[which];
    limit.has = reference || model.hasNumber(property);
    limit.slot.node = reference ? property.target : kNoNode;
    limit.slot.constant = reference || !limit.has ? T{} : NumberOf<T>::constant(model, property);
  };
  for (const Property& property : owner.properties()) {
    switch (property.element()) {
      case Element::Min:
      case Element::pMin:
        setLimit(kMin, property, property.element() == Element::pMin);
        break;
      case Element::Max:
      case Element::pMax:
        setLimit(kMax, property, property.element() == Element::pMax);
        break;
      case Element::Inc:
      case Element::pInc:
        setLimit(kInc, property, property.element() == Element::pInc);
        break;
      default:
        break;
    }
  }
}

}  // namespace GenApiEngine
