// Compiling a node's formula and feeding it with the values of other nodes.
#include "nodes/formula_binding.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "model/text.h"
#include "nodemap/node_map.h"

namespace GenApiEngine {

FormulaBinding::Variable FormulaBinding::variableOf(NodeIndex node, std::string_view suffix) {
  struct Suffix {
    std::string_view text;
    Part part;
  };
  static constexpr std::array kSuffixes{Suffix{"Value", Part::Value},
                                        Suffix{"Min", Part::Min},
                                        Suffix{"Max", Part::Max},
                                        Suffix{"Inc", Part::Inc},
                                        Suffix{"AccessMode", Part::AccessMode},
                                        Suffix{"Visibility", Part::Visibility},
                                        Suffix{"CachingMode", Part::CachingMode}};
  for (const std::string_view entry : {"Entry.", "Enum."}) {
    if (suffix.starts_with(entry)) {
      return {node, Part::Entry, suffix.substr(entry.size())};
    }
  }
  for (const Suffix& known : kSuffixes) {
    if (equalsIgnoringCase(known.text, suffix)) {
      return {node, known.part, {}};
    }
  }
  return {node, Part::Value, {}};
}

void FormulaBinding::compile(const NodeCore& owner) {
  if (program_ != nullptr) {
    return;
  }
  const Model& model = owner.map().model();
  std::vector<std::string_view> names;
  std::vector<FormulaName> constants;
  std::vector<FormulaName> expressions;
  std::vector<Variable> variables;
  for (const Property& property : owner.properties()) {
    const std::string_view name = trim(model.attribute(property));
    switch (property.element()) {
      case Element::pVariable: {
        // A suffix may stand at the variable's name or, against the rules, at the node's.
        const std::string_view text = model.text(property);
        const std::string_view suffixed = name.find('.') != std::string_view::npos ? name : text;
        const std::size_t dot = suffixed.find('.');
        names.push_back(name);
        variables.push_back(variableOf(property.target, dot == std::string_view::npos ? "" : suffixed.substr(dot + 1)));
        break;
      }
      case Element::Constant:
        constants.push_back({name, model.text(property)});
        break;
      case Element::Expression:
        expressions.push_back({name, model.text(property)});
        break;
      default:
        break;
    }
  }
  if (!special_.empty()) {
    names.push_back(special_);
    variables.push_back({});
  }
  FormulaSource source;
  source.kind = kind_;
  source.text = owner.propertyText(formula_);
  source.variables = names;
  source.constants = constants;
  source.expressions = expressions;
  std::string error;
  std::shared_ptr<const FormulaProgram> program = FormulaProgram::compile(source, error);
  if (program == nullptr) {
    NODE_FAIL(owner, RuntimeException, "Formula '%.200s' is wrong: %s", std::string(source.text).c_str(),
              error.c_str());
  }
  for (const DerivedVariable& derived : program->derivedVariables()) {
    variables.push_back(variableOf(variables[derived.base].node, derived.suffix));
  }
  variables_ = owner.map().arena().array<Variable>(variables.size());
  std::ranges::copy(variables, variables_.begin());
  program_ = std::move(program);
}

FormulaFault FormulaBinding::tryEvaluate(NodeCore& owner, FormulaValue special, ReadFlags flags, FormulaValue& result) {
  compile(owner);
  return program_->evaluate(
      [&](std::uint32_t index) {
        const Variable& variable = variables_[index];
        return variable.node == kNoNode ? special : read(owner, variable, flags);
      },
      result);
}

FormulaValue FormulaBinding::evaluate(NodeCore& owner, FormulaValue special, ReadFlags flags) {
  FormulaValue result;
  const FormulaFault fault = tryEvaluate(owner, special, flags, result);
  if (fault != FormulaFault::none) {
    NODE_FAIL(owner, RuntimeException, "Formula '%.200s': %s", std::string(owner.propertyText(formula_)).c_str(),
              describe(fault));
  }
  return result;
}

FormulaValue FormulaBinding::read(NodeCore& owner, const Variable& variable, ReadFlags flags) const {
  NodeCore& node = *owner.other(variable.node);
  const Api::EInterfaceType type = node.GetPrincipalInterfaceType();
  const bool asInteger = kind_ == FormulaKind::integer || (type != Api::intfIFloat && type != Api::intfIEnumeration);
  switch (variable.part) {
    case Part::Value:
      return asInteger ? FormulaValue::ofInteger(node.readInt(flags)) : FormulaValue::ofNumber(node.readFloat(flags));
    case Part::Min:
      return asInteger ? FormulaValue::ofInteger(node.intMin()) : FormulaValue::ofNumber(node.floatMin());
    case Part::Max:
      return asInteger ? FormulaValue::ofInteger(node.intMax()) : FormulaValue::ofNumber(node.floatMax());
    case Part::Inc: {
      if (asInteger) {
        return FormulaValue::ofInteger(node.intInc());
      }
      double increment = 1.0;
      return FormulaValue::ofNumber(node.floatInc(increment) ? increment : 1.0);
    }
    case Part::AccessMode:
      return FormulaValue::ofInteger(node.accessMode());
    case Part::Visibility:
      return FormulaValue::ofInteger(node.visibility());
    case Part::CachingMode:
      return FormulaValue::ofInteger(node.cachingMode());
    case Part::Entry:
      break;
  }
  return FormulaValue::ofInteger(node.entryValue(variable.entry));
}

}  // namespace GenApiEngine
