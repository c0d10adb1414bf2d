// All features of a module by name, and the thread that keeps its polled nodes fresh.
#include "gentl/feature_list.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <thread>
#include <utility>
#include <vector>

namespace GenTLCpp {

/**
 * The polling thread. It shares its state, and with it the node map, with nobody but this object, so that it can be
 * left behind: by a callback that closes the module on this very thread, or one that does not return.
 */
class FeatureList::Poller {
 public:
  explicit Poller(const NodeMapPtr& nodeMap)
      : state_(std::make_shared<State>(nodeMap)),
        thread_(&Poller::run, state_) {}
  Poller(const Poller&) = delete;
  Poller& operator=(const Poller&) = delete;
  ~Poller() { stop(); }

  void stop() noexcept {
    std::unique_lock lock(state_->mutex);
    state_->running = false;
    state_->changed.notify_all();
    std::thread thread = std::move(thread_);
    if (!thread.joinable()) {
      return;
    }
    const bool ended = thread.get_id() != std::this_thread::get_id() &&
                       state_->changed.wait_for(lock, kPatience, [this] { return state_->ended; });
    lock.unlock();
    if (ended) {
      thread.join();
    } else {
      thread.detach();
    }
  }

 private:
  static constexpr std::int64_t kPeriodMs = 100;
  static constexpr std::chrono::seconds kPatience{2};

  struct State {
    explicit State(NodeMapPtr map) : nodeMap(std::move(map)) {}

    NodeMapPtr nodeMap;
    std::mutex mutex;
    std::condition_variable changed;
    bool running = true;
    bool ended = false;
  };

  static void run(const std::shared_ptr<State>& state) {
    std::unique_lock lock(state->mutex);
    while (!state->changed.wait_for(lock, std::chrono::milliseconds(kPeriodMs), [&] { return !state->running; })) {
      lock.unlock();
      try {
        state->nodeMap->Poll(kPeriodMs);
      } catch (...) {  // NOLINT(bugprone-empty-catch): the next poll tries again.
      }
      lock.lock();
    }
    state->ended = true;
    state->changed.notify_all();
  }

  std::shared_ptr<State> state_;
  std::thread thread_;
};

FeatureList::FeatureList(std::string name, NodeMapPtr nodeMap) : name_(std::move(name)), nodeMap_(std::move(nodeMap)) {
  GenApi::INode* root = nodeMap_->GetNode("Root");
  if (root != nullptr && root->IsFeature()) {
    add(root);
  }
  add(nodeMap_->GetNode("TLParamsLocked"));
  add(nodeMap_->GetNode(name_.c_str()));
  poller_ = std::make_unique<Poller>(nodeMap_);
}

FeatureList::~FeatureList() = default;

std::shared_ptr<Feature> FeatureList::getFeature(std::string_view name) const {
  const auto feature = features_.find(name);
  return feature != features_.end() ? feature->second : nullptr;
}

Feature* FeatureList::getFeature(const GenApi::INode* node) const {
  const auto feature = byNode_.find(node);
  return feature != byNode_.end() ? feature->second : nullptr;
}

void FeatureList::registerCallback(std::string_view name, void* context, oviInvalidateCallback callback) {
  if (const std::shared_ptr<Feature> feature = getFeature(name)) {
    const std::lock_guard lock(registrationMutex_);
    feature->setCallback(context, callback);
  }
}

void FeatureList::unregisterCallback(std::string_view name) {
  if (const std::shared_ptr<Feature> feature = getFeature(name)) {
    const std::lock_guard lock(registrationMutex_);
    feature->clearCallback();
  }
}

void FeatureList::stopPolling() noexcept {
  poller_->stop();
}

void FeatureList::add(GenApi::INode* start) {
  std::vector<GenApi::INode*> pending = {start};
  while (!pending.empty()) {
    GenApi::INode* node = pending.back();
    pending.pop_back();
    if (node == nullptr) {
      continue;
    }
    auto [entry, isNew] = features_.try_emplace(node->GetName(false).c_str());
    if (!isNew) {
      continue;
    }
    entry->second = std::make_shared<Feature>(nodeMap_, node);
    byNode_.emplace(node, entry->second.get());
    GenApi::FeatureList_t next;
    if (const auto* category = dynamic_cast<const GenApi::ICategory*>(node)) {
      category->GetFeatures(next);
    } else if (const auto* selector = dynamic_cast<const GenApi::ISelector*>(node)) {
      selector->GetSelectedFeatures(next);
    }
    for (GenApi::IValue* value : next) {
      pending.push_back(value->GetNode());
    }
  }
}

}  // namespace GenTLCpp
