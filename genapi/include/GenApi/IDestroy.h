/// How a node map ends.
#pragma once

#include "GenApi/GenApiDll.h"

namespace GENAPI_NAMESPACE {

struct GENAPI_DECL_ABSTRACT IDestroy {
  virtual void Destroy() = 0;

 protected:
  ~IDestroy() = default;
};

}  // namespace GENAPI_NAMESPACE
