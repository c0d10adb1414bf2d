// IntSwissKnife nodes: an integer calculated from other nodes.
#pragma once

#include "nodes/formula_binding.h"
#include "nodes/integer_base.h"

namespace GenApiEngine {

class IntSwissKnifeNode final : public IntegerBase {
 public:
  IntSwissKnifeNode(NodeMap& map, NodeIndex index)
      : IntegerBase(map, index),
        formula_(FormulaKind::integer, Element::Formula, {}) {}

  void compileFormulas() override { formula_.compile(*this); }

 protected:
  std::int64_t fetchInt(ReadFlags flags) override { return formula_.evaluate(*this, {}, flags).integer; }
  void storeInt(std::int64_t /*value*/, bool /*verify*/) override {
    NODE_FAIL(*this, AccessException, "IntSwissKnife is read only.");
  }
  EAccessMode naturalAccess() override { return Api::Combine(Api::RO, neededAccessOfOperands()); }

 private:
  FormulaBinding formula_;
};

}  // namespace GenApiEngine
