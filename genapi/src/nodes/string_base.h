// The string interface over whatever a kind of node gets its text from.
#pragma once

#include <string>

#include "nodes/value_node.h"

namespace GenApiEngine {

class StringBase : public ValueNode<Api::IString> {
 public:
  using ValueNode::ValueNode;

  void SetValue(const gcstring& value, bool verify) override;
  Api::IString& operator=(const gcstring& value) override;
  gcstring GetValue(bool verify, bool ignoreCache) override;
  gcstring operator()() override { return StringBase::GetValue(false, false); }
  gcstring operator*() override { return StringBase::GetValue(false, false); }
  int64_t GetMaxLength() override;

  void readString(std::string& out, ReadFlags flags) final;
  void writeString(std::string_view value, bool verify) final;

 protected:
  virtual void fetchString(std::string& out, ReadFlags flags) = 0;
  virtual void storeString(std::string_view value, bool verify) = 0;

  std::string textValue(ReadFlags flags) override;
  void setText(std::string_view text, bool verify) override { writeString(text, verify); }

 private:
  std::string value_;
};

}  // namespace GenApiEngine
