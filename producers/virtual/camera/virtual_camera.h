// A camera made of feature groups over one register space.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "acquisition.h"
#include "analog_control.h"
#include "camera.h"
#include "camera_core.h"
#include "device_control.h"
#include "image_format.h"

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
  GC_ERROR write(std::uint64_t address, const void* data, std::size_t size) override;
  void setEventSink(CameraEventSink sink) override { core_.setSink(std::move(sink)); }
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
  std::shared_ptr<const FramePlan> currentPlan();
  std::shared_ptr<const Picture> pictureFor(std::size_t slot, PictureSettings settings);
  std::shared_ptr<FramePlan> buildPlan(double exposure, double gain, std::size_t slot);
  void signal(Signal signal, std::uint64_t frameId);

  mutable CameraCore core_;
  DeviceControl device_;
  ImageFormat format_;
  AnalogControl analog_;
  Acquisition acquisition_;
  std::string portName_ = "Device";
  DescriptionInfo description_;
  std::string descriptionText_;
  std::vector<std::byte> descriptionBytes_;

  std::uint64_t planGeneration_ = 0;
  std::shared_ptr<const FramePlan> plan_;
  std::vector<std::shared_ptr<const Picture>> pictures_;
};

}  // namespace vcam
