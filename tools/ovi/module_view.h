// One module of an open camera, as the commands that work on features see it.
#pragma once

#include <memory>
#include <string>

#include "ovi/ovi.hpp"
#include "session.h"

namespace tool {

/// Module by its name on the command line: device, local, interface, system, stream. Throws ToolError.
ovi::Module moduleFromText(const std::string& text);
std::vector<std::string> moduleNames();
/// The name of a module, as moduleFromText takes it.
std::string moduleText(ovi::Module module);

class FeatureFacts;

/// Opens the camera that is meant, and its stream when that is the module. Features are asked of handle() with
/// module().
class ModuleView {
 public:
  /// @param camera  which camera; empty for that of the common options
  ModuleView(Session& session, const std::string& module, Use use, const std::string& camera = {});

  Session& session() const { return session_; }
  const Camera& camera() const { return camera_; }
  const ovi::Device& device() const { return device_; }
  ovi::Module module() const { return module_; }
  std::uint32_t selector() const { return static_cast<std::uint32_t>(module_); }
  std::uint64_t handle() const { return stream_ ? stream_->handle() : device_.handle(); }
  /// The feature of that name, in the tool's text encoding.
  ovi::Feature feature(const std::string& name) const;
  /// Whether the module has a feature of that name.
  bool has(const std::string& name) const;
  /// A command to try next, with the options that lead to the same module of the same camera.
  std::string command(const std::string& words) const;
  /// "the camera", "the stream", ... for messages.
  std::string noun() const;

  /// Tells what the module's description says, or that it cannot be had; refusals are explained with it at once then.
  void setFacts(std::shared_ptr<const FeatureFacts> facts) {
    facts_ = std::move(facts);
    describes_ = true;
  }
  /// Null when there is none, or when nobody asked for it yet.
  const FeatureFacts* facts() const { return facts_.get(); }
  bool isWithoutDescription() const { return describes_ && facts_ == nullptr; }

 private:
  Session& session_;
  ovi::Module wanted_;
  ovi::Module module_ = ovi::Module::kRemoteDevice;
  std::string options_;
  Camera camera_;
  ovi::Device device_;
  std::unique_ptr<ovi::Stream> stream_;
  std::shared_ptr<const FeatureFacts> facts_;
  bool describes_ = false;
};

}  // namespace tool
