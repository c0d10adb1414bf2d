// One feature of a module: its node, the application's callback on it, and its display properties.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "gentl/port.h"
#include "ovi/ovi.h"

namespace GenTLCpp {

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
   * the poller's, with no lock of the library or of the node map held. */
  void setCallback(void* context, oviInvalidateCallback callback);
  /** No call begins after this; one that is under way on another thread may still be running. */
  void clearCallback();

  /** Display properties as the description words them, empty when it does not; read once. */
  std::string getDisplayNotation() { return getProperty(0); }
  std::string getDisplayPrecision() { return getProperty(1); }
  std::string getRepresentation() { return getProperty(2); }
  std::string getUnit() { return getProperty(3); }

 private:
  class Target;

  std::string getProperty(std::size_t index);

  NodeMapPtr nodeMap_;
  GenApi::INode* node_;
  std::string name_;
  std::shared_ptr<Target> target_;
  std::mutex mutex_;
  std::array<std::optional<std::string>, 4> properties_;
};

}  // namespace GenTLCpp
