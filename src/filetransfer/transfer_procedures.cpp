// The whole way of a file: from the host's disk into the camera, and back.
#include <algorithm>
#include <array>
#include <new>

#include "features/feature_parameter.h"
#include "features/typed_access.h"
#include "filetransfer/file_access_utils.h"
#include "platform/ascii.h"
#include "steps.h"

namespace OVI::FileAccessUtils {
namespace {

constexpr const char* kUpdateSite = "FileAccessUtils::StandardUpdateProcedure";
constexpr const char* kUploadSite = "FileAccessUtils::StandardUploadProcedure";

oviErr outOfMemory(const char* site, const char* path) {
  OVI_LOG_ERROR(site) << "Not enough memory for the file " << path;
  return OVI_ERR_OUT_OF_MEMORY;
}

/** Sets the heart beat to the time-out and at once back again: cameras take the write as a sign that a host is there.
 */
void touchHeartbeat(const FileAccessContext& context, std::uint64_t timeout) {
  constexpr const char* kFeature = "DeviceLinkHeartbeatTimeout";
  constexpr double kMicrosecondsPerMillisecond = 1000.0;
  oviFeatureParameter limits;
  double current = 0;
  const oviErr code = OVI::oviGetFeatureParameter(context.device, kFeature, &limits, kCamera);
  if (code != OVI_SUCCESS || limits.featureType != OVI_FEATURE_FLOAT || !limits.isFeature ||
      OVI::oviGetFeatureFloat(context.device, kFeature, &current, kCamera) != OVI_SUCCESS) {
    OVI_LOG_DEBUG(kUpdateSite) << "The camera has no " << kFeature << " to adjust.";
    return;
  }
  const double wanted = static_cast<double>(timeout) * kMicrosecondsPerMillisecond;
  OVI::oviSetFeatureFloat(context.device, kFeature, std::max(limits.floatMin, std::min(limits.floatMax, wanted)),
                          kCamera);
  OVI::oviSetFeatureFloat(context.device, kFeature, current, kCamera);
}

oviErr readHostFile(const char* path, std::vector<std::uint8_t>& data) {
  try {
    const std::string error = platform::readWholeFile(path, largestFile(), data);
    if (error.empty() && !data.empty())
      return OVI_SUCCESS;
    OVI_LOG_ERROR(kUpdateSite) << "Cannot read the file " << path << ": "
                               << (error.empty() ? "The file is empty." : error.c_str());
    return OVI_ERR_NOT_FOUND;
  } catch (const std::bad_alloc&) {
    return outOfMemory(kUpdateSite, path);
  }
}

oviErr writeHostFile(const char* path, const std::vector<std::uint8_t>& data, std::int64_t size) {
  const std::string error = platform::writeWholeFile(path, data.data(), static_cast<std::size_t>(size));
  if (error.empty())
    return OVI_SUCCESS;
  OVI_LOG_ERROR(kUploadSite) << "Cannot write the file " << path << ": " << error;
  return OVI_ERR_FILE_OPERATION_FAILURE;
}

/** Cameras of one model family compute another checksum. */
bool hasChecksum(const FileAccessContext& context) {
  constexpr std::string_view kExempt = "SWIR";
  std::array<char, 512> model{};
  std::size_t size = model.size();
  if (OVI::oviGetFeatureString(context.device, "DeviceModelName", model.data(), &size, kCamera) != OVI_SUCCESS)
    return true;
  return platform::upperCase(std::string_view(model.data())).find(kExempt) == std::string::npos;
}

oviErr checkChecksum(FileAccessContext& context, const std::vector<std::uint8_t>& data, std::int64_t expected) {
  if (!hasChecksum(context))
    return OVI_SUCCESS;
  const std::uint32_t sum = Checksum(data);
  if (sum == static_cast<std::uint32_t>(expected))
    return OVI_SUCCESS;
  OVI_LOG_ERROR(kUploadSite) << "Checksum does not match! Received data: " << sum << ", camera: " << expected;
  context.reporter.report(TransferStatus::Error, "Checksum does not match!", OVI_ERR_FILE_OPERATION_FAILURE);
  return OVI_ERR_FILE_OPERATION_FAILURE;
}

}  // namespace

oviErr StandardUpdateProcedure(FileAccessContext& context, const char* filePath, const char* fileSelector,
                               std::uint64_t timeout, std::string_view expectedStatus) {
  std::vector<std::uint8_t> data;
  std::string status;
  touchHeartbeat(context, timeout);
  if (const oviErr code = readHostFile(filePath, data); code != OVI_SUCCESS)
    return code;
  const std::uint32_t checksum = Checksum(data);
  CloseFile(context);
  Steps step(kUpdateSite);
  if (!step(OpenFileOnCamera(context, fileSelector, "Write")) || !step(TransmitChunks(context, data)))
    return step.code();
  if (!context.reporter.report(TransferStatus::WaitingForDevice, "Waiting for device to finish the update..."))
    return OVI_ERR_ABORTED;
  if (!step("Failed to set feature FileCheckSum on camera: ",
            OVI::oviSetFeatureInt(context.device, "FileChecksum", checksum, kCamera)) ||
      !step(CloseFile(context)) || !step(GetFileOperationStatus(context, status)))
    return step.code();
  if (status == expectedStatus)
    return OVI_SUCCESS;
  OVI_LOG_ERROR(kUpdateSite) << "The camera did not take the file: FileOperationStatus is " << status << ", not "
                             << expectedStatus << ".";
  return OVI_ERR_FILE_OPERATION_FAILURE;
}

oviErr StandardUploadProcedure(FileAccessContext& context, const char* filePath, const char* fileSelector) {
  CloseFile(context);
  if (const oviErr code = OpenFileOnCamera(context, fileSelector, "Read"); code != OVI_SUCCESS)
    return code;
  std::int64_t fileSize = 0;
  std::int64_t paddedSize = 0;
  std::int64_t chunkSize = 0;
  std::int64_t checksum = 0;
  std::vector<std::uint8_t> data;
  oviErr code = GetUploadFileSize(context, fileSize, paddedSize, chunkSize);
  if (code == OVI_SUCCESS) {
    try {
      data.resize(static_cast<std::size_t>(paddedSize));
    } catch (const std::bad_alloc&) {
      code = outOfMemory(kUploadSite, filePath);
    }
  }
  if (code == OVI_SUCCESS) {
    context.reporter.setTotal(static_cast<std::uint64_t>(fileSize));
    code = DoLoadFileFromCamera(context, fileSize, chunkSize, data, checksum);
  }
  if (code != OVI_SUCCESS) {
    CloseFile(context);
    return code;
  }
  code = checkChecksum(context, data, checksum);
  return code == OVI_SUCCESS ? writeHostFile(filePath, data, fileSize) : code;
}

}  // namespace OVI::FileAccessUtils
