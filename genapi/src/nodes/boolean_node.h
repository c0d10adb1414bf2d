// Boolean nodes: two numbers of another node, or of the node itself, as true and false.
#pragma once

#include "nodes/value_node.h"
#include "nodes/value_source.h"

namespace GenApiEngine {

class BooleanNode final : public ValueNode<Api::IBoolean> {
 public:
  BooleanNode(NodeMap& map, NodeIndex index);

  void SetValue(bool value, bool verify) override;
  void operator=(bool value) override;  // NOLINT(misc-unconventional-assign-operator)
  bool GetValue(bool verify, bool ignoreCache) const override;
  bool operator()() const override { return BooleanNode::GetValue(false, false); }

  std::int64_t readInt(ReadFlags flags) override { return readBool(flags) ? 1 : 0; }
  double readFloat(ReadFlags flags) override { return readBool(flags) ? 1.0 : 0.0; }
  void writeInt(std::int64_t value, bool verify) override { writeBool(value != 0, verify); }
  void writeFloat(double value, bool verify) override { writeBool(value != 0.0, verify); }
  NodeCore* valueSource() const override { return source_.node(*this); }

 protected:
  std::string textValue(ReadFlags flags) override { return readBool(flags) ? "1" : "0"; }
  void setText(std::string_view text, bool verify) override;
  EAccessMode naturalAccess() override { return source_.access(*this); }

 private:
  bool readBool(ReadFlags flags);
  void writeBool(bool value, bool verify);

  mutable ValueSource<std::int64_t> source_;
  std::int64_t on_ = 1;
  std::int64_t off_ = 0;
  bool isConstant_;
  bool value_ = false;
};

}  // namespace GenApiEngine
