// Start of the library and its process-wide options. The end, oviClose, needs discovery and lies there.
#pragma once

#include <cstdint>

#include "ovi/ovi.h"

namespace OVI {

struct LibraryVersion {
  std::uint32_t major;
  std::uint32_t minor;
  std::uint32_t patch;
  std::uint32_t build;
};
inline constexpr LibraryVersion kLibraryVersion{0, 15, 4, 0};

oviErr oviInit(std::uint32_t logLevel, oviLogCallback callback, void* userData);
oviErr oviGetLibraryVersion(std::uint32_t* major, std::uint32_t* minor, std::uint32_t* patch, std::uint32_t* build);
oviErr oviSetIgnoreSubnetEnabled(std::uint8_t enabled);
oviErr oviSetFeatureCachingDisabled(std::uint8_t disabled);
oviErr oviIsFeatureCachingDisabled(std::uint8_t* disabled);

}  // namespace OVI
