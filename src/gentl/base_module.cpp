// What all modules of a producer have in common.
#include "gentl/base_module.h"

#include <array>
#include <cstddef>
#include <utility>

#include "gentl/description.h"
#include "gentl/exceptions.h"
#include "gentl/feature_list.h"
#include "gentl/trace.h"
#include "gentl/wait_gate.h"

namespace GenTLCpp {

const char* moduleTypeName(int moduleType) noexcept {
  constexpr std::array kNames = {"Transportlayer", "Interface", "Device", "Data stream", "Buffer", "Event"};
  const auto index = static_cast<std::size_t>(moduleType);
  return index < kNames.size() ? kNames[index] : "Unknown";
}

BaseModule::~BaseModule() = default;

void BaseModule::throwClosed() const {
  throw ClosedException(std::string(moduleTypeName(moduleType())) + " is closed, cannot return handle");
}

bool BaseModule::shutUses() noexcept {
  return uses_.shut(kPatience);
}

GC_ERROR BaseModule::close() {
  std::shared_ptr<FeatureList> list = takeOut(featureList_);
  std::shared_ptr<ConcretePort> port;
  {
    const std::lock_guard lock(portMutex_);
    port = std::move(port_);
  }
  const GC_ERROR status = closeModule();
  OVI::retire(std::move(list));
  return status;
}

NodeMapPtr BaseModule::createNodeMap(const std::shared_ptr<ConcretePort>& port, const std::string& /*portName*/) {
  return makeNodeMap(retrieveXML(*port), port);
}

NodeMapPtr BaseModule::createNodeMap(const std::shared_ptr<ConcretePort>& port) {
  return createNodeMap(port, port->getPortName());
}

NodeMapPtr BaseModule::getNodeMap() {
  return createNodeMap(getPort(false));
}

std::shared_ptr<ConcretePort> BaseModule::getPort(bool renew) {
  const std::lock_guard lock(portMutex_);
  if (renew || port_ == nullptr) {
    port_ = std::make_shared<ConcretePort>(getRawHandle(), sharedFromThis());
  }
  return port_;
}

std::shared_ptr<FeatureList> BaseModule::getFeatureList() {
  return featureList_.get([this] {
    const char* typeName = moduleTypeName(moduleType());
    std::shared_ptr<FeatureList> list = makeFeatureList(typeName);
    if (list == nullptr) {
      traceLine("ERROR:Failed to get XML node map for module", typeName, "! Node map was NULL!");
    }
    return list;
  });
}

FeatureList* BaseModule::getFeatureList(OVI::Hold& hold) {
  FeatureList* list = featureList_.find(hold);
  while (list == nullptr && getFeatureList() != nullptr) {  // Somebody may take a new list away at once.
    list = featureList_.find(hold);
  }
  return list;
}

std::shared_ptr<FeatureList> BaseModule::makeFeatureList(const std::string& typeName) {
  return createFeatureList(getNodeMap(), typeName);
}

std::shared_ptr<FeatureList> BaseModule::createFeatureList(const NodeMapPtr& nodeMap, const std::string& typeName) {
  return nodeMap != nullptr ? std::make_shared<FeatureList>(typeName, nodeMap) : nullptr;
}

std::shared_ptr<FeatureList> BaseModule::takeOut(FeatureListPlace& place) noexcept {
  std::shared_ptr<FeatureList> list = place.exchange(nullptr);
  if (list != nullptr) {
    list->stopPolling();
  }
  return list;
}

}  // namespace GenTLCpp
