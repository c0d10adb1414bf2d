/// The root of all interfaces of a node.
#pragma once

#include "GenApi/Types.h"

namespace GENAPI_NAMESPACE {

struct GENAPI_DECL_ABSTRACT IBase {
  virtual EAccessMode GetAccessMode() const = 0;
  virtual ~IBase() = 0;

  /// The engine's nodes answer here what a dynamic_cast would find, without its search; CPointer asks this first.
  ///
  /// @param Type       the wanted interface, or kInterfaceINode
  /// @param Interface  receives the interface pointer, null if the object does not have it
  /// @return           false if the object leaves the question to dynamic_cast
  virtual bool FindInterface(int /*Type*/, void** /*Interface*/) { return false; }
};

inline IBase::~IBase() = default;

/// Stands for INode in FindInterface; the other numbers are those of EInterfaceType.
constexpr int kInterfaceINode = 100;

/// The number of an interface in FindInterface; negative for those that are found by dynamic_cast only.
template<class T>
struct InterfaceNumber {
  static constexpr int value = -1;
};

}  // namespace GENAPI_NAMESPACE
