// FloatReg nodes: a register that is a single or double precision number.
#pragma once

#include "nodes/float_base.h"
#include "nodes/register_access.h"

namespace GenApiEngine {

class FloatRegNode final : public RegisterNode<FloatBase> {
 public:
  using RegisterNode::RegisterNode;

  double floatMin() override;
  double floatMax() override;

 protected:
  double fetchFloat(ReadFlags flags) override;
  void storeFloat(double value, bool verify) override;

 private:
  bool isSingle();
};

}  // namespace GenApiEngine
