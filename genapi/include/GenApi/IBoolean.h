/// Boolean values.
#pragma once

#include "GenApi/IValue.h"
#include "GenApi/Pointer.h"

namespace GENAPI_NAMESPACE {

struct GENAPI_DECL_ABSTRACT IBoolean : virtual public IValue {
  virtual void SetValue(bool Value, bool Verify = true) = 0;
  virtual void operator=(bool Value) = 0;  // NOLINT(misc-unconventional-assign-operator)
  virtual bool GetValue(bool Verify = false, bool IgnoreCache = false) const = 0;
  virtual bool operator()() const = 0;
};

template<>
struct InterfaceNumber<IBoolean> {
  static constexpr int value = intfIBoolean;
};

typedef CPointer<IBoolean> CBooleanPtr;

}  // namespace GENAPI_NAMESPACE
