// From a handle, a feature name and a module selector to one node of one node map.
#pragma once

#include <cstdint>
#include <memory>

#include "GenApi/GenApi.h"
#include "gentl/base_module.h"
#include "gentl/feature_list.h"
#include "ovi/ovi.h"

namespace OVI {

/**
 * A node, the module whose port it reads and the feature list that owns its node map. Both are held for the length of
 * one call; closing the device meanwhile makes reads fail, but leaves no pointer dangling.
 */
struct FoundNode {
  GenTLCpp::BaseModule* module = nullptr;
  GenTLCpp::FeatureList* features = nullptr;
  GenApi::INode* node = nullptr;
  Hold moduleHold;  // Of the module that the handle names, which keeps those above it.
  Hold featuresHold;
};

/** A node with the interface that the caller asked for; `value` is null when the look-up failed. */
template<class T>
struct TypedNode {
  FoundNode found;
  T* value = nullptr;
};

/**
 * Finds the module that `selector` names relative to the module behind `handle`, walking upwards (buffer, stream,
 * device, interface, system). Selectors 3 and 4 both yield the device.
 *
 * @return Success; NotFound (-104) for an unknown handle or when the walk meets no module of that kind
 */
oviErr findModule(std::uint64_t handle, std::uint32_t selector, std::shared_ptr<GenTLCpp::BaseModule>& out);

/**
 * The feature list that handle and selector pick, and its module: the remote device's for selector 3, else that of the
 * module that findModule finds. Success with an empty list is possible: the module has no description.
 *
 * @throws what fetching the description throws
 */
oviErr findFeatures(std::uint64_t handle, std::uint32_t selector, FoundNode& out);

/**
 * The node called `name` in the node map that handle and selector pick.
 *
 * @return Success with `out.node` set; NotInitialized (-100), InvalidParameter (-105) for handle 0 or a null name,
 *         NotFound (-104), Unknown (-200) after a GenApi exception, or the mapped code of a GenTL exception
 * @throws nothing but what the allocator throws
 */
oviErr getBaseNode(std::uint64_t handle, const char* name, FoundNode& out, std::uint32_t selector);

/**
 * As getBaseNode, and the node must have the interface T: IBoolean, ICommand, IEnumeration, IInteger, IRegister,
 * IString or IFloat. A node of another interface gives InvalidParameter (-105); nothing is converted.
 */
template<class T>
oviErr genGetNode(std::uint64_t handle, const char* name, TypedNode<T>& out, std::uint32_t selector);

/** Whether the feature is an enumeration, which `out` then holds. Logs nothing, whatever the reason for a no. */
bool isEnumeration(std::uint64_t handle, const char* name, TypedNode<GenApi::IEnumeration>& out,
                   std::uint32_t selector);

}  // namespace OVI
