// Keeps models by a hash of their text; the newest few also while no node map uses them.
#include "model/model_cache.h"

#include <cstring>
#include <list>
#include <mutex>
#include <random>

#include "model/builder.h"
#include "model/limits.h"

namespace GenApiEngine {
namespace {

struct ContentKey {
  std::uint64_t first = 0;
  std::uint64_t second = 0;
  std::size_t size = 0;
  bool operator==(const ContentKey&) const = default;
};

std::uint64_t mix(std::uint64_t a, std::uint64_t b) {
  a ^= b;
  a ^= a >> 32;
  a *= 0xD6E8FEB86659FD93ULL;
  a ^= a >> 29;
  a *= 0x9E3779B97F4A7C15ULL;
  return a ^ (a >> 32);
}

// Four independent lanes, so that the multiplications overlap.
std::uint64_t hashContent(std::string_view text, std::uint64_t seed) {
  constexpr std::uint64_t kMultiplier = 0xA0761D6478BD642FULL;
  constexpr std::size_t kBlock = 32;
  std::uint64_t lanes[4] = {seed, seed + 1, seed + 2, seed + 3};
  const char* at = text.data();
  std::size_t left = text.size();
  for (; left >= kBlock; left -= kBlock, at += kBlock) {
    for (std::size_t i = 0; i < 4; ++i) {
      std::uint64_t word = 0;
      std::memcpy(&word, at + 8 * i, sizeof word);
      lanes[i] = (lanes[i] ^ word) * kMultiplier;
      lanes[i] = (lanes[i] << 31) | (lanes[i] >> 33);
    }
  }
  std::uint64_t hash = mix(mix(lanes[0], lanes[1]), mix(lanes[2], lanes[3])) ^ text.size();
  for (; left != 0; left -= std::min<std::size_t>(left, 8)) {
    std::uint64_t word = 0;
    const std::size_t take = std::min<std::size_t>(left, 8);
    std::memcpy(&word, at, take);
    at += take;
    hash = mix(hash, word);
  }
  return hash;
}

class Cache {
 public:
  static Cache& instance() {
    static Cache cache;
    return cache;
  }

  ContentKey keyOf(std::span<const std::string_view> documents) const {
    ContentKey key{seeds_[0], seeds_[1], documents.size()};
    for (const std::string_view text : documents) {
      key.first = mix(key.first, hashContent(text, seeds_[0]));
      key.second = mix(key.second, hashContent(text, seeds_[1]));
      key.size += text.size();
    }
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
      it = ++kept > kMaxCachedModels || (kept > 1 && bytes > kMaxCachedTextBytes) ? entries_.erase(it) : std::next(it);
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

  // The seeds differ between processes, so that no description can be made to be taken for another.
  Cache() {
    std::random_device random;
    for (std::uint64_t& seed : seeds_) {
      seed = (std::uint64_t{random()} << 32) | random();
    }
  }

  std::mutex mutex_;
  std::list<Entry> entries_;  // the newest first
  std::uint64_t seeds_[2] = {};
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
