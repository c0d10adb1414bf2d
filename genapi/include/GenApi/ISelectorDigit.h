/// One selector of a set, as a digit of a counter that runs through all values.
#pragma once

#include "GenApi/Container.h"
#include "GenApi/IBase.h"

namespace GENAPI_NAMESPACE {

struct GENAPI_DECL_ABSTRACT ISelectorDigit {
  virtual ~ISelectorDigit() = default;
  virtual bool SetFirst() = 0;
  /// False when the last value was passed.
  virtual bool SetNext(bool Tick = true) = 0;
  virtual void Restore() = 0;
  virtual GENICAM_NAMESPACE::gcstring ToString() = 0;
  virtual void GetSelectorList(FeatureList_t& SelectorList, bool Incremental = false) = 0;
};

}  // namespace GENAPI_NAMESPACE
