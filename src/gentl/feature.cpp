// One feature of a module: its node, the application's callback on it, and its display properties.
#include "gentl/feature.h"

#include <utility>

#include "core/log.h"
#include "platform/platform.h"

namespace GenTLCpp {

/** What a feature's node calls: the application's function, when there is one at that moment. */
class Feature::Target {
 public:
  void set(void* context, oviInvalidateCallback callback) {
    const std::lock_guard lock(mutex_);
    context_ = context;
    callback_ = callback;
  }

  void call(GenApi::INode* node) {
    void* context = nullptr;
    oviInvalidateCallback callback = nullptr;
    {
      const std::lock_guard lock(mutex_);
      context = context_;
      callback = callback_;
    }
    if (node == nullptr || context == nullptr || callback == nullptr) {
      return;
    }
    try {
      callback(node->GetName(false).c_str(), context);
    } catch (...) {  // Whoever changed the node did so, and other callbacks are due.
      OVI_LOG_ERROR("Feature::call") << "The application's callback has thrown an exception.";
    }
  }

 private:
  std::mutex mutex_;
  void* context_ = nullptr;
  oviInvalidateCallback callback_ = nullptr;
};

Feature::Feature(NodeMapPtr nodeMap, GenApi::INode* node)
    : nodeMap_(std::move(nodeMap)),
      node_(node),
      name_(node->GetName(false).c_str()) {}

Feature::~Feature() {
  if (target_ != nullptr) {
    target_->set(nullptr, nullptr);
  }
}

// The node keeps its registration until the node map goes. Ending it with the application's callback would destroy the
// callback object while another thread may be about to call it.
void Feature::setCallback(void* context, oviInvalidateCallback callback) {
  std::shared_ptr<Target> target;
  {
    const std::lock_guard lock(mutex_);
    if (target_ == nullptr) {
      target_ = std::make_shared<Target>();
      GenApi::Register(
          node_, [target = target_](GenApi::INode* node) { target->call(node); }, GenApi::cbPostOutsideLock);
    }
    target = target_;
  }
  target->set(context, callback);
}

void Feature::clearCallback() {
  const std::lock_guard lock(mutex_);
  if (target_ != nullptr) {
    target_->set(nullptr, nullptr);
  }
}

const FeatureTexts& Feature::getTexts() {
  if (!textsKnown_.load(std::memory_order_acquire)) {
    const std::lock_guard lock(mutex_);
    if (!textsKnown_.load(std::memory_order_relaxed)) {
      GenICam::gcstring_vector names;
      node_->GetPropertyNames(names);
      const auto property = [&](const char* name) -> std::string {
        GenICam::gcstring value;
        GenICam::gcstring attribute;
        return names.contains(name) && node_->GetProperty(name, value, attribute) ? value.c_str() : "";
      };
      using OVI::platform::fromUtf8;
      texts_ = {fromUtf8(node_->GetDisplayName().c_str()),
                fromUtf8(node_->GetToolTip().c_str()),
                property("DisplayNotation"),
                property("DisplayPrecision"),
                property("Representation"),
                fromUtf8(property("Unit"))};
      textsKnown_.store(true, std::memory_order_release);
    }
  }
  return texts_;
}

}  // namespace GenTLCpp
