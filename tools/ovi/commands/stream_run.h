// One camera's part of ovi stream: its acquisition, on a thread of its own.
#pragma once

#include <chrono>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "acquisition.h"
#include "camera_time.h"
#include "image_saver.h"
#include "module_view.h"
#include "pattern_check.h"

namespace tool {

struct StreamOptions {
  AcquisitionOptions acquisition;
  std::vector<std::string> cameras;
  std::string save = "none";
  std::string folder;
  std::uint32_t buffers = 0;
  unsigned imageTimeout = 3000;
  bool all = false;
  bool checkPattern = false;
  bool cameraTime = false;
};

class StreamRun {
 public:
  /// Opens the camera. Throws ToolError.
  /// @param folder  for the images; empty when they are not saved
  StreamRun(Session& session, const Camera& camera, const StreamOptions& options, std::filesystem::path folder);
  ~StreamRun() { join(); }
  StreamRun(const StreamRun&) = delete;
  StreamRun& operator=(const StreamRun&) = delete;

  void start();
  void join();
  bool done() const;
  Ledger ledger() const;
  /// What ended it early; null when nothing did.
  std::exception_ptr failure() const { return failure_; }
  const std::string& name() const { return name_; }
  const Trigger& trigger() const { return trigger_; }
  /// The camera's part of the live line.
  std::string liveText() const;

 private:
  std::uint32_t usualBuffers() const;
  void work();
  void take(const ovi::Image& image, Ledger& ledger);
  void publish(const ovi::Stream& stream, const Ledger& ledger);

  std::string name_;
  bool json_;
  std::filesystem::path folder_;
  SaveFormat format_;
  ModuleView view_;
  const ovi::Device& device_;
  AcquisitionOptions acquisition_;
  std::unique_ptr<TestPattern> pattern_;
  std::unique_ptr<CameraTime> cameraTime_;
  PatternCheck check_;
  Trigger trigger_;
  std::exception_ptr failure_;
  mutable std::mutex mutex_;
  Ledger ledger_;
  std::int64_t filled_ = -1;
  std::chrono::steady_clock::time_point asked_;
  bool done_ = false;
  std::thread thread_;
};

}  // namespace tool
