// The names under which a camera keeps its files.
#include "file_selector.h"

#include <algorithm>
#include <array>

#include "features/enumerations.h"
#include "platform/ascii.h"
#include "steps.h"

namespace OVI {
namespace {

// Names of older cameras, which take them although they do not list them.
constexpr std::array<std::string_view, 6> kAcceptedEverywhere = {"BrefLut1", "ShcLut1",  "User Defined",
                                                                 "Default",  "GammaLut", "PackageDescriptionFile"};

}  // namespace

bool hasFileSelector(std::uint64_t device, std::string_view name) {
  std::uint32_t count = 0;
  if (OVI::oviGetFeatureEnumEntryCount(device, "FileSelector", &count, kCamera) != OVI_SUCCESS)
    return false;
  oviFeatureParameter entry;
  for (std::uint32_t i = 0; i < count; ++i) {
    if (OVI::oviGetFeatureEnumEntryByIndex(device, "FileSelector", static_cast<std::int32_t>(i), &entry, kCamera) ==
            OVI_SUCCESS &&
        name == entry.stringValue)
      return true;
  }
  return false;
}

bool isFileSelector(std::uint64_t device, std::string_view name) {
  return hasFileSelector(device, name) || std::ranges::any_of(kAcceptedEverywhere, [name](std::string_view accepted) {
           return platform::equalsIgnoringCase(name, accepted);
         });
}

}  // namespace OVI
