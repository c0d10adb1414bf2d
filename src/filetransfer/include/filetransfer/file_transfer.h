// Files to and from a camera: the functions behind the exported ones.
#pragma once

#include <cstdint>

#include "ovi/ovi.h"

namespace OVI {

/** Writes a host file into the camera file that the selector names. `timeout` in milliseconds. */
oviErr oviFileDownloadToDevice(std::uint64_t deviceHandle, const char* filePath, const char* fileSelector,
                               std::uint64_t timeout, oviFileTransferCallback progressFunction, void* progressContext);

/** Reads a camera file into a host file, which appears under its name only when it is complete and proven. */
oviErr oviFileUploadFromDevice(std::uint64_t deviceHandle, const char* filePath, const char* fileSelector,
                               std::uint64_t timeout, oviFileTransferCallback progressFunction, void* progressContext);

/** Names the camera file that suits a host file; `type` stays as it is when none does. */
oviErr oviGetUpdateFileType(std::uint64_t deviceHandle, const char* filePath, char* type, std::uint64_t typeSize);

}  // namespace OVI
