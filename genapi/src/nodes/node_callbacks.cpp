// Registering, ending and calling the callbacks of a node.
#include "nodes/node_callbacks.h"

#include <algorithm>

#include "nodemap/call.h"
#include "nodemap/node_map.h"

namespace GenApiEngine {

Api::CallbackHandleType NodeCore::RegisterCallback(Api::CNodeCallback* callback) {
  if (callback == nullptr) {
    return 0;
  }
  const Call call(*this, "RegisterCallback");
  if (callbacks_ == nullptr) {
    callbacks_ = std::make_unique<Callbacks>();
  }
  callbacks_->registered.push_back(callback);
  return reinterpret_cast<Api::CallbackHandleType>(callback);
}

bool NodeCore::DeregisterCallback(Api::CallbackHandleType handle) {
  const Call call(*this, "DeregisterCallback");
  if (callbacks_ == nullptr || handle == 0) {
    return false;
  }
  auto& registered = callbacks_->registered;
  const auto found = std::ranges::find_if(registered, [handle](const Api::CNodeCallback* callback) {
    return reinterpret_cast<Api::CallbackHandleType>(callback) == handle;
  });
  if (found == registered.end()) {
    return false;
  }
  Api::CNodeCallback* const callback = *found;
  if (callbacks_->running != 0) {
    *found = nullptr;
    callbacks_->ended.push_back(callback);
  } else {
    registered.erase(found);
    callback->Destroy();
  }
  return true;
}

void NodeCore::fireCallbacks(Api::ECallbackType phase) {
  Api::CLock& lock = map_.GetLock();
  lock.Lock();
  Callbacks& all = *callbacks_;
  ++all.running;
  const auto end = [&] {
    if (--all.running == 0) {
      std::erase(all.registered, nullptr);
      all.destroyEnded();
    }
    lock.Unlock();
  };
  // Only those that are there now; the list may grow and move while they run.
  const std::size_t count = all.registered.size();
  try {
    for (std::size_t i = 0; i < count; ++i) {
      const Api::CNodeCallback* const callback = all.registered[i];
      if (callback == nullptr) {
        continue;
      }
      if (phase == Api::cbPostOutsideLock) {
        lock.Unlock();
      }
      try {
        (*callback)(phase);
      } catch (...) {
        if (phase == Api::cbPostOutsideLock) {
          lock.Lock();
        }
        throw;
      }
      if (phase == Api::cbPostOutsideLock) {
        lock.Lock();
      }
    }
  } catch (...) {
    end();
    throw;
  }
  end();
}

}  // namespace GenApiEngine
