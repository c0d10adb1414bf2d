// IntConverter nodes: an integer seen through integer formulas.
#pragma once

#include "nodes/converter_core.h"
#include "nodes/integer_base.h"

namespace GenApiEngine {

class IntConverterNode final : public IntegerBase {
 public:
  IntConverterNode(NodeMap& map, NodeIndex index) : IntegerBase(map, index), converter_(*this) {}

  std::int64_t intMin() override;
  std::int64_t intMax() override;
  void validInts(std::vector<std::int64_t>& values) override;
  NodeCore* valueSource() const override { return converter_.source(*this); }
  void compileFormulas() override { converter_.compile(*this); }

 protected:
  std::int64_t fetchInt(ReadFlags flags) override { return converter_.read(*this, flags); }
  void storeInt(std::int64_t value, bool verify) override { converter_.write(*this, value, verify); }
  EAccessMode naturalAccess() override { return converter_.access(*this, neededAccessOfOperands()); }

 private:
  ConverterCore<std::int64_t> converter_;
};

}  // namespace GenApiEngine
