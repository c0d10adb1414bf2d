/// Commands.
#pragma once

#include "GenApi/IValue.h"
#include "GenApi/Pointer.h"

namespace GENAPI_NAMESPACE {

struct GENAPI_DECL_ABSTRACT ICommand : virtual public IValue {
  virtual void Execute(bool Verify = true) = 0;
  virtual void operator()() = 0;
  virtual bool IsDone(bool Verify = true) = 0;
};

template<>
struct InterfaceNumber<ICommand> {
  static constexpr int value = intfICommand;
};

typedef CPointer<ICommand> CCommandPtr;

}  // namespace GENAPI_NAMESPACE
