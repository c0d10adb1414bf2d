// What the typed functions do with a node once it is found: cast, read, write.
#pragma once

#include <cstdint>
#include <string>

#include "core/global_state.h"
#include "core/log.h"
#include "features/node_lookup.h"
#include "gentl/guard.h"
#include "platform/platform.h"

namespace OVI {

/** The interface that a type of value is read and written through. */
template<class T>
struct InterfaceOf;
template<>
struct InterfaceOf<bool> {
  using Type = GenApi::IBoolean;
};
template<>
struct InterfaceOf<std::int64_t> {
  using Type = GenApi::IInteger;
};
template<>
struct InterfaceOf<double> {
  using Type = GenApi::IFloat;
};
template<>
struct InterfaceOf<GenICam::gcstring> {
  using Type = GenApi::IString;
};

template<class T>
T printable(T value) {
  return value;
}
inline std::string printable(const GenICam::gcstring& value) {
  return platform::fromUtf8(value.c_str());
}

/** What every look-up refuses at once and without a log line: NotInitialized (-100) or InvalidParameter (-105). */
inline oviErr checkArguments(std::uint64_t handle, const char* name) {
  if (!isInitialized())
    return OVI_ERR_NOT_INITIALIZED;
  return handle == 0 || name == nullptr ? OVI_ERR_INVALID_PARAMETER : OVI_SUCCESS;
}

/** A node's interface T, or null. */
template<class T>
T* interfaceOf(GenApi::IBase* node) {
  const GenApi::CPointer<T> found(node);
  return found.IsValid() ? static_cast<T*>(found) : nullptr;
}

/** The node as an enumeration, when that is its principal interface; null otherwise. */
inline GenApi::IEnumeration* asEnumeration(GenApi::INode* node) {
  if (node == nullptr || node->GetPrincipalInterfaceType() != GenApi::intfIEnumeration)
    return nullptr;
  return interfaceOf<GenApi::IEnumeration>(node);
}

/** The second half of genGetNode: the interface T of the node that a look-up found, or null. */
template<class T>
T* castNode(const FoundNode& found, const char* name) {
  T* const value = interfaceOf<T>(found.node);
  if (value == nullptr)
    OVI_LOG_ERROR("genGetNode") << "Node for parameter was found but of different type than requested! Parameter: "
                                << name << " - GenApi node type (int): "
                                << static_cast<int>(found.node->GetPrincipalInterfaceType());
  return value;
}

/** Reads a node that a look-up found. A node that is missing or of another interface is NotFound (-104). */
template<class T>
oviErr readNode(oviErr lookup, const FoundNode& found, const char* name, T& value) {
  const auto warn = [name](const char* text) {
    OVI_LOG_WARNING("getNodeAndGetValue") << "Failed to get parameter! Parameter: " << name << " Error: " << text;
  };
  auto* const node = lookup == OVI_SUCCESS ? castNode<typename InterfaceOf<T>::Type>(found, name) : nullptr;
  if (node == nullptr) {
    warn("Feature node was not found!");
    return OVI_ERR_NOT_FOUND;
  }
  return caught(
      [&]() -> oviErr {
        if (!GenApi::IsReadable(node->GetAccessMode())) {
          warn("Feature node was not readable!");
          return OVI_ERR_NO_ACCESS;
        }
        value = node->GetValue(false, GlobalState::instance().featureCachingDisabled());
        return OVI_SUCCESS;
      },
      warn);
}

/** Writes a node that a look-up found, with verification. */
template<class T>
oviErr writeNode(oviErr lookup, const FoundNode& found, const char* name, const T& value) {
  const auto report = [&](Severity severity, const char* text) {
    OVI_LOG(severity, "getNodeAndSetValue")
        << "Failed to set parameter! Parameter: " << name << ", Value: " << printable(value) << " Error: " << text;
  };
  auto* const node = lookup == OVI_SUCCESS ? castNode<typename InterfaceOf<T>::Type>(found, name) : nullptr;
  if (node == nullptr) {
    report(Severity::Warning, "Feature node was not found!");
    return OVI_ERR_NOT_FOUND;
  }
  return caught(
      [&]() -> oviErr {
        if (!GenApi::IsWritable(node->GetAccessMode())) {
          report(Severity::Warning, "Feature node was not writable!");
          return OVI_ERR_NO_ACCESS;
        }
        node->SetValue(value, true);
        return OVI_SUCCESS;
      },
      [&](const char* text) { report(Severity::Error, text); });
}

/** Reads a feature; T is bool, std::int64_t, double or GenICam::gcstring. */
template<class T>
oviErr getNodeAndGetValue(std::uint64_t handle, const char* name, T& value, std::uint32_t selector) {
  if (const oviErr refused = checkArguments(handle, name); refused != OVI_SUCCESS)
    return refused;
  FoundNode found;
  const oviErr lookup = getBaseNode(handle, name, found, selector);
  return readNode(lookup, found, name, value);
}

/** Writes a feature; T as for getNodeAndGetValue. */
template<class T>
oviErr getNodeAndSetValue(std::uint64_t handle, const char* name, const T& value, std::uint32_t selector) {
  if (const oviErr refused = checkArguments(handle, name); refused != OVI_SUCCESS)
    return refused;
  FoundNode found;
  const oviErr lookup = getBaseNode(handle, name, found, selector);
  return writeNode(lookup, found, name, value);
}

}  // namespace OVI
