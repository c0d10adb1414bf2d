// Kinds of node that only FireWire cameras could fill with life: they are in the map, but never available.
#pragma once

#include "nodes/integer_base.h"
#include "nodes/string_base.h"
#include "nodes/value_node.h"

namespace GenApiEngine {

/// IntKey and SmartFeature.
class InertIntegerNode final : public IntegerBase {
 public:
  using IntegerBase::IntegerBase;

 protected:
  std::int64_t fetchInt(ReadFlags /*flags*/) override { NODE_FAIL(*this, AccessException, "Node is not readable."); }
  void storeInt(std::int64_t /*value*/, bool /*verify*/) override {
    NODE_FAIL(*this, AccessException, "Node is not writable.");
  }
  EAccessMode naturalAccess() override { return Api::NA; }
};

/// TextDesc.
class InertStringNode final : public StringBase {
 public:
  using StringBase::StringBase;

 protected:
  void fetchString(std::string& /*out*/, ReadFlags /*flags*/) override {
    NODE_FAIL(*this, AccessException, "Node is not readable");
  }
  void storeString(std::string_view /*value*/, bool /*verify*/) override {
    NODE_FAIL(*this, AccessException, "Node is not writable");
  }
  EAccessMode naturalAccess() override { return Api::NA; }
};

/// ConfRom.
class InertNode final : public NodeCore {
 public:
  using NodeCore::NodeCore;

 protected:
  EAccessMode naturalAccess() override { return Api::NA; }
};

}  // namespace GenApiEngine
