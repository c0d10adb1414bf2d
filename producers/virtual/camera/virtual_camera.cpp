// Joins the feature groups and turns settings into frame plans.
#include "virtual_camera.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "description_writer.h"

namespace vcam {
namespace {

constexpr std::uint64_t kDescriptionAddress = 0x1000000;

bool samePicture(const PictureSettings& a, const PictureSettings& b) {
  const auto geometry = [](const PictureSettings& s) {
    return std::array{s.width, s.height, s.offsetX, s.offsetY, s.binningX, s.binningY, s.decimationX, s.decimationY};
  };
  return a.format == b.format && geometry(a) == geometry(b) && a.binningSums == b.binningSums &&
         a.reverseX == b.reverseX && a.reverseY == b.reverseY && a.pattern == b.pattern && a.tones.rgb == b.tones.rgb &&
         a.tones.luma == b.tones.luma && a.chart == b.chart && a.folder == b.folder;
}

}  // namespace

VirtualCamera::VirtualCamera(CameraModel model, const Configuration& configuration)
    : core_(std::move(model), configuration),
      device_(core_, {.reset =
                          [this] {
                            acquisition_.stop();
                            core_.map.loadDefaults();
                          },
                      .overheat = [](double) {}}),
      format_(core_),
      analog_(core_),
      acquisition_(core_, {.plan = [this] { return currentPlan(); },
                           .lines = [this] { return format_.height(); },
                           .exposure = [this] { return analog_.exposure(); },
                           .watched = [] { return false; },
                           .signal = [this](Signal s, std::uint64_t frameId) { signal(s, frameId); }}) {
  device_.declare();
  format_.declare();
  acquisition_.declare();
  analog_.declareExposure(acquisition_.category());
  analog_.declare();
  acquisition_.declareTransport([this] { return static_cast<std::int64_t>(currentPlan()->payloadSize); });
  core_.map.seal();
  storeDescription();
}

VirtualCamera::~VirtualCamera() = default;

void VirtualCamera::storeDescription() {
  const Identity& identity = core_.model.identity;
  descriptionText_ = writeDescription(core_.map, {identity.vendor, identity.model, core_.model.toolTip, portName_});
  std::string base = identity.vendor + "_" + identity.model + "_v1_0_0";
  std::transform(base.begin(), base.end(), base.begin(), [](char c) {
    return c == ' ' || c == '-' ? '_' : static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  });
  if (core_.model.zipped) {
    description_.fileName = base + ".zip";
    descriptionBytes_ = zipDescription(descriptionText_, base + ".xml");
  } else {
    description_.fileName = base + ".xml";
    const auto bytes = std::as_bytes(std::span(descriptionText_));
    descriptionBytes_.assign(bytes.begin(), bytes.end());
  }
  description_.address = kDescriptionAddress;
  description_.size = descriptionBytes_.size();
  std::array<char, 48> place{};
  std::snprintf(place.data(), place.size(), ";%" PRIX64 ";%zX", description_.address, description_.size);
  description_.url = "Local:" + description_.fileName + place.data();
}

std::string VirtualCamera::userDefinedName() const {
  const CameraLock guard(core_);
  return device_.userId();
}

GC_ERROR VirtualCamera::read(std::uint64_t address, void* data, std::size_t size) {
  if (data == nullptr || size == 0) {
    return GC_ERR_INVALID_PARAMETER;
  }
  if (address >= kDescriptionAddress) {
    const std::uint64_t offset = address - kDescriptionAddress;
    if (offset > descriptionBytes_.size() || size > descriptionBytes_.size() - offset) {
      return GC_ERR_INVALID_ADDRESS;
    }
    std::memcpy(data, descriptionBytes_.data() + offset, size);
    return GC_ERR_SUCCESS;
  }
  const CameraLock guard(core_);
  return core_.map.read(address, {static_cast<std::byte*>(data), size});
}

GC_ERROR VirtualCamera::write(std::uint64_t address, const void* data, std::size_t size) {
  if (data == nullptr || size == 0) {
    return GC_ERR_INVALID_PARAMETER;
  }
  if (address >= kDescriptionAddress) {
    return address - kDescriptionAddress < descriptionBytes_.size() ? GC_ERR_ACCESS_DENIED : GC_ERR_INVALID_ADDRESS;
  }
  const CameraLock guard(core_);
  ++core_.generation;
  return core_.map.write(address, {static_cast<const std::byte*>(data), size});
}

std::size_t VirtualCamera::payloadSize(std::size_t) const {
  const CameraLock guard(core_);
  return static_cast<std::size_t>(core_.map.find("PayloadSize")->integer());
}

void VirtualCamera::startStream(std::size_t stream) {
  const CameraLock guard(core_);
  acquisition_.startStream(stream);
}

void VirtualCamera::stopStream(std::size_t stream) {
  const CameraLock guard(core_);
  acquisition_.stopStream(stream);
}

FrameWait VirtualCamera::waitForFrame(std::size_t stream, Clock::time_point until, FramePlan& plan) {
  CameraLock guard(core_);
  return acquisition_.waitForFrame(guard, stream, until, plan);
}

void VirtualCamera::disconnect() {
  const CameraLock guard(core_);
  ++core_.generation;
  acquisition_.stop();
  acquisition_.unlockParameters();
}

std::shared_ptr<const FramePlan> VirtualCamera::currentPlan() {
  if (plan_ == nullptr || planGeneration_ != core_.generation) {
    plan_ = buildPlan(analog_.exposure(), analog_.gain(), 0);
    planGeneration_ = core_.generation;
  }
  return plan_;
}

std::shared_ptr<const Picture> VirtualCamera::pictureFor(std::size_t slot, PictureSettings settings) {
  if (pictures_.size() <= slot) {
    pictures_.resize(slot + 1);
  }
  if (pictures_[slot] == nullptr || !samePicture(pictures_[slot]->settings(), settings)) {
    pictures_[slot] = std::make_shared<const Picture>(std::move(settings));
  }
  return pictures_[slot];
}

std::shared_ptr<FramePlan> VirtualCamera::buildPlan(double exposure, double gain, std::size_t slot) {
  auto plan = std::make_shared<FramePlan>();
  PictureSettings settings = format_.settings();
  settings.tones = analog_.tones(exposure, gain);
  plan->width = settings.width;
  plan->height = settings.height;
  plan->offsetX = settings.offsetX;
  plan->offsetY = settings.offsetY;
  plan->pixelFormat = settings.format->code;
  plan->exposureTime = exposure;
  plan->gain = gain;
  plan->speedMode = core_.map.find("SpeedMode")->on();
  plan->pictures[0] = pictureFor(slot, std::move(settings));
  plan->imageSize = plan->pictures[0]->size();
  plan->payloadSize = plan->imageSize;
  return plan;
}

void VirtualCamera::signal(Signal signal, std::uint64_t) {
  acquisition_.source(signal);
}

std::size_t VirtualCamera::render(const FramePlan& plan, std::span<std::byte> buffer) {
  if (plan.speedMode) {
    std::uint64_t id = plan.frameId;
    for (std::size_t i = 0; i < sizeof id && i < buffer.size(); ++i, id >>= 8U) {
      buffer[i] = static_cast<std::byte>(id);
    }
    return std::min(plan.payloadSize, buffer.size());
  }
  if (buffer.size() >= plan.payloadSize) {
    plan.pictures[0]->render(plan.frameId, buffer);
    return plan.payloadSize;
  }
  std::vector<std::byte> whole(plan.payloadSize);
  render(plan, whole);
  std::memcpy(buffer.data(), whole.data(), buffer.size());
  return buffer.size();
}

std::vector<std::unique_ptr<Camera>> makeDefaultCameras(const Configuration& configuration) {
  std::vector<std::unique_ptr<Camera>> cameras;
  for (CameraModel& model : defaultModels()) {
    cameras.push_back(std::make_unique<VirtualCamera>(std::move(model), configuration));
  }
  return cameras;
}

}  // namespace vcam
