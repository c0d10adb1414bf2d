// From a handle, a feature name and a module selector to one node of one node map.
#include "features/node_lookup.h"

#include <array>
#include <cstring>
#include <utility>

#include "gentl/device.h"
#include "gentl/module_lookup.h"
#include "typed_node.h"

namespace OVI {
namespace {

enum class Reports { Logged, Suppressed };

/** The module type that a selector names, or -1. */
constexpr int moduleTypeOf(std::uint32_t selector) {
  constexpr std::array kTypes = {-1, 0, 1, 2, 2, 3, 4};
  return selector < kTypes.size() ? kTypes[selector] : -1;
}

/** Arguments are checked already. */
oviErr findNode(std::uint64_t handle, const char* name, FoundNode& out, std::uint32_t selector, Reports reports) {
  constexpr const char* kSite = "getBaseNode";
  const oviErr code = caught(
      [&]() -> oviErr {
        if (const oviErr found = findFeatures(handle, selector, out); found != OVI_SUCCESS)
          return found;
        if (out.features != nullptr) {
          out.node = out.features->getNodeMap()->FindNode(name, std::strlen(name));
        } else if (selector == OVI_MODULE_REMOTE_DEVICE) {
          if (reports == Reports::Logged)
            OVI_LOG_WARNING(kSite) << "Node map for module was empty, feature node requested: " << name;
          return OVI_ERR_NOT_FOUND;
        }
        return OVI_SUCCESS;
      },
      [&](const char* text) {
        if (reports == Reports::Logged)
          OVI_LOG_ERROR(kSite) << "Failed to get node for parameter! Error: " << text;
      });
  if (code != OVI_SUCCESS || out.node != nullptr)
    return code;
  if (reports == Reports::Logged)
    OVI_LOG_WARNING(kSite) << "Node for parameter was not found! Parameter: " << name;
  return OVI_ERR_NOT_FOUND;
}

}  // namespace

oviErr findModule(std::uint64_t handle, std::uint32_t selector, std::shared_ptr<GenTLCpp::BaseModule>& out) {
  const int wanted = moduleTypeOf(selector);
  std::shared_ptr<GenTLCpp::BaseModule> module;
  if (wanted < 0 || lookupModule(handle, module) != OVI_SUCCESS)
    return OVI_ERR_NOT_FOUND;
  while (module != nullptr && module->moduleType() != wanted)
    module = parentOf(*module);
  out = std::move(module);
  return out != nullptr ? OVI_SUCCESS : OVI_ERR_NOT_FOUND;
}

oviErr findFeatures(std::uint64_t handle, std::uint32_t selector, FoundNode& out) {
  if (selector == OVI_MODULE_REMOTE_DEVICE) {
    auto* const device = holdModule<GenTLCpp::Device>(handle, out.moduleHold);
    if (device == nullptr)
      return OVI_ERR_NOT_FOUND;
    out.module = device;
    out.features = device->getRemoteFeatureList(out.featuresHold);
    return OVI_SUCCESS;
  }
  const int wanted = moduleTypeOf(selector);
  auto* module = wanted < 0 ? nullptr : holdModule<GenTLCpp::BaseModule>(handle, out.moduleHold);
  while (module != nullptr && module->moduleType() != wanted)
    module = parentOf(*module).get();
  if (module == nullptr)
    return OVI_ERR_NOT_FOUND;
  out.module = module;
  out.features = module->getFeatureList(out.featuresHold);
  return OVI_SUCCESS;
}

oviErr getBaseNode(std::uint64_t handle, const char* name, FoundNode& out, std::uint32_t selector) {
  if (const oviErr refused = checkArguments(handle, name); refused != OVI_SUCCESS)
    return refused;
  return findNode(handle, name, out, selector, Reports::Logged);
}

template<class T>
oviErr genGetNode(std::uint64_t handle, const char* name, TypedNode<T>& out, std::uint32_t selector) {
  if (const oviErr code = getBaseNode(handle, name, out.found, selector); code != OVI_SUCCESS)
    return code;
  out.value = castNode<T>(out.found, name);
  return out.value != nullptr ? OVI_SUCCESS : OVI_ERR_INVALID_PARAMETER;
}

template oviErr genGetNode(std::uint64_t, const char*, TypedNode<GenApi::IBoolean>&, std::uint32_t);
template oviErr genGetNode(std::uint64_t, const char*, TypedNode<GenApi::ICommand>&, std::uint32_t);
template oviErr genGetNode(std::uint64_t, const char*, TypedNode<GenApi::IEnumeration>&, std::uint32_t);
template oviErr genGetNode(std::uint64_t, const char*, TypedNode<GenApi::IInteger>&, std::uint32_t);
template oviErr genGetNode(std::uint64_t, const char*, TypedNode<GenApi::IRegister>&, std::uint32_t);
template oviErr genGetNode(std::uint64_t, const char*, TypedNode<GenApi::IString>&, std::uint32_t);
template oviErr genGetNode(std::uint64_t, const char*, TypedNode<GenApi::IFloat>&, std::uint32_t);

bool isEnumeration(std::uint64_t handle, const char* name, TypedNode<GenApi::IEnumeration>& out,
                   std::uint32_t selector) {
  if (checkArguments(handle, name) != OVI_SUCCESS)
    return false;
  findNode(handle, name, out.found, selector, Reports::Suppressed);
  out.value = asEnumeration(out.found.node);
  return out.value != nullptr;
}

}  // namespace OVI
