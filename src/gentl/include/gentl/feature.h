// One feature of a module: its node, the application's callback on it, and its display properties.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>

#include "gentl/port.h"
#include "ovi/ovi.h"

namespace GenTLCpp {

/** What the description says about a feature in words; empty where it says nothing. */
struct FeatureTexts {
  std::string displayName;
  std::string toolTip;
  std::string displayNotation;
  std::string displayPrecision;
  std::string representation;
  std::string unit;
};

/** Keeps its node map alive. Any thread. */
class Feature {
 public:
  Feature(NodeMapPtr nodeMap, GenApi::INode* node);
  Feature(const Feature&) = delete;
  Feature& operator=(const Feature&) = delete;
  ~Feature();

  GenApi::INode* getNode() const noexcept { return node_; }
  const std::string& getName() const noexcept { return name_; }

  /** Replaces the callback. Without a context it is never called. It runs on the thread that changed the node, or on
   * the poller's, with no lock of the library or of the node map held. What it throws ends with it. */
  void setCallback(void* context, oviInvalidateCallback callback);
  /** No call begins after this; one that is under way on another thread may still be running. */
  void clearCallback();

  /** Read from the node once, and the same ever after. */
  const FeatureTexts& getTexts();

 private:
  class Target;

  NodeMapPtr nodeMap_;
  GenApi::INode* node_;
  std::string name_;
  std::shared_ptr<Target> target_;
  std::mutex mutex_;
  FeatureTexts texts_;
  std::atomic<bool> textsKnown_{false};
};

}  // namespace GenTLCpp
