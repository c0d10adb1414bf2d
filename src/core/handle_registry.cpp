// The table through which every handle that an application holds is resolved.
#include "core/handle_registry.h"

#include <algorithm>
#include <utility>

namespace OVI {

HandleRegistry* const HandleRegistry::instance_ = new HandleRegistry;

oviErr HandleRegistry::registerModule(const Module& module, ModuleKind kind, Handle& outHandle) {
  if (module == nullptr) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  const std::lock_guard lock(mutex_);
  outHandle = issueOrReuse(module, kind);
  return OVI_SUCCESS;
}

oviErr HandleRegistry::registerOpenedDevice(const Module& system, const Module& tlInterface, const Module& device,
                                            Handle& outHandle) {
  if (system == nullptr || tlInterface == nullptr || device == nullptr) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  const std::lock_guard lock(mutex_);
  const Handle last = counter_;
  outHandle = issueOrReuse(device, ModuleKind::Device);
  if (outHandle > last) {  // Not known before.
    list(outHandle, ModuleKind::Device, outHandle);
    list(outHandle, ModuleKind::System, issueOrReuse(system, ModuleKind::System));
    list(outHandle, ModuleKind::Interface, issueOrReuse(tlInterface, ModuleKind::Interface));
  }
  return OVI_SUCCESS;
}

oviErr HandleRegistry::registerOwned(Handle owner, const Module& module, ModuleKind kind, Handle& outHandle) {
  if (module == nullptr) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  const std::lock_guard lock(mutex_);
  if (!entries_.contains(owner)) {
    return OVI_ERR_NOT_FOUND;
  }
  const Handle last = counter_;
  outHandle = issueOrReuse(module, kind);
  if (outHandle > last) {
    list(owner, kind, outHandle);
  }
  return OVI_SUCCESS;
}

HandleRegistry::Module HandleRegistry::find(Handle handle) const {
  const std::lock_guard lock(mutex_);
  const auto entry = entries_.find(handle);
  return entry != entries_.end() ? entry->second.module : nullptr;
}

HandleRegistry::Handle HandleRegistry::handleOf(const GenTLCpp::BaseModule* module) const {
  const std::lock_guard lock(mutex_);
  const auto known = byModule_.find(module);
  return known != byModule_.end() ? known->second : 0;
}

oviErr HandleRegistry::listRelated(Handle owner, ModuleKind kind, std::vector<Handle>& outHandles) const {
  const std::lock_guard lock(mutex_);
  const auto relation = relations_.find(owner);
  if (relation == relations_.end()) {
    return OVI_ERR_NOT_FOUND;
  }
  const auto handles = relation->second.find(kind);
  if (handles == relation->second.end()) {
    return OVI_ERR_NOT_FOUND;
  }
  outHandles.insert(outHandles.end(), handles->second.begin(), handles->second.end());
  return OVI_SUCCESS;
}

std::vector<HandleRegistry::Module> HandleRegistry::modulesOfKind(ModuleKind kind) const {
  const std::lock_guard lock(mutex_);
  std::vector<Module> modules;
  for (const auto& [handle, entry] : entries_) {
    if (entry.kind == kind) {
      modules.push_back(entry.module);
    }
  }
  return modules;
}

void HandleRegistry::remove(Handle handle) {
  Retired dropped;
  {
    const std::lock_guard lock(mutex_);
    if (auto owned = relations_.extract(handle)) {
      for (const auto& [kind, handles] : owned.mapped()) {
        for (const Handle member : handles) {
          erase(member, dropped);
        }
      }
    }
    erase(handle, dropped);
    for (auto relation = relations_.begin(); relation != relations_.end();) {
      KindLists& lists = relation->second;
      for (auto entry = lists.begin(); entry != lists.end();) {
        std::erase(entry->second, handle);
        entry = entry->second.empty() ? lists.erase(entry) : std::next(entry);
      }
      relation = lists.empty() ? relations_.erase(relation) : std::next(relation);
    }
  }
  retire(std::move(dropped));
}

void HandleRegistry::clear() {
  Retired dropped;
  {
    const std::lock_guard lock(mutex_);
    while (!entries_.empty()) {
      erase(entries_.begin()->first, dropped);
    }
    byModule_.clear();
    relations_.clear();
  }
  retire(std::move(dropped));
}

HandleRegistry::Handle HandleRegistry::issue(const Module& module, ModuleKind kind) {
  const Handle handle = ++counter_;
  entries_.emplace(handle, Entry{.module = module, .kind = kind});
  byModule_[module.get()] = handle;
  byHandle_.insert(handle, *module);
  return handle;
}

HandleRegistry::Handle HandleRegistry::issueOrReuse(const Module& module, ModuleKind kind) {
  if (const auto known = byModule_.find(module.get()); known != byModule_.end()) {
    const Entry& entry = entries_.at(known->second);
    if (entry.kind == kind && entry.listed > 0) {
      return known->second;
    }
  }
  return issue(module, kind);
}

void HandleRegistry::list(Handle owner, ModuleKind kind, Handle handle) {
  relations_[owner][kind].push_back(handle);
  ++entries_.at(handle).listed;
}

void HandleRegistry::erase(Handle handle, Retired& dropped) {
  const auto found = entries_.find(handle);
  if (found == entries_.end()) {
    return;
  }
  Entry& entry = found->second;
  if (const auto known = byModule_.find(entry.module.get()); known != byModule_.end() && known->second == handle) {
    byModule_.erase(known);
  }
  byHandle_.erase(handle);
  dropped.push_back(std::move(entry.module));
  entries_.erase(found);
}

}  // namespace OVI
