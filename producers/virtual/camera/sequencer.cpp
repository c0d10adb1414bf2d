// Declaration and run of the sequencer.
#include "sequencer.h"

namespace vcam {
namespace {

constexpr const char* kSequencerCategory = "SequencerControl";

// The value of SequencerTriggerSource that moves on with every frame.
constexpr auto kEveryFrame = static_cast<std::int64_t>(Signal::FrameStart);

}  // namespace

void Sequencer::declare() {
  FeatureMap& map = core_.map;
  map.category(kSequencerCategory, "Exposure and gain that change from frame to frame");
  mode_ = &map.enumeration("SequencerMode", kSequencerCategory, "Whether the sequencer runs")
               .entry("Off", 0)
               .entry("On", 1)
               .lockedIf("TLParamsLocked || SequencerConfigurationMode")
               .visibility("Expert")
               .onWrite([this](std::size_t) {
                 active_ = static_cast<std::size_t>(startSet_->integer());
                 return kOk;
               });
  map.enumeration("SequencerConfigurationMode", kSequencerCategory, "Whether sets may be changed")
      .entry("Off", 0)
      .entry("On", 1)
      .lockedIf("SequencerMode")
      .visibility("Expert");
  map.enumeration("SequencerFeatureSelector", kSequencerCategory, "The feature to look at")
      .entry("ExposureTime", 0)
      .entry("Gain", 1)
      .visibility("Expert");
  enabled_ = &map.boolean("SequencerFeatureEnable", kSequencerCategory, "Lets the sequencer control the feature")
                  .selectedBy({"SequencerFeatureSelector"})
                  .lockedIf("SequencerMode")
                  .value(1)
                  .visibility("Expert");
  setSelector_ = &map.integer("SequencerSetSelector", kSequencerCategory, "The set to look at")
                      .min("0")
                      .max("7")
                      .visibility("Expert");
  map.command("SequencerSetSave", kSequencerCategory, "Takes the present values into the set")
      .sharedBy({"SequencerSetSelector"})
      .availableIf("SequencerConfigurationMode")
      .visibility("Expert")
      .onWrite([this](std::size_t) {
        sets_[static_cast<std::size_t>(setSelector_->integer())] = {core_.map.find("ExposureTime")->floating(),
                                                                    core_.map.find("Gain")->floating()};
        return kOk;
      })
      .computed([](std::size_t) { return 0; });
  map.command("SequencerSetLoad", kSequencerCategory, "Makes the values of the set the present ones")
      .sharedBy({"SequencerSetSelector"})
      .availableIf("SequencerConfigurationMode")
      .visibility("Expert")
      .onWrite([this](std::size_t) {
        const Values& values = sets_[static_cast<std::size_t>(setSelector_->integer())];
        core_.map.find("ExposureTime")->setFloat(values.exposure);
        core_.map.find("Gain")->setFloat(values.gain);
        return kOk;
      })
      .computed([](std::size_t) { return 0; });
  map.integer("SequencerSetActive", kSequencerCategory, "The set of the next frame")
      .readOnly()
      .uncached()
      .visibility("Expert")
      .computed([this](std::size_t) { return static_cast<std::int64_t>(active_); });
  startSet_ = &map.integer("SequencerSetStart", kSequencerCategory, "The first set")
                   .min("0")
                   .max("7")
                   .lockedIf("SequencerMode")
                   .visibility("Expert");
  map.integer("SequencerPathSelector", kSequencerCategory, "The path out of the set to look at")
      .min("0")
      .max("1")
      .visibility("Expert");
  next_ = &map.integer("SequencerSetNext", kSequencerCategory, "The set that the path leads to")
               .min("0")
               .max("7")
               .selectedBy({"SequencerSetSelector", "SequencerPathSelector"})
               .lockedIf("SequencerMode")
               .visibility("Expert");
  source_ = &map.enumeration("SequencerTriggerSource", kSequencerCategory, "What takes the path")
                 .selectedBy({"SequencerSetSelector", "SequencerPathSelector"})
                 .lockedIf("SequencerMode")
                 .visibility("Expert");
  for (const SignalName& entry : kSignals) {
    source_->entry(entry.name, static_cast<std::int64_t>(entry.signal));
  }
  for (Values& values : sets_) {
    values.exposure = core_.model.defaultExposure;
  }
}

bool Sequencer::watchesFrames() const {
  for (std::size_t slot = 0; on() && slot < source_->slots(); ++slot) {
    if (source_->integer(slot) == static_cast<std::int64_t>(Signal::ExposureEnd)) {
      return true;
    }
  }
  return false;
}

void Sequencer::frameBegun() {
  for (std::size_t path = 0; on() && path < kPaths; ++path) {
    const std::size_t slot = active_ * kPaths + path;
    if (source_->integer(slot) == kEveryFrame) {
      active_ = static_cast<std::size_t>(next_->integer(slot));
      return;
    }
  }
}

void Sequencer::signal(Signal signal) {
  const auto value = static_cast<std::int64_t>(signal);
  if (signal == Signal::AcquisitionStart && on()) {
    active_ = static_cast<std::size_t>(startSet_->integer());
  }
  for (std::size_t path = 0; on() && signal != Signal::Off && value != kEveryFrame && path < kPaths; ++path) {
    const std::size_t slot = active_ * kPaths + path;
    if (source_->integer(slot) == value) {
      active_ = static_cast<std::size_t>(next_->integer(slot));
      return;
    }
  }
}

}  // namespace vcam
