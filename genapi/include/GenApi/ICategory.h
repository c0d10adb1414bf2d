/// Category nodes: the tree of features.
#pragma once

#include "GenApi/Container.h"
#include "GenApi/IValue.h"
#include "GenApi/Pointer.h"

namespace GENAPI_NAMESPACE {

struct GENAPI_DECL_ABSTRACT ICategory : virtual public IValue {
  /// The direct members in the order of the description; categories among them are not opened.
  virtual void GetFeatures(FeatureList_t& Features) const = 0;
};

template<>
struct InterfaceNumber<ICategory> {
  static constexpr int value = intfICategory;
};

typedef CPointer<ICategory> CCategoryPtr;

}  // namespace GENAPI_NAMESPACE
