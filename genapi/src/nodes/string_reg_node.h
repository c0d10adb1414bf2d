// StringReg nodes: a register that holds a text.
#pragma once

#include "nodes/register_access.h"
#include "nodes/string_base.h"

namespace GenApiEngine {

class StringRegNode final : public RegisterNode<StringBase> {
 public:
  using RegisterNode::RegisterNode;

  std::int64_t maxLength() override;

 protected:
  void fetchString(std::string& out, ReadFlags flags) override;
  void storeString(std::string_view value, bool verify) override;
};

}  // namespace GenApiEngine
