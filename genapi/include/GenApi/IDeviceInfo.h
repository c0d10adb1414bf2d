/// What a description says about its device.
#pragma once

#include "GenApi/INodeMap.h"
#include "GenApi/Pointer.h"
#include "GenApi/Types.h"

namespace GENAPI_NAMESPACE {

struct GENAPI_DECL_ABSTRACT IDeviceInfo {
  virtual GENICAM_NAMESPACE::gcstring GetModelName() = 0;
  virtual GENICAM_NAMESPACE::gcstring GetVendorName() = 0;
  virtual GENICAM_NAMESPACE::gcstring GetToolTip() = 0;
  virtual GENICAM_NAMESPACE::gcstring GetStandardNameSpace() = 0;
  virtual void GetGenApiVersion(Version_t& Version, uint16_t& Build) = 0;
  virtual void GetSchemaVersion(Version_t& Version) = 0;
  virtual void GetDeviceVersion(Version_t& Version) = 0;
  virtual GENICAM_NAMESPACE::gcstring GetProductGuid() = 0;
  virtual GENICAM_NAMESPACE::gcstring GetVersionGuid() = 0;

 protected:
  ~IDeviceInfo() = default;
};

typedef CPointer<IDeviceInfo, INodeMap> CDeviceInfoPtr;

}  // namespace GENAPI_NAMESPACE
