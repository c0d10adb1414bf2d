// The file-access protocol: whole files to and from a camera through its file-access features.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ovi/ovi.h"

namespace OVI {

/** What a progress report's status says. */
enum class TransferStatus : std::uint32_t {
  Starting = 0,
  Running = 1,
  WaitingForDevice = 2,
  Finished = 3,
  FinishedWithError = 4,
  Error = 5
};

/** Tells the application how far a transfer is. The totals stay from report to report. */
class ProgressReporter {
 public:
  ProgressReporter(oviFileTransferCallback function, void* context) : function_(function), context_(context) {}

  void setTotal(std::uint64_t bytes) { progress_.totalBytes = bytes; }
  void setDone(std::uint64_t bytes) { progress_.bytesDone = bytes; }

  /** @return whether to go on; always when there is nobody to ask */
  bool report(TransferStatus status, std::string_view message, oviErr errorCode = OVI_SUCCESS);

  /** The last report of a transfer. */
  void reportResult(oviErr result);

 private:
  oviFileTransferCallback function_;
  void* context_;
  oviFileTransferProgress progress_{};
};

/** A camera, and who is told about the progress. */
struct FileAccessContext {
  std::uint64_t device;
  ProgressReporter& reporter;
};

/**
 * The procedures of the protocol. Each returns the code of the first feature call that fails, or what its comment
 * names, and logs the step that failed. Nothing else may use the camera's file-access features meanwhile.
 */
namespace FileAccessUtils {

/** Selects the file and opens it; the mode is "Read" or "Write". */
oviErr OpenFileOnCamera(FileAccessContext& context, const char* fileSelector, const char* openMode);

/** Closes the selected file. */
oviErr CloseFile(FileAccessContext& context);

/** Runs the selected operation and waits, without pausing, until the camera has done it. */
oviErr FileOperationExecute(FileAccessContext& context);

/** The text of "FileOperationStatus", "Unknown" when it cannot be read. */
oviErr GetFileOperationStatus(FileAccessContext& context, std::string& status);

/**
 * The open file's size, the size of the buffer that takes it in whole chunks, and the chunk's size.
 *
 * @return FileOperationFailure (-110) for a size that cannot be
 */
oviErr GetUploadFileSize(FileAccessContext& context, std::int64_t& fileSize, std::int64_t& paddedSize,
                         std::int64_t& chunkSize);

/** Writes the data to the open file. Aborted (-109) when the application asks to stop. */
oviErr TransmitChunks(FileAccessContext& context, const std::vector<std::uint8_t>& data);

/** Reads the open file into `data`, which has room for it, asks the camera for its checksum and closes the file. */
oviErr DoLoadFileFromCamera(FileAccessContext& context, std::int64_t fileSize, std::int64_t chunkSize,
                            std::vector<std::uint8_t>& data, std::int64_t& checksum);

/** The sum of the data's little-endian 32-bit words, modulo 2^32; the last one is filled up with zeros. */
std::uint32_t Checksum(const std::vector<std::uint8_t>& data);

/**
 * A host file into a camera file.
 *
 * @param timeout         milliseconds
 * @param expectedStatus  what "FileOperationStatus" must read after the file is closed; else FileOperationFailure
 * (-110)
 */
oviErr StandardUpdateProcedure(FileAccessContext& context, const char* filePath, const char* fileSelector,
                               std::uint64_t timeout, std::string_view expectedStatus);

/** A camera file into a host file. */
oviErr StandardUploadProcedure(FileAccessContext& context, const char* filePath, const char* fileSelector);

}  // namespace FileAccessUtils
}  // namespace OVI
