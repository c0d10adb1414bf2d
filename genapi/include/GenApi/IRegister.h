/// Registers as bytes.
#pragma once

#include "GenApi/IValue.h"
#include "GenApi/Pointer.h"

namespace GENAPI_NAMESPACE {

struct GENAPI_DECL_ABSTRACT IRegister : virtual public IValue {
  virtual void Set(const uint8_t* pBuffer, int64_t Length, bool Verify = true) = 0;
  virtual void Get(uint8_t* pBuffer, int64_t Length, bool Verify = false, bool IgnoreCache = false) = 0;
  virtual int64_t GetLength() = 0;
  virtual int64_t GetAddress() = 0;
};

template<>
struct InterfaceNumber<IRegister> {
  static constexpr int value = intfIRegister;
};

typedef CPointer<IRegister> CRegisterPtr;

}  // namespace GENAPI_NAMESPACE
