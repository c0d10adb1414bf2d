// All features of a module by name, and the thread that keeps its polled nodes fresh.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "gentl/feature.h"
#include "gentl/port.h"

namespace GenTLCpp {

/** Owns the node map together with everybody who holds it. Destroying the list ends its polling. Any thread. */
class FeatureList {
 public:
  FeatureList(std::string name, NodeMapPtr nodeMap);
  FeatureList(const FeatureList&) = delete;
  FeatureList& operator=(const FeatureList&) = delete;
  ~FeatureList();

  const std::string& getName() const noexcept { return name_; }
  const NodeMapPtr& getNodeMap() const noexcept { return nodeMap_; }
  /** The node of that name in the whole node map, feature or not; null when there is none. */
  GenApi::INode* getNode(const char* name) const { return nodeMap_->GetNode(name); }

  /** The feature of that name, or nothing. Features are what "Root" and "TLParamsLocked" lead to. */
  std::shared_ptr<Feature> getFeature(std::string_view name) const;
  /** The feature of that node, or null; it lives as long as the list. */
  Feature* getFeature(const GenApi::INode* node) const;

  /** One callback a feature; a name without a feature is passed over. */
  void registerCallback(std::string_view name, void* context, oviInvalidateCallback callback);
  void unregisterCallback(std::string_view name);

  /**
   * Ends the polling thread and waits until it is out of the node map; a callback that does not come back is left alone
   * after two seconds, and so is the thread when this is called on it. The node map lives until the thread is out.
   */
  void stopPolling() noexcept;

 private:
  class Poller;

  /** Adds the node and everything that its categories and selectors lead to. A null node adds nothing. */
  void add(GenApi::INode* start);

  std::string name_;
  NodeMapPtr nodeMap_;
  std::map<std::string, std::shared_ptr<Feature>, std::less<>> features_;
  std::unordered_map<const GenApi::INode*, Feature*> byNode_;
  std::mutex registrationMutex_;
  std::unique_ptr<Poller> poller_;
};

}  // namespace GenTLCpp
