// Float nodes: a number that lies in the node, in another node, or in one of several.
#pragma once

#include "nodes/float_base.h"
#include "nodes/value_source.h"

namespace GenApiEngine {

class FloatNode final : public FloatBase {
 public:
  FloatNode(NodeMap& map, NodeIndex index) : FloatBase(map, index), source_(*this), limits_(*this) {}

  double floatMin() override;
  double floatMax() override;
  bool floatInc(double& increment) override;
  void validFloats(std::vector<double>& values) override;
  NodeCore* valueSource() const override { return source_.node(*this); }

 protected:
  double fetchFloat(ReadFlags flags) override { return source_.read(*this, flags); }
  void storeFloat(double value, bool verify) override { source_.write(*this, value, verify); }
  EAccessMode naturalAccess() override { return Api::Combine(source_.access(*this), neededAccessOfOperands()); }

 private:
  mutable ValueSource<double> source_;
  OwnLimits<double> limits_;
};

}  // namespace GenApiEngine
