// Any bytes as a file for a camera. The first byte is the room for the type's name; the second chooses the names that
// the camera knows.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "camera.h"
#include "filetransfer/file_transfer.h"
#include "support.h"

namespace {

constexpr const char* kSelectors[] = {"BrefLut1", "ShcLut1", "UserSet1", "GammaLut"};

std::string describeSelectors(unsigned known) {
  std::string entries;
  for (std::size_t i = 0; i < std::size(kSelectors); ++i) {
    const std::string available = (known & (1U << i)) != 0 ? "" : "<pIsAvailable>Never</pIsAvailable>";
    entries += std::string("<EnumEntry Name=\"") + kSelectors[i] + "\">" + available + "<Value>" + std::to_string(i) +
               "</Value></EnumEntry>";
  }
  return "<RegisterDescription ModelName=\"Files\" VendorName=\"Ovi\"><Category Name=\"Root\"><pFeature>FileSelector"
         "</pFeature></Category><Enumeration Name=\"FileSelector\">" +
         entries +
         "<Value>0</Value></Enumeration><Integer Name=\"Never\"><Value>0</Value></Integer>"
         "<Port Name=\"Device\"/></RegisterDescription>";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fuzz::ScratchFile file("update");
  if (size < 2)
    return 0;
  fuzz::cameraSpace().description = describeSelectors(data[1]);
  const fuzz::Camera camera;
  file.write(data + 2, size - 2);
  const std::size_t room = data[0];
  const auto type = std::make_unique<char[]>(room);
  const oviErr code = OVI::oviGetUpdateFileType(camera.handle(), file.path().c_str(), type.get(), room);
  fuzz::require(code == (room > 0 ? OVI_SUCCESS : OVI_ERR_INVALID_PARAMETER));
  fuzz::require(room == 0 || std::memchr(type.get(), '\0', room) != nullptr);
  return 0;
}
