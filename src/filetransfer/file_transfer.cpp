// Files to and from a camera.
#include "filetransfer/file_transfer.h"

#include <exception>
#include <memory>
#include <optional>

#include "core/global_state.h"
#include "file_selector.h"
#include "filetransfer/file_access_utils.h"
#include "gentl/device.h"
#include "gentl/guard.h"
#include "gentl/module_lookup.h"
#include "gentl/producer_family.h"
#include "steps.h"
#include "transfer_scope.h"

namespace OVI {
namespace {

constexpr std::uint64_t kS2iAckTimeout = 2000;
constexpr std::uint64_t kKitharaAckTimeout = 5000;

/** What the two directions of a transfer differ in. */
struct Direction {
  const char* site;
  const char* banner;
  const char* starting;
  const char* failed;
  oviErr (*run)(FileAccessContext& context, const char* filePath, const char* fileSelector, std::uint64_t timeout);
};

constexpr Direction kDownload = {
    "OVI::oviFileDownloadToDevice", "Start of oviFileDownloadToDevice()", "File download to device is starting",
    "Error result after file update process finished: ",
    [](FileAccessContext& context, const char* filePath, const char* fileSelector, std::uint64_t timeout) {
      return FileAccessUtils::StandardUpdateProcedure(context, filePath, fileSelector, timeout, "Success");
    }};
constexpr Direction kUpload = {
    "OVI::oviFileUploadFromDevice", "Start of oviFileUploadFromDevice()", "File upload from device is starting",
    "Error result after file upload process finished: ",
    [](FileAccessContext& context, const char* filePath, const char* fileSelector, std::uint64_t /*timeout*/) {
      return FileAccessUtils::StandardUploadProcedure(context, filePath, fileSelector);
    }};

/** Longer time-outs for the producers that need them: a camera that erases its memory answers slowly. */
class ProducerTimeouts {
 public:
  ProducerTimeouts(std::uint64_t device, std::uint64_t timeout) {
    bool s2i = false;
    bool kithara = false;
    OVI::oviIsUsingS2iTL(device, &s2i);
    if (!s2i)
      OVI::oviIsUsingKitharaTL(device, &kithara);
    if (s2i || kithara)
      acknowledge_.emplace(device, "GVCPAckTimeout", s2i ? kS2iAckTimeout : kKitharaAckTimeout);
    if (s2i)
      heartbeat_.emplace(device, "HeartbeatTimeout", timeout);
  }

 private:
  // Restored in the reverse order.
  std::optional<ScopedTimeout> acknowledge_;
  std::optional<ScopedTimeout> heartbeat_;
};

/** The device is there and stays there while the transfer runs. */
oviErr holdDevice(const char* site, std::uint64_t handle, std::shared_ptr<GenTLCpp::Device>& device) {
  const oviErr code = lookupModule(handle, device);
  if (code != OVI_SUCCESS)
    OVI_LOG_ERROR(site) << "Device not found!";
  return code;
}

oviErr transfer(const Direction& direction, std::uint64_t deviceHandle, const char* filePath, const char* fileSelector,
                std::uint64_t timeout, oviFileTransferCallback progressFunction, void* progressContext) {
  if (!isInitialized())
    return OVI_ERR_NOT_INITIALIZED;
  const CachingOff cachingOff;
  if (filePath == nullptr || fileSelector == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  std::shared_ptr<GenTLCpp::Device> device;
  if (const oviErr code = holdDevice(direction.site, deviceHandle, device); code != OVI_SUCCESS)
    return code;
  if (!isFileSelector(deviceHandle, fileSelector)) {
    OVI_LOG_ERROR(direction.site) << "The camera has no file of that name: " << fileSelector;
    return OVI_ERR_INVALID_PARAMETER;
  }
  OVI_LOG_DEBUG(direction.site) << direction.banner;
  OVI_LOG_DEBUG(direction.site) << "File: " << filePath << ", timeout: " << timeout << ", type: " << fileSelector;
  const ProducerTimeouts timeouts(deviceHandle, timeout);
  ProgressReporter reporter(progressFunction, progressContext);
  FileAccessContext context{deviceHandle, reporter};
  if (!reporter.report(TransferStatus::Starting, direction.starting)) {
    reporter.reportResult(OVI_ERR_ABORTED);
    return OVI_ERR_ABORTED;
  }
  const oviErr result = guarded(direction.site, Severity::Error, direction.failed,
                                [&] { return direction.run(context, filePath, fileSelector, timeout); });
  reporter.reportResult(result);
  if (result != OVI_SUCCESS)
    logFailure(direction.site, direction.failed, result);
  return result;
}

}  // namespace

oviErr oviFileDownloadToDevice(std::uint64_t deviceHandle, const char* filePath, const char* fileSelector,
                               std::uint64_t timeout, oviFileTransferCallback progressFunction, void* progressContext) {
  return transfer(kDownload, deviceHandle, filePath, fileSelector, timeout, progressFunction, progressContext);
}

oviErr oviFileUploadFromDevice(std::uint64_t deviceHandle, const char* filePath, const char* fileSelector,
                               std::uint64_t timeout, oviFileTransferCallback progressFunction, void* progressContext) {
  return transfer(kUpload, deviceHandle, filePath, fileSelector, timeout, progressFunction, progressContext);
}

}  // namespace OVI
