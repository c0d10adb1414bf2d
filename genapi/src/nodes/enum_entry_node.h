// EnumEntry nodes: one value of an enumeration.
#pragma once

#include "nodes/value_node.h"

namespace GenApiEngine {

class EnumEntryNode final : public ValueNode<Api::IEnumEntry> {
 public:
  EnumEntryNode(NodeMap& map, NodeIndex index);

  int64_t GetValue() override { return value_; }
  gcstring GetSymbolic() const override { return toGc(symbolic()); }
  double GetNumericValue() override { return numeric_; }
  bool IsSelfClearing() override;

  std::int64_t value() const { return value_; }
  double numericValue() const { return numeric_; }
  std::string_view symbolic() const;

  std::int64_t readInt(ReadFlags /*flags*/) override { return value_; }
  double readFloat(ReadFlags /*flags*/) override { return numeric_; }

 protected:
  EAccessMode naturalAccess() override { return Api::RO; }
  std::string defaultDisplayName() const override { return std::string(symbolic()); }
  std::string textValue(ReadFlags /*flags*/) override { return std::string(symbolic()); }
  void setText(std::string_view text, bool verify) override;

 private:
  std::int64_t value_ = 0;
  double numeric_ = 0.0;
};

}  // namespace GenApiEngine
