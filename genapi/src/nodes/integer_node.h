// Integer nodes: a number that lies in the node, in another node, or in one of several.
#pragma once

#include "nodes/integer_base.h"
#include "nodes/value_source.h"

namespace GenApiEngine {

class IntegerNode final : public IntegerBase {
 public:
  IntegerNode(NodeMap& map, NodeIndex index) : IntegerBase(map, index), source_(*this), limits_(*this) {}

  std::int64_t intMin() override;
  std::int64_t intMax() override;
  std::int64_t intInc() override;
  void validInts(std::vector<std::int64_t>& values) override;
  NodeCore* valueSource() const override { return source_.node(*this); }

 protected:
  std::int64_t fetchInt(ReadFlags flags) override { return source_.read(*this, flags); }
  void storeInt(std::int64_t value, bool verify) override { source_.write(*this, value, verify); }
  EAccessMode naturalAccess() override { return Api::Combine(source_.access(*this), neededAccessOfOperands()); }

 private:
  mutable ValueSource<std::int64_t> source_;
  OwnLimits<std::int64_t> limits_;
};

}  // namespace GenApiEngine
