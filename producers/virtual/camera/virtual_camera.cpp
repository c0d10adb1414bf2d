// Joins the feature groups and turns settings into frame plans.
#include "virtual_camera.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "channel_block.h"
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

ToneTables negative(ToneTables tones) {
  const auto invert = [](std::array<std::uint16_t, 256>& table) {
    std::ranges::for_each(table, [](std::uint16_t& tone) { tone = static_cast<std::uint16_t>(~tone); });
  };
  invert(tones.luma);
  std::ranges::for_each(tones.rgb, invert);
  return tones;
}

void applyChoice(CameraModel& model, const CameraChoice& choice) {
  if (!choice.vendor.empty()) {
    model.identity.vendor = choice.vendor;
    model.identity.displayName = choice.vendor + " " + model.identity.model;
  }
  if (!choice.userDefinedName.empty()) {
    model.userDefinedName = choice.userDefinedName;
  }
}

std::filesystem::path storageOf(const Configuration& configuration, const CameraModel& model) {
  return configuration.storageFolder.empty() ? std::filesystem::path()
                                             : configuration.storageFolder / model.identity.serialNumber;
}

}  // namespace

VirtualCamera::VirtualCamera(CameraModel model, const Configuration& configuration)
    : core_(std::move(model), configuration),
      store_(storageOf(core_.config, core_.model), core_.config.report),
      device_(core_, store_,
              {.reset = [this] { reset(); }, .overheat = [this](double degrees) { events_.overheat(degrees); }}),
      format_(core_),
      analog_(core_),
      acquisition_(
          core_,
          {.plan =
               [this](std::size_t stream) {
                 auto plan = planFor(stream);
                 if (stream == 0) {
                   sequencer_.frameBegun();
                 }
                 return plan;
               },
           .lines = [this] { return format_.height(); },
           .exposure = [this] { return sequencer_.exposure(analog_.exposure()); },
           .watched =
               [this] { return events_.watchesFrames() || counters_.watchesFrames() || sequencer_.watchesFrames(); },
           .signal = [this](Signal s, std::uint64_t frameId) { signal(s, frameId); }}),
      transport_(core_),
      events_(core_),
      counters_(core_, [this](Signal s) { signal(s, 0); }),
      chunks_(core_),
      sequencer_(core_),
      userSets_(core_, store_),
      files_(core_, store_,
             {.userSet = [this](const std::string& set) { return userSets_.content(set); },
              .lut = [this]() -> Feature& { return analog_.lutValues(); },
              .firmware = [this](const std::string& version) { device_.setFirmwareVersion(version); }}) {
  declare();
  core_.map.seal();
  device_.powerOn();
  userSets_.powerOn();
  storeDescription();
}

void VirtualCamera::declare() {
  device_.declare();
  format_.declare();
  acquisition_.declare();
  analog_.declareExposure(acquisition_.category());
  analog_.declare();
  counters_.declare();
  sequencer_.declare();
  events_.declare();
  chunks_.declare();
  userSets_.declare();
  files_.declare();
  transport_.declare([this] { return static_cast<std::int64_t>(planFor(0)->payloadSize); });
  if (core_.model.channels > 0) {
    declareChannels(core_.map, core_.model.channels);
  }
}

void VirtualCamera::reset() {
  acquisition_.stop();
  transport_.unlockParameters();
  files_.close();
  userSets_.powerOn();
}

VirtualCamera::~VirtualCamera() = default;

void VirtualCamera::storeDescription() {
  const Identity& identity = core_.model.identity;
  descriptionText_ = writeDescription(core_.map, {identity.vendor, identity.model, core_.model.toolTip, portName_});
  std::string base = identity.vendor + "_" + identity.model + "_v1_0_0";
  // The vendor may be any text, but a URL has marks of its own.
  std::ranges::transform(base, base.begin(), [](char c) {
    const char small = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    return (small >= 'a' && small <= 'z') || (small >= '0' && small <= '9') ? small : '_';
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

GC_ERROR VirtualCamera::write(std::uint64_t address, const void* data, std::size_t size, std::size_t* moved) {
  if (data == nullptr || size == 0) {
    return GC_ERR_INVALID_PARAMETER;
  }
  if (address >= kDescriptionAddress) {
    return address - kDescriptionAddress < descriptionBytes_.size() ? GC_ERR_ACCESS_DENIED : GC_ERR_INVALID_ADDRESS;
  }
  const CameraLock guard(core_);
  ++core_.generation;
  std::size_t taken = 0;
  const GC_ERROR error = core_.map.write(address, {static_cast<const std::byte*>(data), size}, taken);
  if (moved != nullptr) {
    *moved = taken;
  }
  return error;
}

void VirtualCamera::setBusyPolls(std::uint32_t polls) {
  const CameraLock guard(core_);
  core_.map.setBusyPolls(polls);
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
  transport_.unlockParameters();
  files_.close();
}

std::shared_ptr<const FramePlan> VirtualCamera::planFor(std::size_t stream) {
  const std::size_t slot = stream * Sequencer::kSets + sequencer_.activeSet();
  if (plans_.size() <= slot) {
    plans_.resize(slot + 1);
  }
  CachedPlan& cached = plans_[slot];
  if (cached.generation != core_.generation) {
    cached = {core_.generation, buildPlan(stream, slot)};
  }
  return cached.plan;
}

std::shared_ptr<const Picture> VirtualCamera::pictureFor(std::size_t index, PictureSettings settings) {
  if (pictures_.size() <= index) {
    pictures_.resize(index + 1);
  }
  if (pictures_[index] == nullptr || !samePicture(pictures_[index]->settings(), settings)) {
    pictures_[index] = std::make_shared<const Picture>(std::move(settings));
  }
  return pictures_[index];
}

std::shared_ptr<FramePlan> VirtualCamera::buildPlan(std::size_t stream, std::size_t slot) {
  // Counted over all cameras, so that a plan that served one is never taken for another's.
  static std::atomic<std::uint64_t> lastPlanId{0};
  auto plan = std::make_shared<FramePlan>();
  plan->planId = ++lastPlanId;
  plan->exposureTime = sequencer_.exposure(analog_.exposure());
  plan->gain = sequencer_.gain(analog_.gain());
  PictureSettings settings = format_.settings();
  settings.tones = analog_.tones(plan->exposureTime, plan->gain);
  if (stream > 0) {
    settings.tones = negative(settings.tones);
  }
  plan->width = settings.width;
  plan->height = settings.height;
  plan->offsetX = settings.offsetX;
  plan->offsetY = settings.offsetY;
  plan->pixelFormat = settings.format->code;
  plan->speedMode = core_.map.find("SpeedMode")->on();
  plan->packetSize = transport_.packetSize();
  plan->sequencerSet = static_cast<std::uint32_t>(sequencer_.activeSet());
  plan->pictures[0] = pictureFor(slot * FramePlan::kMaxParts, std::move(settings));
  plan->imageSize = plan->pictures[0]->size();
  if (format_.multiPart()) {
    addParts(*plan, slot);
  }
  if (plan->speedMode) {
    plan->payloadSize = plan->imageSize;  // Nothing is written, so there are no chunks that could be described.
  } else {
    chunks_.layOut(*plan);
  }
  return plan;
}

// The image is the first part; range and confidence follow, each from an address that is a multiple of 8.
void VirtualCamera::addParts(FramePlan& plan, std::size_t slot) {
  struct Component {
    std::size_t index;
    const char* format;
    PARTDATATYPE_ID type;
    Pattern pattern;
  };
  plan.payloadType = PAYLOAD_TYPE_MULTI_PART;
  plan.imageSize = 0;
  for (const Component& component :
       {Component{0, nullptr, PART_DATATYPE_2D_IMAGE, Pattern::Chart},
        Component{1, "Coord3D_C16", PART_DATATYPE_3D_IMAGE, Pattern::GreyDiagonalRampMoving},
        Component{2, "Confidence8", PART_DATATYPE_CONFIDENCE_MAP, Pattern::GreyVerticalRampMoving}}) {
    if (component.index > 0 && !format_.componentEnabled(component.index)) {
      continue;
    }
    const std::size_t number = plan.partCount++;
    if (number > 0) {
      PictureSettings settings = plan.pictures[0]->settings();
      settings.format = findPixelFormat(std::string_view(component.format));
      settings.pattern = component.pattern;
      plan.pictures[number] = pictureFor(slot * FramePlan::kMaxParts + component.index, std::move(settings));
    }
    const PictureSettings& shown = plan.pictures[number]->settings();
    PartPlan& part = plan.parts[number];
    part.offset = (plan.imageSize + 7) & ~std::size_t{7};
    part.size = plan.pictures[number]->size();
    part.dataType = component.type;
    part.pixelFormat = shown.format->code;
    part.width = shown.width;
    part.height = shown.height;
    part.offsetX = shown.offsetX;
    part.offsetY = shown.offsetY;
    part.sourceId = 0;
    part.regionId = 0;
    plan.imageSize = part.offset + part.size;
  }
}

void VirtualCamera::signal(Signal signal, std::uint64_t frameId) {
  // Counters and timers may start one another; a circle of them ends here.
  constexpr unsigned kMaxDepth = 8;
  if (signalDepth_ >= kMaxDepth) {
    return;
  }
  ++signalDepth_;
  events_.signal(signal, frameId);
  counters_.signal(signal);
  sequencer_.signal(signal);
  if (signal != Signal::Line0) {
    acquisition_.source(signal);
  }
  --signalDepth_;
}

std::size_t VirtualCamera::render(const FramePlan& plan, std::span<std::byte> buffer) {
  if (plan.speedMode) {
    std::uint64_t id = plan.frameId;
    for (std::size_t i = 0; i < sizeof id && i < buffer.size(); ++i, id >>= 8U) {
      buffer[i] = static_cast<std::byte>(id);
    }
    return std::min(plan.payloadSize, buffer.size());
  }
  if (buffer.size() < plan.payloadSize) {
    std::vector<std::byte> whole(plan.payloadSize);
    render(plan, whole);
    std::memcpy(buffer.data(), whole.data(), buffer.size());
    return buffer.size();
  }
  plan.pictures[0]->render(plan.frameId, buffer);
  for (std::size_t i = 1; i < plan.partCount; ++i) {
    plan.pictures[i]->render(plan.frameId, buffer.subspan(plan.parts[i].offset, plan.parts[i].size));
  }
  if (plan.chunkCount > 0) {
    chunks_.write(plan, buffer);
  }
  return plan.payloadSize;
}

std::vector<std::unique_ptr<Camera>> makeDefaultCameras(const Configuration& configuration) {
  std::vector<std::unique_ptr<Camera>> cameras;
  for (CameraModel& model : defaultModels()) {
    model.identity.tlType = configuration.tlType;
    if (const auto choice = configuration.choices.find(model.identity.serialNumber);
        choice != configuration.choices.end()) {
      applyChoice(model, choice->second);
    }
    cameras.push_back(std::make_unique<VirtualCamera>(std::move(model), configuration));
  }
  return cameras;
}

}  // namespace vcam
