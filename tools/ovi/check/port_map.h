// The node map of a port, over the producer's own reads and writes.
#pragma once

#include <GenApi/GenApi.h>

#include <memory>
#include <optional>
#include <string>

#include "check/checker.h"

namespace tool::check {

/// The node map of a port, over the producer's own reads and writes.
class PortMap {
 public:
  /// Throws Broken when there is no usable description.
  PortMap(Checker& check, PORT_HANDLE port);
  ~PortMap();
  PortMap(const PortMap&) = delete;
  PortMap& operator=(const PortMap&) = delete;

  GenApi::INodeMap& map() const { return *map_; }
  /// The description's size in bytes, as it was read.
  std::size_t bytes() const { return bytes_; }
  bool has(const char* node) const;
  /// Runs a command until it is done; tells the rule that is being checked when that takes more than one poll.
  void execute(Checker& check, const char* command);
  /// The value of an integer node.
  std::optional<std::int64_t> integer(const char* node) const;
  void lock(bool on);
  /// Sets a feature, or executes a command, from "Name=Value", as the tool's other commands do. Throws Broken.
  void assign(const std::string& assignment);

 private:
  std::unique_ptr<GenApi::IPort> port_;
  GenApi::INodeMap* map_ = nullptr;
  std::size_t bytes_ = 0;
};

}  // namespace tool::check
