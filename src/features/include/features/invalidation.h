// Callbacks when a feature changes, and the feature objects of a module.
#pragma once

#include <cstdint>

#include "features/node_lookup.h"
#include "ovi/ovi.h"

namespace OVI {

/** The feature list of the module that handle and selector pick. Success without a list is possible. */
oviErr getFeatureListForModule(std::uint64_t handle, std::uint32_t selector, FoundNode& out);

/** The feature object of a node; null when it has none, or no list is there. It lives as long as the list. */
GenTLCpp::Feature* getFeatureFromModule(const GenTLCpp::FeatureList* features, const GenApi::INode* node);

oviErr oviRegisterInvalidateCB(std::uint64_t handle, const char* name, void* context, oviInvalidateCallback callback,
                               std::uint32_t selector);
oviErr oviUnRegisterInvalidateCB(std::uint64_t handle, const char* name, std::uint32_t selector);

}  // namespace OVI
