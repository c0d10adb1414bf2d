// The float interface over whatever a kind of node gets its number from.
#pragma once

#include "nodes/value_node.h"

namespace GenApiEngine {

class FloatBase : public ValueNode<Api::IFloat> {
 public:
  using ValueNode::ValueNode;

  void SetValue(double value, bool verify) override;
  Api::IFloat& operator=(double value) override;
  double GetValue(bool verify, bool ignoreCache) override;
  double operator()() override { return FloatBase::GetValue(false, false); }
  double operator*() override { return FloatBase::GetValue(false, false); }
  double GetMin() override;
  double GetMax() override;
  bool HasInc() override;
  Api::EIncMode GetIncMode() override;
  double GetInc() override;
  Api::double_autovector_t GetListOfValidValues(bool bounded) override;
  Api::ERepresentation GetRepresentation() override;
  gcstring GetUnit() const override;
  Api::EDisplayNotation GetDisplayNotation() const override;
  int64_t GetDisplayPrecision() const override;
  void ImposeMin(double value) override;
  void ImposeMax(double value) override;

  std::int64_t readInt(ReadFlags flags) final;
  double readFloat(ReadFlags flags) final;
  bool saysYes(ReadFlags flags) final { return readFloat(flags) != 0.0; }
  void writeInt(std::int64_t value, bool verify) final;
  void writeFloat(double value, bool verify) final;
  std::int64_t intMin() final;
  std::int64_t intMax() final;
  std::int64_t intInc() final;
  void validInts(std::vector<std::int64_t>& values) final;

 protected:
  virtual double fetchFloat(ReadFlags flags) = 0;
  virtual void storeFloat(double value, bool verify) = 0;

  std::string textValue(ReadFlags flags) override;
  void setText(std::string_view text, bool verify) override;

 private:
  double slowReadFloat(ReadFlags flags);
  void checkRange(double value);

  double value_ = 0.0;
};

}  // namespace GenApiEngine
