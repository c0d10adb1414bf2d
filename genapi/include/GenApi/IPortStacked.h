/// A register space that takes several writes in one call.
#pragma once

#include "GenApi/IPort.h"

namespace GENAPI_NAMESPACE {

struct PORT_REGISTER_STACK_ENTRY {
  uint64_t Address;
  void* pBuffer;
  size_t Size;
};

struct GENAPI_DECL_ABSTRACT IPortStacked : virtual public IPort {
  using IPort::Write;
  virtual void Write(PORT_REGISTER_STACK_ENTRY* pEntries, size_t numEntries) = 0;
};

}  // namespace GENAPI_NAMESPACE
