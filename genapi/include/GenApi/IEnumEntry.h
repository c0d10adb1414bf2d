/// One value of an enumeration.
#pragma once

#include "GenApi/IValue.h"
#include "GenApi/Pointer.h"

namespace GENAPI_NAMESPACE {

struct GENAPI_DECL_ABSTRACT IEnumEntry : virtual public IValue {
  virtual int64_t GetValue() = 0;
  virtual GENICAM_NAMESPACE::gcstring GetSymbolic() const = 0;
  virtual double GetNumericValue() = 0;
  virtual bool IsSelfClearing() = 0;
};

template<>
struct InterfaceNumber<IEnumEntry> {
  static constexpr int value = intfIEnumEntry;
};

typedef CPointer<IEnumEntry> CEnumEntryPtr;

}  // namespace GENAPI_NAMESPACE
