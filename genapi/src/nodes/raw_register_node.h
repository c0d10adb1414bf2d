// Register nodes: bytes without further meaning.
#pragma once

#include "nodes/register_access.h"
#include "nodes/value_node.h"

namespace GenApiEngine {

class RawRegisterNode final : public RegisterCalls<ValueNode<Api::IRegister>> {
 public:
  using RegisterCalls::RegisterCalls;

 protected:
  std::string textValue(ReadFlags flags) override;
  void setText(std::string_view text, bool verify) override;
};

}  // namespace GenApiEngine
