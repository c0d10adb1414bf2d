// The table through which every handle that an application holds is resolved.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "core/hold.h"
#include "core/key_index.h"
#include "ovi/ovi.h"

namespace GenTLCpp {
class BaseModule;
}

namespace OVI {

/** What a registered module is to the module that owns it. */
enum class ModuleKind : std::int32_t { System = 0, Interface = 1, Device = 2, DataStream = 3, Buffer = 4, Event = 5 };

/**
 * Owns every module that was handed out, by handle, and knows which handles belong to which.
 *
 * Handles are never 0 and never issued twice in a process. All operations may be called from any thread and are atomic
 * against each other. Modules that an operation drops are destroyed after it, without any lock held: their destruction
 * calls producers and may wait for threads that use the registry themselves.
 *
 * Holding is on the way of every feature and every image: it takes no lock and writes nothing that threads share. All
 * other operations are rarer and take one lock.
 */
class HandleRegistry {
 public:
  using Handle = std::uint64_t;
  using Module = std::shared_ptr<GenTLCpp::BaseModule>;

  static HandleRegistry& instance() noexcept { return *instance_; }

  /** Issues a handle. A module that some owner already lists under that kind keeps the handle it has.
   * @return InvalidParameter for no module, else Success */
  oviErr registerModule(const Module& module, ModuleKind kind, Handle& outHandle);

  /** Enters a device together with its interface and system; these keep one handle, whoever shares them. */
  oviErr registerOpenedDevice(const Module& system, const Module& tlInterface, const Module& device, Handle& outHandle);

  /** Issues a handle and lists it under its owner: a stream of a device, a buffer of a stream, an event of a module.
   * @return InvalidParameter for no module; NotFound for an unknown owner */
  oviErr registerOwned(Handle owner, const Module& module, ModuleKind kind, Handle& outHandle);

  /** The module, or nothing for an unknown handle. lookupModule (gentl) also checks its class. */
  Module find(Handle handle) const;
  /** The same for the length of a call: when it is not null, the module lives at least as long as the hold. */
  GenTLCpp::BaseModule* find(Handle handle, Hold& hold) const noexcept { return byHandle_.find(handle, hold); }

  /** The handle of a module, 0 when it has none. */
  Handle handleOf(const GenTLCpp::BaseModule* module) const;

  /** Appends the handles that the owner lists under the kind, in the order in which they were entered.
   * @return NotFound when the owner lists nothing of that kind */
  oviErr listRelated(Handle owner, ModuleKind kind, std::vector<Handle>& outHandles) const;

  /** All modules of a kind that have a handle. */
  std::vector<Module> modulesOfKind(ModuleKind kind) const;

  /** Forgets the handle and all that it owns directly. An unknown handle is ignored. */
  void remove(Handle handle);

  /** Forgets everything. Handles go on counting. */
  void clear();

 private:
  struct Entry {
    Module module;
    ModuleKind kind = ModuleKind::System;
    std::size_t listed = 0;  // By how many owners.
  };
  using KindLists = std::map<ModuleKind, std::vector<Handle>>;

  HandleRegistry() = default;

  Handle issue(const Module& module, ModuleKind kind);
  Handle issueOrReuse(const Module& module, ModuleKind kind);
  void list(Handle owner, ModuleKind kind, Handle handle);
  void erase(Handle handle, Retired& dropped);

  static HandleRegistry* const instance_;  // Not destroyed: threads that outlive main may still ask it.

  mutable std::mutex mutex_;
  Handle counter_ = 0;
  std::unordered_map<Handle, Entry> entries_;
  KeyIndex<GenTLCpp::BaseModule> byHandle_;
  std::unordered_map<const GenTLCpp::BaseModule*, Handle> byModule_;
  std::map<Handle, KindLists> relations_;
};

}  // namespace OVI
