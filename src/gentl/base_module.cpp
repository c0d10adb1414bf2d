// What all modules of a producer have in common.
#include "gentl/base_module.h"

#include <array>
#include <cstddef>
#include <utility>

#include "gentl/description.h"
#include "gentl/feature_list.h"
#include "gentl/trace.h"

namespace GenTLCpp {

const char* moduleTypeName(int moduleType) noexcept {
  constexpr std::array kNames = {"Transportlayer", "Interface", "Device", "Data stream", "Buffer", "Event"};
  const auto index = static_cast<std::size_t>(moduleType);
  return index < kNames.size() ? kNames[index] : "Unknown";
}

BaseModule::~BaseModule() = default;

GC_ERROR BaseModule::close() {
  std::shared_ptr<FeatureList> list;
  {
    const std::lock_guard lock(cacheMutex_);
    list = std::move(featureList_);
  }
  std::shared_ptr<ConcretePort> port;
  {
    const std::lock_guard lock(portMutex_);
    port = std::move(port_);
  }
  stopPolling(list);
  return closeModule();
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
  const std::lock_guard lock(cacheMutex_);
  if (featureList_ == nullptr) {
    const char* typeName = moduleTypeName(moduleType());
    featureList_ = makeFeatureList(typeName);
    if (featureList_ == nullptr) {
      traceLine("ERROR:Failed to get XML node map for module", typeName, "! Node map was NULL!");
    }
  }
  return featureList_;
}

std::shared_ptr<FeatureList> BaseModule::makeFeatureList(const std::string& typeName) {
  return createFeatureList(getNodeMap(), typeName);
}

std::shared_ptr<FeatureList> BaseModule::createFeatureList(const NodeMapPtr& nodeMap, const std::string& typeName) {
  return nodeMap != nullptr ? std::make_shared<FeatureList>(typeName, nodeMap) : nullptr;
}

void BaseModule::stopPolling(const std::shared_ptr<FeatureList>& list) noexcept {
  if (list != nullptr) {
    list->stopPolling();
  }
}

}  // namespace GenTLCpp
