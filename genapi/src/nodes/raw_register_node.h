// Register nodes: bytes without further meaning.
#pragma once

#include "nodes/register_access.h"
#include "nodes/value_node.h"

namespace GenApiEngine {

class RawRegisterNode final : public ValueNode<Api::IRegister> {
 public:
  RawRegisterNode(NodeMap& map, NodeIndex index) : ValueNode(map, index), register_(*this) {
    set(kWatchesInvalidation);
  }

  void Set(const uint8_t* buffer, int64_t length, bool verify) override {
    register_.set(*this, buffer, length, verify);
  }
  void Get(uint8_t* buffer, int64_t length, bool verify, bool ignoreCache) override {
    register_.get(*this, buffer, length, {verify, ignoreCache});
  }
  int64_t GetLength() override { return register_.publicLength(*this); }
  int64_t GetAddress() override { return register_.publicAddress(*this); }

 protected:
  EAccessMode naturalAccess() override { return register_.access(*this, neededAccessOfOperands()); }
  Api::ECachingMode ownCaching() override { return register_.caching(); }
  void onInvalidate(bool kept) override { register_.invalidate(*this, kept); }
  std::string textValue(ReadFlags flags) override;
  void setText(std::string_view text, bool verify) override;

 private:
  RegisterAccess register_;
};

}  // namespace GenApiEngine
