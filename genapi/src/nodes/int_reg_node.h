// IntReg nodes: a register that is one integer.
#pragma once

#include "nodes/integer_base.h"
#include "nodes/register_access.h"

namespace GenApiEngine {

class IntRegNode : public RegisterNode<IntegerBase> {
 public:
  using RegisterNode::RegisterNode;

  std::int64_t intMin() override;
  std::int64_t intMax() override;

 protected:
  std::int64_t fetchInt(ReadFlags flags) override { return register_.readNumber(*this, flags); }
  void storeInt(std::int64_t value, bool verify) override;
};

}  // namespace GenApiEngine
