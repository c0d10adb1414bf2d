/// String values.
#pragma once

#include "GenApi/IValue.h"
#include "GenApi/Pointer.h"

namespace GENAPI_NAMESPACE {

struct GENAPI_DECL_ABSTRACT IString : virtual public IValue {
  virtual void SetValue(const GENICAM_NAMESPACE::gcstring& Value, bool Verify = true) = 0;
  virtual IString& operator=(const GENICAM_NAMESPACE::gcstring& Value) = 0;
  virtual GENICAM_NAMESPACE::gcstring GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
  virtual GENICAM_NAMESPACE::gcstring operator()() = 0;
  virtual GENICAM_NAMESPACE::gcstring operator*() = 0;
  virtual int64_t GetMaxLength() = 0;
};

template<>
struct InterfaceNumber<IString> {
  static constexpr int value = intfIString;
};

typedef CPointer<IString> CStringPtr;

}  // namespace GENAPI_NAMESPACE
