// A camera description made into a node map without a camera.
#pragma once

#include <GenApi/GenApi.h>

#include <ovi_genapi/diagnostics.h>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

namespace tool {

class Description {
 public:
  /// Loads text or a zip archive. Throws ToolError that names the file and the reason.
  Description(const std::filesystem::path& file, std::unique_ptr<GenApi::IPort> port);
  /// The same with the content at hand; the name is for messages.
  Description(const std::string& name, std::string content, std::unique_ptr<GenApi::IPort> port);
  ~Description();
  Description(const Description&) = delete;
  Description& operator=(const Description&) = delete;

  GenApi::INodeMap& nodeMap() const { return *nodeMap_; }
  bool zipped() const { return zipped_; }
  /// The line on which the node is defined, from 1; 0 when it cannot be told, as in an archive.
  std::uint32_t lineOf(const std::string& nodeName) const;
  std::size_t fileBytes() const { return content_.size(); }
  std::chrono::nanoseconds readTime() const { return readTime_; }
  /// From the file's bytes to the node map.
  std::chrono::nanoseconds loadTime() const { return loadTime_; }
  GenApiEngine::NodeMapDiagnostics diagnostics() const { return GenApiEngine::diagnosticsOf(*nodeMap_); }

 private:
  void load(const std::string& name);

  std::unique_ptr<GenApi::IPort> port_;
  GenApi::INodeMap* nodeMap_ = nullptr;
  bool zipped_ = false;
  std::string content_;
  std::chrono::nanoseconds readTime_{};
  std::chrono::nanoseconds loadTime_{};
};

/// What a warning of the engine means for the camera's users; empty when the warning says it all.
std::string meaningOf(const std::string& warning);

}  // namespace tool
