// The file-access protocol: its single operations.
#include "filetransfer/file_access_utils.h"

#include <algorithm>
#include <limits>

#include "core/bounded_copy.h"
#include "features/feature_parameter.h"
#include "features/typed_access.h"
#include "steps.h"

namespace OVI {

bool ProgressReporter::report(TransferStatus status, std::string_view message, oviErr errorCode) {
  if (function_ == nullptr)
    return true;
  progress_.status = static_cast<std::uint32_t>(status);
  progress_.errorCode = errorCode;
  boundedCopy(progress_.message, message);
  return function_(&progress_, context_) != 0;
}

void ProgressReporter::reportResult(oviErr result) {
  const bool good = result == OVI_SUCCESS;
  progress_.bytesDone = good ? progress_.totalBytes : 0;
  report(good ? TransferStatus::Finished : TransferStatus::FinishedWithError,
         good ? "Tranfer finished successful" : "Tranfer finished with error", result);
}

namespace FileAccessUtils {
namespace {

constexpr std::int64_t kLongestReadChunk = 65535;

oviErr selectOperation(const FileAccessContext& context, const char* operation) {
  return OVI::oviSetFeatureString(context.device, "FileOperationSelector", operation, kCamera);
}

/** Waits until the camera has done what it was told. Failing queries are tolerated up to a number of them in a row. */
oviErr waitForOperation(const FileAccessContext& context, const char* site) {
  constexpr int kMostFailures = 20;
  int failures = 0;
  for (;;) {
    bool active = true;
    const oviErr code = OVI::oviIsCommandActive(context.device, "FileOperationExecute", &active, kCamera);
    if (code == OVI_SUCCESS) {
      if (!active)
        return code;
      failures = 1;  // Not 0: a wait that worked once has one failure less to spend.
    } else if (failures == kMostFailures) {
      logFailure(site, "Error during oviIsCommandActive(FileOperationExecute)! ", code);
      return code;
    } else {
      ++failures;
    }
  }
}

/** Checks that the camera has moved as many bytes as it was asked to. */
oviErr checkOperationResult(const FileAccessContext& context, const char* site, std::int64_t expected) {
  std::int64_t result = 0;
  Steps step(site);
  if (!step("File update error on executing file operation command: ",
            OVI::oviGetFeatureInt(context.device, "FileOperationResult", &result, kCamera)))
    return step.code();
  if (result == expected)
    return OVI_SUCCESS;
  OVI_LOG_ERROR(site) << "FileOperationResult feature returned a size unequal to the expected value: " << result
                      << " != " << expected;
  return OVI_ERR_FILE_OPERATION_FAILURE;
}

oviErr checkWriteStatus(const FileAccessContext& context, const char* site) {
  oviFeatureParameter status;
  Steps step(site);
  if (!step("File update error on during reading of file operation status: ",
            OVI::oviGetFeatureParameter(context.device, "FileOperationStatus", &status, kCamera)))
    return step.code();
  const std::string_view text = status.stringValue;
  if (text == "Success")
    return OVI_SUCCESS;
  if (text == "FatalError")
    OVI_LOG_ERROR(site) << "Camera reported a fatal error during file operation (FileOperationStatus=FatalError)! ";
  else
    OVI_LOG_ERROR(site) << "Camera reported an error during file operation (FileOperationStatus=" << text << ")";
  return OVI_ERR_UNKNOWN;
}

oviErr checkReadStatus(FileAccessContext& context, const char* site) {
  constexpr const char* kFailed = "LoadFileFromCamera GetFileOperationStatus: FileOperationStatus failed. Error: ";
  constexpr const char* kFatal =
      "LoadFileFromCamera GetFileOperationStatus: FileOperationStatus returns \"FatalError\". Error: ";
  std::string status;
  Steps step(site);
  if (!step(kFailed, GetFileOperationStatus(context, status)))
    return step.code();
  if (status == "Failure")
    step(kFailed, OVI_ERR_FILE_OPERATION_FAILURE);
  else if (status == "FatalError")
    step(kFatal, OVI_ERR_FILE_OPERATION_FATAL);
  return step.code();
}

/** The buffer is filled first; then the camera learns where it belongs. */
oviErr writeChunk(FileAccessContext& context, const char* site, const std::uint8_t* data, std::int64_t offset,
                  std::int64_t size) {
  Steps step(site);
  if (step("File update error on setting register FileAccessBuffer: ",
           OVI::oviSetFeatureReg(context.device, "FileAccessBuffer", data, size, kCamera)) &&
      step("File update error on setting feature FileAccessOffset: ",
           OVI::oviSetFeatureInt(context.device, "FileAccessOffset", offset, kCamera)) &&
      step("File update error on setting feature FileAccessLength: ",
           OVI::oviSetFeatureInt(context.device, "FileAccessLength", size, kCamera)) &&
      step("File update error on executing file operation command: ", FileOperationExecute(context)) &&
      step(checkOperationResult(context, site, size)))
    step(checkWriteStatus(context, site));
  return step.code();
}

/** The other way round: the camera learns what is wanted, and only then is the buffer fetched. */
oviErr readChunk(FileAccessContext& context, const char* site, std::uint8_t* data, std::int64_t offset,
                 std::int64_t size) {
  std::int64_t length = size;
  Steps step(site);
  if (step("LoadFileFromCamera oviSetParameterInt(FileAccessOffset) failed. Error: ",
           OVI::oviSetFeatureInt(context.device, "FileAccessOffset", offset, kCamera)) &&
      step("LoadFileFromCamera oviSetParameterInt(FileAccessLength) failed. Error: ",
           OVI::oviSetFeatureInt(context.device, "FileAccessLength", size, kCamera)) &&
      step("LoadFileFromCamera fileOperationExecute: FileOperationExecute(1) failed. Error: ",
           FileOperationExecute(context)) &&
      step("LoadFileFromCamera oviGetFeatureReg: FileAccessBuffer failed. Error: ",
           OVI::oviGetFeatureReg(context.device, "FileAccessBuffer", data, &length, kCamera)) &&
      step(checkOperationResult(context, site, size)))
    step(checkReadStatus(context, site));
  return step.code();
}

/** Moves `size` bytes chunk by chunk, and tells the application after each. */
template<class MoveChunk>
oviErr moveChunks(FileAccessContext& context, const char* site, std::int64_t size, std::int64_t chunkSize,
                  const char* message, MoveChunk&& moveChunk) {
  for (std::int64_t offset = 0; offset < size; offset += chunkSize) {
    const oviErr code = moveChunk(offset, std::min(size - offset, chunkSize));
    context.reporter.setDone(static_cast<std::uint64_t>(offset));
    if (code != OVI_SUCCESS) {
      OVI_LOG_ERROR(site) << "Transfer ended at byte " << offset << " of " << size << ", chunk "
                          << offset / chunkSize + 1 << " of " << (size - 1) / chunkSize + 1 << ".";
      return code;
    }
    if (!context.reporter.report(TransferStatus::Running, message))
      return OVI_ERR_ABORTED;
  }
  return OVI_SUCCESS;
}

oviErr refuseSize(const char* site, const char* feature, std::int64_t size, std::uint64_t smallest,
                  std::uint64_t largest) {
  OVI_LOG_ERROR(site) << "The camera's " << feature << " is not usable: " << size << " bytes, " << smallest << " to "
                      << largest << " are possible.";
  return OVI_ERR_FILE_OPERATION_FAILURE;
}

oviErr refuseBuffer(const char* site, std::int64_t size) {
  return refuseSize(site, "FileAccessBuffer", size, 1, std::numeric_limits<std::int64_t>::max());
}

}  // namespace

oviErr OpenFileOnCamera(FileAccessContext& context, const char* fileSelector, const char* openMode) {
  constexpr const char* kSite = "FileAccessUtils::OpenFileOnCamera";
  if (const oviErr code = OVI::oviSetFeatureString(context.device, "FileSelector", fileSelector, kCamera);
      code != OVI_SUCCESS) {
    OVI_LOG_ERROR(kSite) << "Failed to select file on camera! File: " << fileSelector
                         << ". Operation mode: " << openMode << " " << describeResult(code);
    return code;
  }
  constexpr const char* kNotOpened = "Failed to select file opertion on camera to Open!";
  Steps step(kSite);
  if (step("Failed to set FileOpenMode on camera!",
           OVI::oviSetFeatureString(context.device, "FileOpenMode", openMode, kCamera)) &&
      step(kNotOpened, selectOperation(context, "Open")))
    step(kNotOpened, FileOperationExecute(context));
  return step.code();
}

oviErr CloseFile(FileAccessContext& context) {
  Steps step("FileAccessUtils::CloseFile");
  if (step("CloseFile: oviSetParameterString(FileOperationSelector) -> Close - Error: ",
           selectOperation(context, "Close")))
    step(FileOperationExecute(context));
  return step.code();
}

oviErr FileOperationExecute(FileAccessContext& context) {
  constexpr const char* kSite = "FileAccessUtils::FileOperationExecute";
  constexpr const char* kPending = "Failed to execute pending file operation on camera!";
  bool active = false;
  Steps step(kSite);
  if (step(kPending, OVI::oviIsCommandActive(context.device, "FileOperationExecute", &active, kCamera)) &&
      step("Error during oviSetParameterCmd(FileOperationExecute)! ",
           OVI::oviExecuteCommand(context.device, "FileOperationExecute", kCamera)))
    step(kPending, waitForOperation(context, kSite));
  return step.code();
}

oviErr GetFileOperationStatus(FileAccessContext& context, std::string& status) {
  oviFeatureParameter record;
  status = "Unknown";
  Steps step("FileAccessUtils::GetFileOperationStatus");
  if (step("Failed to get file operation status: ",
           OVI::oviGetFeatureParameter(context.device, "FileOperationStatus", &record, kCamera)))
    status = record.stringValue;
  return step.code();
}

oviErr GetUploadFileSize(FileAccessContext& context, std::int64_t& fileSize, std::int64_t& paddedSize,
                         std::int64_t& chunkSize) {
  constexpr const char* kSite = "FileAccessUtils::GetUploadFileSize";
  oviFeatureParameter buffer;
  Steps step(kSite);
  if (!step("Cancel file download. Getting feature FileAccessBuffer failed: ",
            OVI::oviGetFeatureParameter(context.device, "FileAccessBuffer", &buffer, kCamera)))
    return step.code();
  if (buffer.registerLength <= 0)
    return refuseBuffer(kSite, buffer.registerLength);
  chunkSize = std::min(buffer.registerLength, kLongestReadChunk);
  if (!step("Failed to get file size from camera, oviGetParameterInt(\"FileSize\") error: ",
            OVI::oviGetFeatureInt(context.device, "FileSize", &fileSize, kCamera)))
    return step.code();
  const std::uint64_t limit = largestFile();
  if (fileSize < 0 || static_cast<std::uint64_t>(fileSize) > limit)
    return refuseSize(kSite, "FileSize", fileSize, 0, limit);
  paddedSize = chunkSize - fileSize % chunkSize + fileSize;
  return OVI_SUCCESS;
}

oviErr TransmitChunks(FileAccessContext& context, const std::vector<std::uint8_t>& data) {
  constexpr const char* kSite = "FileAccessUtils::TransmitChunks";
  constexpr const char* kFinished = "Data transfer finished successfully!";
  std::int64_t chunkSize = 0;
  Steps step(kSite);
  if (!step("oviSetParameterString: FileOperationSelector(Write) failed", selectOperation(context, "Write")) ||
      !step(OVI::oviGetFeatureReg(context.device, "FileAccessBuffer", nullptr, &chunkSize, kCamera)))
    return step.code();
  const auto size = static_cast<std::int64_t>(data.size());
  context.reporter.setTotal(data.size());
  if (chunkSize <= 0 && size > 0)
    return refuseBuffer(kSite, chunkSize);
  const oviErr code = moveChunks(context, kSite, size, chunkSize, "Data transfer in progress...",
                                 [&](std::int64_t offset, std::int64_t count) {
                                   return writeChunk(context, kSite, data.data() + offset, offset, count);
                                 });
  if (code != OVI_SUCCESS)
    return code;
  context.reporter.setDone(data.size());
  context.reporter.report(TransferStatus::Running, kFinished);
  return OVI_SUCCESS;
}

oviErr DoLoadFileFromCamera(FileAccessContext& context, std::int64_t fileSize, std::int64_t chunkSize,
                            std::vector<std::uint8_t>& data, std::int64_t& checksum) {
  constexpr const char* kSite = "FileAccessUtils::DoLoadFileFromCamera";
  Steps step(kSite);
  if (!step("LoadFileFromCamera oviSetParameterString:FileOperationSelector(\"Read\") ",
            selectOperation(context, "Read")))
    return step.code();
  const oviErr code = moveChunks(context, kSite, fileSize, chunkSize, "Data transfer in progress..",
                                 [&](std::int64_t offset, std::int64_t count) {
                                   return readChunk(context, kSite, data.data() + offset, offset, count);
                                 });
  if (code != OVI_SUCCESS)
    return code;
  if (!step("Failed to get feature FileCheckSum from camera: ",
            OVI::oviGetFeatureInt(context.device, "FileChecksum", &checksum, kCamera))) {
    context.reporter.report(TransferStatus::Error, "Checksum request from camera failed!", step.code());
    return step.code();
  }
  return CloseFile(context);
}

std::uint32_t Checksum(const std::vector<std::uint8_t>& data) {
  std::uint32_t sum = 0;
  std::size_t i = 0;
  for (; i + 4 <= data.size(); i += 4)
    sum += static_cast<std::uint32_t>(data[i]) | static_cast<std::uint32_t>(data[i + 1]) << 8U |
           static_cast<std::uint32_t>(data[i + 2]) << 16U | static_cast<std::uint32_t>(data[i + 3]) << 24U;
  for (std::uint32_t shift = 0; i < data.size(); ++i, shift += 8)
    sum += static_cast<std::uint32_t>(data[i]) << shift;
  return sum;
}

}  // namespace FileAccessUtils
}  // namespace OVI
