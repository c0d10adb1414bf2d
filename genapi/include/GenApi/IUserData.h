/// A pointer that the application may leave at a node or at a node map.
#pragma once

#include "GenApi/IBase.h"
#include "GenApi/Pointer.h"

namespace GENAPI_NAMESPACE {

typedef void* UserData_t;

struct GENAPI_DECL_ABSTRACT IUserData {
  virtual UserData_t GetUserData() const = 0;
  /// Returns the former value.
  virtual UserData_t SetUserData(UserData_t UserData) = 0;

 protected:
  ~IUserData() = default;
};

struct INodeMap;
typedef CPointer<IUserData> CNodeUserDataPtr;
typedef CPointer<IUserData, INodeMap> CNodeMapUserDataPtr;

}  // namespace GENAPI_NAMESPACE
