// What all nodes with a value share: the value as text, and the answer to which interface they have.
#pragma once

#include "nodemap/call.h"
#include "nodes/node_core.h"

namespace GenApiEngine {

template<class Interface>
class ValueNode : public NodeCore, public Interface {
 public:
  using NodeCore::NodeCore;

  Api::INode* GetNode() override { return this; }
  gcstring ToString(bool verify, bool ignoreCache) override {
    const Call call(*this, "ToString");
    requireReadable("Node is not readable");
    const std::string text = textValue({verify, ignoreCache});
    if (verify) {
      checkErrors();
    }
    return toGc(text);
  }
  void FromString(const gcstring& text, bool verify) override {
    WriteCall call(*this, "FromString");
    if (verify) {
      requireWritable("Node is not writable");
    }
    setText({text.c_str(), text.size()}, verify);
    call.finish(verify);
  }
  bool IsValueCacheValid() const override {
    const Call call(*this, "IsValueCacheValid");
    return isSet(kValid);
  }
  Api::EInterfaceType GetPrincipalInterfaceType() const override {
    return static_cast<Api::EInterfaceType>(Api::InterfaceNumber<Interface>::value);
  }
  Api::IValue* asValue() override { return this; }
  bool FindInterface(int type, void** found) override {
    if (type == Api::InterfaceNumber<Interface>::value) {
      *found = static_cast<Interface*>(this);
      return true;
    }
    return NodeCore::FindInterface(type, found);
  }

 protected:
  virtual std::string textValue(ReadFlags flags) = 0;
  virtual void setText(std::string_view text, bool verify) = 0;
};

}  // namespace GenApiEngine
