/// What a port implementation is told when it is connected.
#pragma once

#include "GenApi/IPort.h"
#include "GenApi/IPortStacked.h"
#include "GenApi/Types.h"

namespace GENAPI_NAMESPACE {

struct GENAPI_DECL_ABSTRACT IPortConstruct : virtual public IPort {
  virtual void SetPortImpl(IPort* pPort) = 0;
  /// Yes: each word of four bytes is swapped.
  virtual EYesNo GetSwapEndianess() = 0;
};

struct GENAPI_DECL_ABSTRACT IPortStackedConstruct : virtual public IPortStacked {
  virtual void SetPortImpl(IPortStacked* pPort) = 0;
  virtual EYesNo GetSwapEndianess() = 0;
};

typedef CPointer<IPortConstruct> CPortConstructPtr;
typedef CPointer<IPortStackedConstruct> CPortStackedConstructPtr;

}  // namespace GENAPI_NAMESPACE
