// Everything about one feature in one record.
#pragma once

#include <cstdint>

#include "features/node_lookup.h"
#include "ovi/ovi.h"

namespace OVI {

/** The oviFeatureType of a node. */
std::uint32_t featureTypeOf(GenApi::EInterfaceType type);

/** The oviAccessMode of a node. */
std::uint32_t accessModeOf(GenApi::EAccessMode mode);

/** Whether a node can be used at all, that is: its access mode is neither NI nor NA. */
bool isUsable(GenApi::INode& node);

/**
 * Fills the record from a node of the node map that `found` holds; `node` may be another node than `found.node`, such
 * as an entry of it. Handle and selector serve the byte-order query. The record is not cleared first, and every field
 * that can be read is filled even when another fails; the first failure is the result.
 */
oviErr nodeToFeatureParameter(oviFeatureParameter* record, GenApi::INode* node, const FoundNode& found,
                              std::uint64_t handle, std::uint32_t selector);

oviErr oviGetFeatureParameter(std::uint64_t handle, const char* name, oviFeatureParameter* record,
                              std::uint32_t selector);
oviErr oviGetFeatureAccessMode(std::uint64_t handle, const char* name, std::uint32_t* accessMode,
                               std::uint32_t selector);

}  // namespace OVI
