// The table through which every handle that an application holds is resolved.
#include "core/handle_registry.h"

#include <algorithm>
#include <atomic>
#include <utility>

namespace OVI {

/** Keeps every reader and every other writer out. */
class HandleRegistry::WriteGuard {
 public:
  explicit WriteGuard(const HandleRegistry& registry) : locks_(registry.locks_) {
    for (ReaderLock& lock : locks_) {
      lock.mutex.lock();
    }
  }
  WriteGuard(const WriteGuard&) = delete;
  WriteGuard& operator=(const WriteGuard&) = delete;
  ~WriteGuard() {
    for (ReaderLock& lock : locks_) {
      lock.mutex.unlock();
    }
  }

 private:
  std::array<ReaderLock, kReaderLocks>& locks_;
};

HandleRegistry& HandleRegistry::instance() {
  static HandleRegistry& registry = *new HandleRegistry;  // Threads that outlive main may still ask it.
  return registry;
}

oviErr HandleRegistry::registerModule(const Module& module, ModuleKind kind, Handle& outHandle) {
  if (module == nullptr) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  const WriteGuard guard(*this);
  outHandle = issueOrReuse(module, kind);
  return OVI_SUCCESS;
}

oviErr HandleRegistry::registerOpenedDevice(const Module& system, const Module& tlInterface, const Module& device,
                                            Handle& outHandle) {
  if (system == nullptr || tlInterface == nullptr || device == nullptr) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  const WriteGuard guard(*this);
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
  const WriteGuard guard(*this);
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
  const std::lock_guard lock(readerMutex());
  const auto entry = entries_.find(handle);
  return entry != entries_.end() ? entry->second.module : nullptr;
}

HandleRegistry::Handle HandleRegistry::handleOf(const GenTLCpp::BaseModule* module) const {
  const std::lock_guard lock(readerMutex());
  const auto known = byModule_.find(module);
  return known != byModule_.end() ? known->second : 0;
}

oviErr HandleRegistry::listRelated(Handle owner, ModuleKind kind, std::vector<Handle>& outHandles) const {
  const std::lock_guard lock(readerMutex());
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
  const std::lock_guard lock(readerMutex());
  std::vector<Module> modules;
  for (const auto& [handle, entry] : entries_) {
    if (entry.kind == kind) {
      modules.push_back(entry.module);
    }
  }
  return modules;
}

void HandleRegistry::remove(Handle handle) {
  std::vector<Module> dropped;
  const WriteGuard guard(*this);
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

void HandleRegistry::clear() {
  std::unordered_map<Handle, Entry> dropped;
  const WriteGuard guard(*this);
  dropped.swap(entries_);
  byModule_.clear();
  relations_.clear();
}

std::mutex& HandleRegistry::readerMutex() const noexcept {
  static std::atomic<std::size_t> threads{0};
  thread_local const std::size_t mine = threads.fetch_add(1, std::memory_order_relaxed) % kReaderLocks;
  return locks_[mine].mutex;
}

HandleRegistry::Handle HandleRegistry::issue(const Module& module, ModuleKind kind) {
  const Handle handle = ++counter_;
  entries_.emplace(handle, Entry{.module = module, .kind = kind});
  byModule_[module.get()] = handle;
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

void HandleRegistry::erase(Handle handle, std::vector<Module>& dropped) {
  const auto found = entries_.find(handle);
  if (found == entries_.end()) {
    return;
  }
  Entry& entry = found->second;
  if (const auto known = byModule_.find(entry.module.get()); known != byModule_.end() && known->second == handle) {
    byModule_.erase(known);
  }
  dropped.push_back(std::move(entry.module));
  entries_.erase(found);
}

}  // namespace OVI
