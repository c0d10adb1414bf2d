/// Enumerations with a C++ enumeration as their value.
#pragma once

#include "GenApi/IEnumeration.h"

namespace GENAPI_NAMESPACE {

template<typename EnumT>
struct IEnumerationT : virtual public IEnumeration {
  using IEnumeration::operator=;
  using IEnumeration::GetEntry;

  virtual void SetValue(EnumT Value, bool Verify = true) = 0;
  virtual IEnumeration& operator=(EnumT Value) = 0;
  virtual EnumT GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
  virtual EnumT operator()() = 0;
  virtual IEnumEntry* GetEntry(const EnumT Value) = 0;
};

}  // namespace GENAPI_NAMESPACE
