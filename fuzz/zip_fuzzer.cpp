// Any bytes as a zipped description: unpacked as a camera's own file, and by the engine.
#include <cstdint>
#include <cstdio>
#include <string>

#include "GenApi/GenApi.h"
#include "camera.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0)
    return 0;
  fuzz::cameraSpace().description.assign(reinterpret_cast<const char*>(data), size);
  char url[64];
  std::snprintf(url, sizeof url, "Local:camera.zip;%llx;%zx",
                static_cast<unsigned long long>(scripted::kDescriptionAddress), size);
  fuzz::descriptionBehind({url});
  try {
    static_cast<void>(GenApi::CNodeMapFactory(GenApi::ContentType_ZippedXml, data, size).ToXml());
  } catch (const GenICam::GenericException&) {  // NOLINT(bugprone-empty-catch): the answer to a broken archive.
  }
  return 0;
}
