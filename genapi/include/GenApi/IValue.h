/// What every node with a value offers: the value as text.
#pragma once

#include "GenApi/IBase.h"
#include "GenApi/INode.h"
#include "GenApi/Pointer.h"

namespace GENAPI_NAMESPACE {

struct GENAPI_DECL_ABSTRACT IValue : virtual public IBase {
  virtual INode* GetNode() { return dynamic_cast<INode*>(this); }
  virtual GENICAM_NAMESPACE::gcstring ToString(bool Verify = false, bool IgnoreCache = false) = 0;
  virtual void FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, bool Verify = true) = 0;
  virtual bool IsValueCacheValid() const = 0;
};

template<>
struct InterfaceNumber<IValue> {
  static constexpr int value = intfIValue;
};

typedef CPointer<IValue> CValuePtr;

}  // namespace GENAPI_NAMESPACE
