// Files to and from a camera.
#include "filetransfer/file_transfer.h"
#include "frame.h"
#include "ovi/ovi.h"

using OVI::api::whenInitialized;

oviErr OVI_CALL oviFileDownloadToDevice(uint64_t deviceHandle, const char* filePath, const char* fileSelector,
                                        uint64_t timeout, oviFileTransferCallback progressFunction,
                                        void* progressContext) {
  return whenInitialized("OVI::oviFileDownloadToDevice", [&] {
    return OVI::oviFileDownloadToDevice(deviceHandle, filePath, fileSelector, timeout, progressFunction,
                                        progressContext);
  });
}

oviErr OVI_CALL oviFileUploadFromDevice(uint64_t deviceHandle, const char* filePath, const char* fileSelector,
                                        uint64_t timeout, oviFileTransferCallback progressFunction,
                                        void* progressContext) {
  return whenInitialized("OVI::oviFileUploadFromDevice", [&] {
    return OVI::oviFileUploadFromDevice(deviceHandle, filePath, fileSelector, timeout, progressFunction,
                                        progressContext);
  });
}

oviErr OVI_CALL oviGetUpdateFileType(uint64_t deviceHandle, const char* filePath, char* type, uint64_t typeSize) {
  return whenInitialized("OVI::oviGetUpdateFileType",
                         [&] { return OVI::oviGetUpdateFileType(deviceHandle, filePath, type, typeSize); });
}
