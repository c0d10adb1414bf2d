/// A register space: what the application connects a node map to.
#pragma once

#include "GenApi/IBase.h"
#include "GenApi/Pointer.h"

namespace GENAPI_NAMESPACE {

struct GENAPI_DECL_ABSTRACT IPort : virtual public IBase {
  virtual void Read(void* pBuffer, int64_t Address, int64_t Length) = 0;
  virtual void Write(const void* pBuffer, int64_t Address, int64_t Length) = 0;
};

template<>
struct InterfaceNumber<IPort> {
  static constexpr int value = intfIPort;
};

typedef CPointer<IPort> CPortPtr;

}  // namespace GENAPI_NAMESPACE
