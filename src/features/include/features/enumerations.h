// The entries of an enumeration feature: counted, described, listed.
#pragma once

#include <cstdint>

#include "features/node_lookup.h"
#include "ovi/ovi.h"

namespace OVI {

/** The entries that can be used (access mode neither NI nor NA), in the description's order. `found` keeps them alive.
 */
oviErr getEnumEntriesForFeature(std::uint64_t handle, const char* name, FoundNode& found, GenApi::NodeList_t& entries,
                                std::uint32_t selector);

/** Describes one entry; `index` goes into the record as it is. A null or unusable entry gives NotFound (-104). */
oviErr enumEntryNodeToFeatureParameter(std::uint64_t handle, GenApi::INode* entry, const FoundNode& found,
                                       const char* featureName, oviFeatureParameter* record, std::uint8_t index,
                                       std::uint32_t selector);

oviErr oviGetFeatureEnumEntryCount(std::uint64_t handle, const char* name, std::uint32_t* count,
                                   std::uint32_t selector);
oviErr oviGetFeatureEnumEntryByIndex(std::uint64_t handle, const char* name, std::int32_t index,
                                     oviFeatureParameter* record, std::uint32_t selector);
oviErr oviGetFeatureEnumEntryByName(std::uint64_t handle, const char* name, const char* entryName,
                                    oviFeatureParameter* record, std::uint32_t selector);

/** Describes the current entry. Its index counts in the list of all entries, unusable ones included; 255 when unknown.
 */
oviErr oviGetFeatureEnum(std::uint64_t handle, const char* name, oviFeatureParameter* entry, std::uint32_t selector);

/** All usable entries' names in one text, without a bound: the caller brings room enough. Always the remote device. */
oviErr oviGetFeatureAllEnums(std::uint64_t handle, const char* name, char* text, std::uint32_t useDisplayNames);

}  // namespace OVI
