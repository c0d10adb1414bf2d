/// Floating-point values.
#pragma once

#include "GenApi/Autovector.h"
#include "GenApi/IEnumeration.h"
#include "GenApi/IInteger.h"
#include "GenApi/INode.h"
#include "GenApi/IValue.h"
#include "GenApi/Pointer.h"

namespace GENAPI_NAMESPACE {

struct GENAPI_DECL_ABSTRACT IFloat : virtual public IValue {
  virtual void SetValue(double Value, bool Verify = true) = 0;
  virtual IFloat& operator=(double Value) = 0;
  virtual double GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
  virtual double operator()() = 0;
  virtual double operator*() = 0;
  virtual double GetMin() = 0;
  virtual double GetMax() = 0;
  virtual bool HasInc() = 0;
  virtual EIncMode GetIncMode() = 0;
  virtual double GetInc() = 0;
  virtual double_autovector_t GetListOfValidValues(bool bounded = true) = 0;
  virtual ERepresentation GetRepresentation() = 0;
  virtual GENICAM_NAMESPACE::gcstring GetUnit() const = 0;
  virtual EDisplayNotation GetDisplayNotation() const = 0;
  virtual int64_t GetDisplayPrecision() const = 0;
  virtual void ImposeMin(double Value) = 0;
  virtual void ImposeMax(double Value) = 0;
};

template<>
struct InterfaceNumber<IFloat> {
  static constexpr int value = intfIFloat;
};

/// A pointer to a float that also reaches the integer or enumeration which the float stands for.
class CFloatPtr : public CPointer<IFloat> {
 public:
  CFloatPtr() = default;
  using CPointer<IFloat>::CPointer;
  void operator=(IBase* pB) { CPointer<IFloat>::operator=(pB); }

  /// Null if the node has no cast alias of that kind.
  IInteger* GetIntAlias() { return Alias<IInteger>(); }
  IEnumeration* GetEnumAlias() { return Alias<IEnumeration>(); }

 private:
  template<class T>
  T* Alias() {
    INode* const alias = (*this)->GetNode()->GetCastAlias();
    return alias != nullptr ? dynamic_cast<T*>(alias) : nullptr;
  }
};

}  // namespace GENAPI_NAMESPACE
