// Ties a formula to the nodes that its variables mean.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "formula/program.h"
#include "nodes/node_core.h"

namespace GenApiEngine {

/// One formula of a node, compiled when it is first needed.
class FormulaBinding {
 public:
  /// @param formula  the element that holds the text
  /// @param special  the name of a variable that the node gives itself, TO or FROM; empty for none
  FormulaBinding(FormulaKind kind, Element formula, std::string_view special)
      : special_(special),
        kind_(kind),
        formula_(formula) {}

  /// Throws RuntimeException when the formula is wrong or cannot be calculated.
  FormulaValue evaluate(NodeCore& owner, FormulaValue special, ReadFlags flags);
  /// Tells a fault of the calculation instead of throwing it.
  FormulaFault tryEvaluate(NodeCore& owner, FormulaValue special, ReadFlags flags, FormulaValue& result);
  void compile(const NodeCore& owner);

 private:
  /// What of a node a variable means.
  enum class Part : std::uint8_t { Value, Min, Max, Inc, AccessMode, Visibility, CachingMode, Entry };
  struct Variable {
    NodeIndex node = kNoNode;  // kNoNode is the special variable
    Part part = Part::Value;
    std::string_view entry;
  };

  static Variable variableOf(NodeIndex node, std::string_view suffix);
  FormulaValue read(NodeCore& owner, const Variable& variable, ReadFlags flags) const;

  std::shared_ptr<const FormulaProgram> program_;
  std::span<Variable> variables_;
  std::string_view special_;
  FormulaKind kind_;
  Element formula_;
};

}  // namespace GenApiEngine
