// Reaches a camera's features by name, but through its registers, as a consumer would.
#pragma once

#include <bit>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "camera/virtual_camera.h"

namespace vcam::test {

using namespace std::chrono_literals;

inline CameraModel smallModel() {
  CameraModel model;
  model.identity.vendor = "Kestrova";
  model.identity.model = "Test";
  model.identity.serialNumber = "T1";
  model.identity.displayName = "TEST";
  model.sensorWidth = 256;
  model.sensorHeight = 128;
  model.pixelFormats = {"Mono8", "Mono12p"};
  model.maxFrameRate = 500;
  model.defaultFrameRate = 200;
  model.defaultExposure = 1000;
  model.fileBuffer = 256;
  return model;
}

class Remote {
 public:
  explicit Remote(CameraModel model = smallModel(), const Configuration& configuration = {})
      : camera_(std::move(model), configuration) {}

  VirtualCamera& camera() { return camera_; }
  VirtualCamera* operator->() { return &camera_; }

  GC_ERROR trySet(const std::string& name, std::int64_t value, std::size_t slot = 0) {
    std::vector<std::byte> bytes(feature(name).registerLength());
    features().putInteger(bytes, static_cast<std::uint64_t>(value));
    return write(name, bytes, slot);
  }
  void set(const std::string& name, std::int64_t value, std::size_t slot = 0) {
    check(name, trySet(name, value, slot));
  }
  GC_ERROR trySetFloat(const std::string& name, double value, std::size_t slot = 0) {
    std::vector<std::byte> bytes(feature(name).registerLength());
    features().putInteger(bytes, bytes.size() == 8 ? std::bit_cast<std::uint64_t>(value)
                                                   : std::bit_cast<std::uint32_t>(static_cast<float>(value)));
    return write(name, bytes, slot);
  }
  void setFloat(const std::string& name, double value, std::size_t slot = 0) {
    check(name, trySetFloat(name, value, slot));
  }
  std::int64_t get(const std::string& name, std::size_t slot = 0) {
    return static_cast<std::int64_t>(features().getInteger(bytesOf(name, slot)));
  }
  double getFloat(const std::string& name, std::size_t slot = 0) {
    return std::bit_cast<double>(features().getInteger(bytesOf(name, slot)));
  }
  std::string getText(const std::string& name) {
    std::string text;
    for (const std::byte b : bytesOf(name, 0)) {
      if (b == std::byte{0}) {
        break;
      }
      text += static_cast<char>(b);
    }
    return text;
  }
  void execute(const std::string& name) { set(name, 1); }
  GC_ERROR write(const std::string& name, std::span<const std::byte> bytes, std::size_t slot = 0) {
    const Feature& f = feature(name);
    return camera_.write(f.address() + slot * f.registerLength(), bytes.data(), bytes.size());
  }
  std::vector<std::byte> bytesOf(const std::string& name, std::size_t slot = 0) {
    const Feature& f = feature(name);
    std::vector<std::byte> bytes(f.registerLength());
    check(name, camera_.read(f.address() + slot * bytes.size(), bytes.data(), bytes.size()));
    return bytes;
  }

  void start(std::size_t streams = 1) {
    for (std::size_t i = 0; i < streams; ++i) {
      camera_.startStream(i);
    }
    set("TLParamsLocked", 1);
    execute("AcquisitionStart");
  }
  void stop() {
    execute("AcquisitionStop");
    set("TLParamsLocked", 0);
  }
  FrameWait next(FramePlan& plan, std::chrono::milliseconds wait = 10s, std::size_t stream = 0) {
    return camera_.waitForFrame(stream, Clock::now() + wait, plan);
  }
  std::vector<std::byte> picture(const FramePlan& plan) {
    std::vector<std::byte> buffer(plan.payloadSize);
    if (camera_.render(plan, buffer) != plan.payloadSize) {
      throw std::runtime_error("render() filled another size than planned");
    }
    return buffer;
  }

 private:
  const FeatureMap& features() const { return camera_.features(); }
  const Feature& feature(const std::string& name) const {
    const Feature* const found = features().find(name);
    if (found == nullptr) {
      throw std::runtime_error("no feature " + name);
    }
    return *found;
  }
  static void check(const std::string& name, GC_ERROR error) {
    if (error != GC_ERR_SUCCESS) {
      throw std::runtime_error(name + " answers " + std::to_string(error));
    }
  }

  VirtualCamera camera_;
};

// Collects the events of a camera. Outlives neither the camera nor is outlived by it: ends the sink first.
class EventLog {
 public:
  explicit EventLog(VirtualCamera& camera) : camera_(camera) {
    camera.setEventSink([this](std::uint64_t id, std::span<const std::byte> data) {
      const std::lock_guard lock(mutex_);
      events_[id].emplace_back(data.begin(), data.end());
      changed_.notify_all();
    });
  }
  ~EventLog() { camera_.setEventSink({}); }
  EventLog(const EventLog&) = delete;
  EventLog& operator=(const EventLog&) = delete;

  bool waitFor(std::uint64_t id, std::size_t count) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, 10s, [&] { return events_[id].size() >= count; });
  }
  std::size_t count(std::uint64_t id) {
    const std::lock_guard lock(mutex_);
    return events_[id].size();
  }
  std::vector<std::byte> data(std::uint64_t id, std::size_t index) {
    const std::lock_guard lock(mutex_);
    return events_[id].at(index);
  }

 private:
  VirtualCamera& camera_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::map<std::uint64_t, std::vector<std::vector<std::byte>>> events_;
};

}  // namespace vcam::test
