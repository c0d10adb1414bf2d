// Converter nodes: a number seen through floating formulas.
#pragma once

#include "nodes/converter_core.h"
#include "nodes/float_base.h"

namespace GenApiEngine {

class ConverterNode final : public FloatBase {
 public:
  ConverterNode(NodeMap& map, NodeIndex index) : FloatBase(map, index), converter_(*this) {}

  double floatMin() override;
  double floatMax() override;
  bool floatInc(double& increment) override;
  void validFloats(std::vector<double>& values) override;
  NodeCore* valueSource() const override { return converter_.source(*this); }
  void compileFormulas() override { converter_.compile(*this); }

 protected:
  double fetchFloat(ReadFlags flags) override { return converter_.read(*this, flags); }
  void storeFloat(double value, bool verify) override { converter_.write(*this, value, verify); }
  EAccessMode naturalAccess() override { return converter_.access(*this, neededAccessOfOperands()); }

 private:
  ConverterCore<double> converter_;
};

}  // namespace GenApiEngine
