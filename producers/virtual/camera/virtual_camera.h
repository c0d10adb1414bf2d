// A camera made of feature groups over one register space.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "acquisition.h"
#include "analog_control.h"
#include "camera.h"
#include "camera_core.h"
#include "chunk_control.h"
#include "counter_timer.h"
#include "device_control.h"
#include "event_control.h"
#include "file_access.h"
#include "file_store.h"
#include "image_format.h"
#include "sequencer.h"
#include "transport_layer.h"
#include "user_sets.h"

namespace vcam {

class VirtualCamera : public Camera {
 public:
  VirtualCamera(CameraModel model, const Configuration& configuration);
  ~VirtualCamera() override;

  const Identity& identity() const override { return core_.model.identity; }
  std::string userDefinedName() const override;
  std::uint64_t timestampFrequency() const override { return 1000000000; }
  bool isBigEndian() const override { return core_.model.bigEndian; }
  const std::string& portName() const override { return portName_; }
  const DescriptionInfo& description() const override { return description_; }
  GC_ERROR read(std::uint64_t address, void* data, std::size_t size) override;
  using Camera::write;
  GC_ERROR write(std::uint64_t address, const void* data, std::size_t size, std::size_t* moved) override;
  void setEventSink(CameraEventSink sink) override { core_.setSink(std::move(sink)); }
  void setBusyPolls(std::uint32_t polls) override;
  std::size_t streamCount() const override { return core_.model.streams; }
  std::size_t payloadSize(std::size_t stream) const override;
  void startStream(std::size_t stream) override;
  void stopStream(std::size_t stream) override;
  FrameWait waitForFrame(std::size_t stream, Clock::time_point until, FramePlan& plan) override;
  std::size_t render(const FramePlan& plan, std::span<std::byte> buffer) override;
  void disconnect() override;

  // The text of the description, however it is stored.
  const std::string& descriptionText() const { return descriptionText_; }
  const FeatureMap& features() const { return core_.map; }

 private:
  void storeDescription();
  void declare();
  void reset();
  std::shared_ptr<const FramePlan> planFor(std::size_t stream);
  std::shared_ptr<const Picture> pictureFor(std::size_t index, PictureSettings settings);
  std::shared_ptr<FramePlan> buildPlan(std::size_t stream, std::size_t slot);
  void addParts(FramePlan& plan, std::size_t slot);
  void signal(Signal signal, std::uint64_t frameId);

  mutable CameraCore core_;
  FileStore store_;
  DeviceControl device_;
  ImageFormat format_;
  AnalogControl analog_;
  Acquisition acquisition_;
  TransportLayer transport_;
  EventControl events_;
  CounterTimer counters_;
  ChunkControl chunks_;
  Sequencer sequencer_;
  UserSets userSets_;
  FileAccess files_;
  unsigned signalDepth_ = 0;
  std::string portName_ = "Device";
  DescriptionInfo description_;
  std::string descriptionText_;
  std::vector<std::byte> descriptionBytes_;

  // One for each stream and sequencer set, rebuilt when a setting has changed.
  struct CachedPlan {
    std::uint64_t generation = 0;
    std::shared_ptr<const FramePlan> plan;
  };
  std::vector<CachedPlan> plans_;
  std::vector<std::shared_ptr<const Picture>> pictures_;
};

}  // namespace vcam
