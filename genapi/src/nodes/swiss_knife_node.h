// SwissKnife nodes: a float calculated from other nodes.
#pragma once

#include "nodes/float_base.h"
#include "nodes/formula_binding.h"

namespace GenApiEngine {

class SwissKnifeNode final : public FloatBase {
 public:
  SwissKnifeNode(NodeMap& map, NodeIndex index)
      : FloatBase(map, index),
        formula_(FormulaKind::floating, Element::Formula, {}) {}

  void compileFormulas() override { formula_.compile(*this); }

 protected:
  double fetchFloat(ReadFlags flags) override { return formula_.evaluate(*this, {}, flags).asNumber(); }
  void storeFloat(double /*value*/, bool /*verify*/) override {
    NODE_FAIL(*this, LogicalErrorException, "SwissKnife : %s SetValue failed. SwissKnife is read only",
              nodeName().c_str());
  }
  EAccessMode naturalAccess() override { return Api::Combine(Api::RO, neededAccessOfOperands()); }

 private:
  FormulaBinding formula_;
};

}  // namespace GenApiEngine
