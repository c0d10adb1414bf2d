/// Integer values.
#pragma once

#include "GenApi/Autovector.h"
#include "GenApi/IValue.h"
#include "GenApi/Pointer.h"

namespace GENAPI_NAMESPACE {

struct GENAPI_DECL_ABSTRACT IInteger : virtual public IValue {
  virtual void SetValue(int64_t Value, bool Verify = true) = 0;
  virtual IInteger& operator=(int64_t Value) = 0;
  virtual int64_t GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
  virtual int64_t operator()() = 0;
  virtual int64_t operator*() = 0;
  virtual int64_t GetMin() = 0;
  virtual int64_t GetMax() = 0;
  virtual EIncMode GetIncMode() = 0;
  virtual int64_t GetInc() = 0;
  /// @param bounded  leave out what lies outside the minimum and maximum
  virtual int64_autovector_t GetListOfValidValues(bool bounded = true) = 0;
  virtual ERepresentation GetRepresentation() = 0;
  virtual GENICAM_NAMESPACE::gcstring GetUnit() = 0;
  virtual void ImposeMin(int64_t Value) = 0;
  virtual void ImposeMax(int64_t Value) = 0;
};

template<>
struct InterfaceNumber<IInteger> {
  static constexpr int value = intfIInteger;
};

typedef CPointer<IInteger> CIntegerPtr;

}  // namespace GENAPI_NAMESPACE
