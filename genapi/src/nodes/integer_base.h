// The integer interface over whatever a kind of node gets its integer from.
#pragma once

#include "nodes/value_node.h"

namespace GenApiEngine {

class IntegerBase : public ValueNode<Api::IInteger> {
 public:
  using ValueNode::ValueNode;

  void SetValue(int64_t value, bool verify) override;
  Api::IInteger& operator=(int64_t value) override;
  int64_t GetValue(bool verify, bool ignoreCache) override;
  int64_t operator()() override { return IntegerBase::GetValue(false, false); }
  int64_t operator*() override { return IntegerBase::GetValue(false, false); }
  int64_t GetMin() override;
  int64_t GetMax() override;
  Api::EIncMode GetIncMode() override;
  int64_t GetInc() override;
  Api::int64_autovector_t GetListOfValidValues(bool bounded) override;
  Api::ERepresentation GetRepresentation() override;
  gcstring GetUnit() override;
  void ImposeMin(int64_t value) override;
  void ImposeMax(int64_t value) override;

  std::int64_t readInt(ReadFlags flags) final;
  double readFloat(ReadFlags flags) final;
  void writeInt(std::int64_t value, bool verify) final;
  void writeFloat(double value, bool verify) final;
  double floatMin() final;
  double floatMax() final;
  bool floatInc(double& increment) final;
  void validFloats(std::vector<double>& values) final;

 protected:
  /// Gets the value from where it comes.
  virtual std::int64_t fetchInt(ReadFlags flags) = 0;
  /// Puts it there.
  virtual void storeInt(std::int64_t value, bool verify) = 0;

  std::string textValue(ReadFlags flags) override;
  void setText(std::string_view text, bool verify) override;

 private:
  std::int64_t slowReadInt(ReadFlags flags);
  void checkRange(std::int64_t value);

  std::int64_t value_ = 0;
};

}  // namespace GenApiEngine
