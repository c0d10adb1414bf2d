// Keeps models by a hash of their text; the newest few also while no node map uses them.
#include "model/model_cache.h"

#include <algorithm>
#include <iterator>
#include <list>
#include <mutex>
#include <vector>

#include "base/limits.h"
#include "model/builder.h"
#include "model/content_hash.h"

namespace GenApiEngine {
namespace {

// Documents that are loaded together are told apart by the hash of each.
using ContentKey = std::vector<ContentHash::Value>;

class Cache {
 public:
  static Cache& instance() {
    static Cache& cache = *new Cache;  // Threads and global objects that outlive main may still load a description.
    return cache;
  }

  ContentKey keyOf(std::span<const std::string_view> documents) const {
    ContentKey key;
    std::ranges::transform(documents, std::back_inserter(key), hash_);
    return key;
  }

  std::shared_ptr<const Model> find(const ContentKey& key) {
    const std::lock_guard lock(mutex_);
    for (auto it = entries_.begin(); it != entries_.end(); ++it) {
      if (it->key == key) {
        entries_.splice(entries_.begin(), entries_, it);
        return entries_.front().model;
      }
    }
    return nullptr;
  }

  void add(const ContentKey& key, std::shared_ptr<const Model> model) {
    const std::lock_guard lock(mutex_);
    entries_.push_front({key, std::move(model)});
    std::size_t kept = 0;
    std::size_t bytes = 0;
    for (auto it = entries_.begin(); it != entries_.end();) {
      bytes += it->model->textBytes();
      ++kept;
      it = kept > kMaxCachedModels || (kept > 1 && bytes > kMaxCachedTextBytes) ? entries_.erase(it) : std::next(it);
    }
  }

  void clear() {
    const std::lock_guard lock(mutex_);
    entries_.clear();
  }

 private:
  struct Entry {
    ContentKey key;
    std::shared_ptr<const Model> model;
  };

  // Its key differs between processes, so that no description can be made to be taken for another.
  const ContentHash hash_;
  std::mutex mutex_;
  std::list<Entry> entries_;  // the newest first
};

}  // namespace

std::shared_ptr<const Model> modelOf(std::span<const std::string_view> documents, CacheUse use, bool* wasCached) {
  if (wasCached != nullptr) {
    *wasCached = false;
  }
  if (use == CacheUse::Bypass) {
    return buildModel(documents);
  }
  Cache& cache = Cache::instance();
  const ContentKey key = cache.keyOf(documents);
  if (std::shared_ptr<const Model> known = cache.find(key)) {
    if (wasCached != nullptr) {
      *wasCached = true;
    }
    return known;
  }
  if (use == CacheUse::OnlyCached) {
    return nullptr;
  }
  std::shared_ptr<const Model> model = buildModel(documents);
  cache.add(key, model);
  return model;
}

void clearModelCache() {
  Cache::instance().clear();
}

}  // namespace GenApiEngine
