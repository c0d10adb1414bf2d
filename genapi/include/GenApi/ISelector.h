/// Which features a selector selects, and the reverse. Every node answers; one that selects nothing gives empty lists.
#pragma once

#include "GenApi/Container.h"
#include "GenApi/IBase.h"
#include "GenApi/Pointer.h"

namespace GENAPI_NAMESPACE {

struct GENAPI_DECL_ABSTRACT ISelector : virtual public IBase {
  virtual bool IsSelector() const = 0;
  virtual void GetSelectedFeatures(FeatureList_t& Features) const = 0;
  virtual void GetSelectingFeatures(FeatureList_t& Features) const = 0;
};

typedef CPointer<ISelector> CSelectorPtr;

}  // namespace GENAPI_NAMESPACE
