// The technologies, as the interface's texts and as the entries of the module descriptions.
#pragma once

#include <gentl_interface/GenTL.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "modules/module_features.h"

namespace vcam {

struct TLType {
  std::string_view name;   // in infos
  std::string_view entry;  // in descriptions
};

// The entry's value is its place in this table.
constexpr std::array<TLType, 7> kTLTypes = {{
    {TLTypeGEVName, "GigEVision"},
    {TLTypeCLName, "CameraLink"},
    {TLTypeCLHSName, "CameraLinkHS"},
    {TLTypeCXPName, "CoaXPress"},
    {TLTypeU3VName, "USB3Vision"},
    {TLTypeCustomName, "Custom"},
    {TLTypeMixedName, "Mixed"},
}};

inline ModuleFeatures::Entries tlTypeEntries(bool mixed) {
  ModuleFeatures::Entries entries;
  for (std::size_t i = 0; i < kTLTypes.size() - (mixed ? 0 : 1); ++i) {
    entries.emplace_back(kTLTypes[i].entry, i);
  }
  return entries;
}

inline std::uint64_t tlTypeValue(std::string_view name) {
  const auto found = std::ranges::find_if(kTLTypes, [&](const TLType& type) { return type.name == name; });
  return found == kTLTypes.end() ? 5 : static_cast<std::uint64_t>(found - kTLTypes.begin());
}

inline ModuleFeatures::Entries accessStatusEntries() {
  return {{"Unknown", DEVICE_ACCESS_STATUS_UNKNOWN},
          {"ReadWrite", DEVICE_ACCESS_STATUS_READWRITE},
          {"ReadOnly", DEVICE_ACCESS_STATUS_READONLY},
          {"NoAccess", DEVICE_ACCESS_STATUS_NOACCESS},
          {"Busy", DEVICE_ACCESS_STATUS_BUSY},
          {"OpenReadWrite", DEVICE_ACCESS_STATUS_OPEN_READWRITE},
          {"OpenReadOnly", DEVICE_ACCESS_STATUS_OPEN_READONLY}};
}

}  // namespace vcam
