// One feature of a module: its node, the application's callback on it, and its display properties.
#include "gentl/feature.h"

#include <utility>

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
    if (node != nullptr && context != nullptr && callback != nullptr) {
      callback(node->GetName(false).c_str(), context);
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

std::string Feature::getProperty(std::size_t index) {
  constexpr std::array kNames = {"DisplayNotation", "DisplayPrecision", "Representation", "Unit"};
  const std::lock_guard lock(mutex_);
  std::optional<std::string>& property = properties_[index];
  if (!property) {
    GenICam::gcstring_vector names;
    node_->GetPropertyNames(names);
    GenICam::gcstring value;
    GenICam::gcstring attribute;
    const bool known = names.contains(kNames[index]) && node_->GetProperty(kNames[index], value, attribute);
    property = known ? value.c_str() : "";
  }
  return *property;
}

}  // namespace GenTLCpp
