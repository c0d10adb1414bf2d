// What IntConverter and Converter have in common: two formulas around another node's value, and limits seen through
// them.
#pragma once

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "model/text.h"
#include "nodes/formula_binding.h"
#include "nodes/property_values.h"
#include "nodes/value_source.h"

namespace GenApiEngine {

template<class T>
class ConverterCore {
 public:
  explicit ConverterCore(const NodeCore& owner)
      : to_(kKind, Element::FormulaTo, "FROM"),
        from_(kKind, Element::FormulaFrom, "TO"),
        source_(owner.propertyNode(Element::pValue)),
        slope_(static_cast<std::uint8_t>(slopeFrom(owner.propertyText(Element::Slope)))) {}

  NodeCore* source(const NodeCore& owner) const { return owner.other(source_); }
  Api::ESlope slope() const { return static_cast<Api::ESlope>(slope_); }

  void compile(const NodeCore& owner) {
    to_.compile(owner);
    from_.compile(owner);
  }

  /// The value of the source as the user sees it.
  T read(NodeCore& owner, ReadFlags flags) {
    return fromSource(owner, NumberOf<T>::read(required(owner), flags), flags);
  }
  void write(NodeCore& owner, T value, bool verify) {
    NumberOf<T>::write(required(owner), number(to_.evaluate(owner, made(value), {})), verify);
  }
  T fromSource(NodeCore& owner, T raw, ReadFlags flags = {}) { return number(from_.evaluate(owner, made(raw), flags)); }

  /// The limits of the source through the formula, in the order that the slope says. A source without limits has none
  /// here, and where the formula has no value, as 1/TO at 0, there is none either.
  std::pair<T, T> limits(NodeCore& owner) {
    NodeCore& raw = required(owner);
    const std::pair<T, T> none(std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max());
    const T rawMin = NumberOf<T>::min(raw);
    const T rawMax = NumberOf<T>::max(raw);
    if (slope() == Api::Varying) {
      return none;
    }
    const std::optional<T> atMin = rawMin == none.first ? std::nullopt : limitFrom(owner, rawMin);
    const std::optional<T> atMax = rawMax == none.second ? std::nullopt : limitFrom(owner, rawMax);
    switch (slope()) {
      case Api::Increasing:
        return {atMin.value_or(none.first), atMax.value_or(none.second)};
      case Api::Decreasing:
        return {atMax.value_or(none.first), atMin.value_or(none.second)};
      default:
        return atMin && atMax ? std::pair<T, T>(std::minmax(*atMin, *atMax)) : none;
    }
  }

  /// Also the copies of the source count, as the source is what is written.
  EAccessMode access(NodeCore& owner, EAccessMode operands) const {
    NodeCore* const raw = source(owner);
    return raw == nullptr ? Api::NI : Api::Combine(raw->accessMode(), operands);
  }

 private:
  static constexpr FormulaKind kKind = std::is_same_v<T, double> ? FormulaKind::floating : FormulaKind::integer;

  NodeCore& required(const NodeCore& owner) const {
    NodeCore* const raw = source(owner);
    if (raw == nullptr) {
      NODE_FAIL(owner, AccessException, "Node has no value to convert.");
    }
    return *raw;
  }

  std::optional<T> limitFrom(NodeCore& owner, T raw) {
    FormulaValue result;
    const FormulaFault fault = from_.tryEvaluate(owner, made(raw), {}, result);
    return fault == FormulaFault::none ? std::optional(number(result)) : std::nullopt;
  }

  FormulaValue made(T value) const {
    if constexpr (std::is_same_v<T, double>) {
      return FormulaValue::ofNumber(value);
    } else {
      return FormulaValue::ofInteger(value);
    }
  }
  static T number(FormulaValue value) {
    if constexpr (std::is_same_v<T, double>) {
      return value.asNumber();
    } else {
      return value.integer;
    }
  }

  FormulaBinding to_;
  FormulaBinding from_;
  NodeIndex source_;
  std::uint8_t slope_;
};

}  // namespace GenApiEngine
