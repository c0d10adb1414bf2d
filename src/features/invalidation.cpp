// Callbacks when a feature changes, and the feature objects of a module.
#include "features/invalidation.h"

#include "gentl/device.h"
#include "gentl/module_lookup.h"
#include "typed_node.h"

namespace OVI {
namespace {

/** Runs `work` with the feature list that handle and selector pick. The failure texts are those of the caller. */
template<class Work>
oviErr withFeatureList(const char* site, std::uint64_t handle, const char* name, std::uint32_t selector,
                       const char* failed, const char* missing, Work&& work) {
  if (!isInitialized())
    return OVI_ERR_NOT_INITIALIZED;
  if (name == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  FoundNode found;
  if (const oviErr code = getFeatureListForModule(handle, selector, found); code != OVI_SUCCESS) {
    OVI_LOG_WARNING(site) << failed << name;
    return code;
  }
  if (found.features == nullptr) {
    OVI_LOG_WARNING(site) << missing << " Failed to get featureList for module. Received null ptr.";
    return OVI_ERR_NOT_FOUND;
  }
  return caught(
      [&]() -> oviErr {
        work(*found.features);
        return OVI_SUCCESS;
      },
      [&](const char* text) { OVI_LOG_ERROR(site) << failed << name << " Error: " << text; });
}

}  // namespace

oviErr getFeatureListForModule(std::uint64_t handle, std::uint32_t selector, FoundNode& out) {
  if (handle == 0)
    return OVI_ERR_INVALID_PARAMETER;
  return caught([&]() -> oviErr { return findFeatures(handle, selector, out); },
                [](const char* text) {
                  OVI_LOG_ERROR("getFeatureListForModule")
                      << "Exception during request of feature tree from module! Error: " << text;
                });
}

GenTLCpp::Feature* getFeatureFromModule(const GenTLCpp::FeatureList* features, const GenApi::INode* node) {
  if (features != nullptr)
    return features->getFeature(node);
  OVI_LOG_ERROR("getFeatureFromModule") << "Failed to get featureList for the Module";
  return nullptr;
}

oviErr oviRegisterInvalidateCB(std::uint64_t handle, const char* name, void* context, oviInvalidateCallback callback,
                               std::uint32_t selector) {
  return withFeatureList(
      "OVI::oviRegisterInvalidateCB", handle, name, selector,
      "Could not register invalidation callback for feature: ", "Could not register invalidation callback!",
      [&](GenTLCpp::FeatureList& features) { features.registerCallback(name, context, callback); });
}

oviErr oviUnRegisterInvalidateCB(std::uint64_t handle, const char* name, std::uint32_t selector) {
  return withFeatureList(
      "OVI::oviUnRegisterInvalidateCB", handle, name, selector,
      "Could not unregister invalidation callback from feature: ", "Could not unregister invalidation callback!",
      [&](GenTLCpp::FeatureList& features) { features.unregisterCallback(name); });
}

}  // namespace OVI
