// A description file of the caller's choice for a remote device.
#include "features/description_file.h"

#include <stdexcept>

#include "Base/GCException.h"
#include "core/global_state.h"
#include "core/log.h"
#include "core/result.h"
#include "gentl/device.h"
#include "gentl/exceptions.h"
#include "gentl/module_lookup.h"

namespace OVI {

oviErr oviSetRemoteDeviceXMLFile(std::uint64_t deviceHandle, const char* path) {
  constexpr const char* kSite = "OVI::oviSetRemoteDeviceXMLFile";
  if (!isInitialized())
    return OVI_ERR_NOT_INITIALIZED;
  if (path == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  std::shared_ptr<GenTLCpp::Device> device;
  if (const oviErr code = lookupModule(deviceHandle, device); code != OVI_SUCCESS) {
    OVI_LOG_ERROR(kSite) << "Device not found!";
    return code;
  }
  try {
    device->setRemoteDeviceXMLFile(path);
  } catch (const GenTLCpp::GenTLException& error) {
    OVI_LOG_ERROR(kSite) << "Failed to set XML file. Error: " << error.what();
    return mapGenTLError(error.code());
  } catch (const GenICam::GenericException& error) {
    OVI_LOG_ERROR(kSite) << "Failed to set remote device XML: " << error.GetDescription();
    return OVI_ERR_INVALID_PARAMETER;
  } catch (const std::runtime_error& error) {  // A broken archive.
    OVI_LOG_ERROR(kSite) << "Failed to set remote device XML: " << error.what();
    return OVI_ERR_INVALID_PARAMETER;
  }
  return OVI_SUCCESS;
}

}  // namespace OVI
