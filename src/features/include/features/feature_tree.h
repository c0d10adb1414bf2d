// The feature tree: the children of a node one by one, and the remote device's whole tree.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ovi/ovi.h"

namespace OVI {

/** Child `index` of a node: its reading children first, then a selector's features or an enumeration's entries. */
oviErr oviIterateFeatureTree(std::uint64_t handle, const char* parentName, std::uint32_t index, char* childName,
                             std::size_t childNameSize, std::uint32_t* childType, std::uint32_t selector);

/** Writes kind, name and depth of every feature below "Root"; the caller's array must be large enough. */
oviErr oviGetFeatureList(std::uint64_t handle, FEATURE_PARAM_LIST_STRUCT* list, int includeInvisible);

}  // namespace OVI
