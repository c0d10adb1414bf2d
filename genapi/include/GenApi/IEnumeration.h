/// Enumerations.
#pragma once

#include "GenApi/Container.h"
#include "GenApi/IEnumEntry.h"
#include "GenApi/IValue.h"
#include "GenApi/Pointer.h"
#include "GenApi/Types.h"

namespace GENAPI_NAMESPACE {

struct GENAPI_DECL_ABSTRACT IEnumeration : virtual public IValue {
  virtual void GetSymbolics(StringList_t& Symbolics) = 0;
  /// All entries in the order of the description, whatever their access mode.
  virtual void GetEntries(NodeList_t& Entries) = 0;
  virtual IEnumeration& operator=(const GENICAM_NAMESPACE::gcstring& ValueStr) = 0;
  virtual GENICAM_NAMESPACE::gcstring operator*() = 0;
  virtual void SetIntValue(int64_t Value, bool Verify = true) = 0;
  virtual int64_t GetIntValue(bool Verify = false, bool IgnoreCache = false) = 0;
  /// Null if there is none.
  virtual IEnumEntry* GetEntryByName(const GENICAM_NAMESPACE::gcstring& Symbolic) = 0;
  virtual IEnumEntry* GetEntry(const int64_t IntValue) = 0;
  virtual IEnumEntry* GetCurrentEntry(bool Verify = false, bool IgnoreCache = false) = 0;
};

template<>
struct InterfaceNumber<IEnumeration> {
  static constexpr int value = intfIEnumeration;
};

typedef CPointer<IEnumeration> CEnumerationPtr;

}  // namespace GENAPI_NAMESPACE
