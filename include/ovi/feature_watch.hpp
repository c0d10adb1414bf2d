/// @file
/// Changes of a feature in C++, told to a function.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "ovi/feature.hpp"
#include "ovi/ovi.h"
#include "ovi/result.hpp"

namespace ovi {

/// Calls a function whenever a feature's value may have changed, until it is destroyed.
///
/// The function runs on the thread that changed the value or on the module's poller, one call at a time; an exception
/// that leaves it is dropped. The destructor waits for a call that is under way on another thread. A second watch of
/// the same feature replaces the first.
class FeatureWatch {
 public:
  /// What is called, with the feature's name.
  using Function = std::function<void(const char* name)>;

  /// Watches the feature of that name from now on.
  FeatureWatch(std::uint64_t handle, Module module, std::string name, Function changed)
      : handle_(handle),
        module_(module),
        name_(std::move(name)),
        target_(std::make_shared<Target>(std::move(changed))) {
    Targets& all = targets();
    {
      const std::lock_guard<std::mutex> lock(all.mutex);
      all.byContext[target_.get()] = target_;
    }
    const oviErr code = oviRegisterInvalidateCB(handle_, name_.c_str(), target_.get(), &FeatureWatch::forward,
                                                static_cast<std::uint32_t>(module_));
    if (code != OVI_SUCCESS)
      forget();
    check(code, "oviRegisterInvalidateCB", name_);
  }
  ~FeatureWatch() {
    if (!target_)
      return;
    oviUnRegisterInvalidateCB(handle_, name_.c_str(), static_cast<std::uint32_t>(module_));
    forget();
    const std::lock_guard<std::recursive_mutex> lock(target_->mutex);
    target_->ended = true;
  }
  /// The watch goes on from here.
  FeatureWatch(FeatureWatch&&) = default;
  FeatureWatch& operator=(FeatureWatch&&) = delete;

 private:
  struct Target {
    explicit Target(Function changed) : function(std::move(changed)) {}
    std::recursive_mutex mutex;  // held while the function runs, which may set features and so be called again
    bool ended = false;
    Function function;
  };
  // A call may be under way when the registration ends, so the context is a key only.
  struct Targets {
    std::mutex mutex;
    std::map<const void*, std::shared_ptr<Target>> byContext;
  };
  static Targets& targets() {
    static Targets all;
    return all;
  }
  static std::shared_ptr<Target> find(const void* context) {
    Targets& all = targets();
    const std::lock_guard<std::mutex> lock(all.mutex);
    const auto found = all.byContext.find(context);
    return found == all.byContext.end() ? nullptr : found->second;
  }
  void forget() const {
    Targets& all = targets();
    const std::lock_guard<std::mutex> lock(all.mutex);
    all.byContext.erase(target_.get());
  }
  static void OVI_CALL forward(const char* name, void* context) {
    try {
      if (const std::shared_ptr<Target> target = find(context)) {
        const std::lock_guard<std::recursive_mutex> lock(target->mutex);
        if (!target->ended)
          target->function(name);
      }
    } catch (...) {  // An exception must not reach the library.
    }
  }

  std::uint64_t handle_;
  Module module_;
  std::string name_;
  std::shared_ptr<Target> target_;
};

}  // namespace ovi
