// The features of the acquisition, its triggers and its line.
#include "acquisition.h"
#include "acquisition_values.h"

namespace vcam {

void Acquisition::declare() {
  FeatureMap& map = core_.map;
  map.category(category(), "How and when images are taken");
  mode_ = &map.enumeration("AcquisitionMode", category(), "How many frames an acquisition takes")
               .entry("SingleFrame", kSingleFrame, "One")
               .entry("MultiFrame", kMultiFrame, "AcquisitionFrameCount")
               .entry("Continuous", kContinuous, "Until it is stopped")
               .value(int{kContinuous})
               .lockedWhileStreaming()
               .stored();
  map.command("AcquisitionStart", category(), "Starts the acquisition")
      .onWrite([this](std::size_t) {
        start();
        return kOk;
      })
      .computed([](std::size_t) { return 0; });
  for (const char* const name : {"AcquisitionStop", "AcquisitionAbort"}) {
    map.command(name, category(), "Ends the acquisition")
        .onWrite([this](std::size_t) {
          stop();
          return kOk;
        })
        .computed([](std::size_t) { return 0; });
  }
  frameCount_ = &map.integer("AcquisitionFrameCount", category(), "Frames of a multi-frame acquisition")
                     .min("1")
                     .max("65535")
                     .value(10)
                     .lockedWhileStreaming()
                     .stored()
                     .visibility("Expert")
                     .availableIf("AcquisitionMode = 1");
  burstCount_ = &map.integer("AcquisitionBurstFrameCount", category(), "Frames that a burst trigger starts")
                     .min("1")
                     .max("1024")
                     .value(1)
                     .lockedWhileStreaming()
                     .stored()
                     .visibility("Expert");
  rateEnable_ = &map.boolean("AcquisitionFrameRateEnable", category(),
                             "Lets AcquisitionFrameRate pace the frames; otherwise they come as fast as the sensor can")
                     .value(1)
                     .stored()
                     .visibility("Expert");
  map.floating("AcquisitionFrameRateMax", category(), "Largest rate with the present height and exposure")
      .unit("Hz")
      .readOnly()
      .visibility("Guru")
      .vendorSpecific()
      .dependsOn({"Height", "ExposureTime"})
      .computedFloat([this](std::size_t) { return maxRate(); });
  rate_ = &map.floating("AcquisitionFrameRate", category(), "Frames per second")
               .unit("Hz")
               .min("0.1")
               .max("AcquisitionFrameRateMax")
               .value(core_.model.defaultFrameRate)
               .stored()
               .notation("Fixed", 2)
               .availableIf("AcquisitionFrameRateEnable")
               .dependsOn({"Height", "ExposureTime"});
  rate_->computedFloat([this](std::size_t) { return std::min(rate_->settingFloat(), maxRate()); });
  map.floating("AcquisitionResultingFrameRate", category(), "The rate that the present settings give")
      .unit("Hz")
      .readOnly()
      .notation("Fixed", 2)
      .dependsOn({"AcquisitionFrameRate", "AcquisitionFrameRateEnable", "ExposureTime", "Height"})
      .computedFloat([this](std::size_t) { return 1 / std::chrono::duration<double>(period()).count(); });
  map.boolean("AcquisitionActive", category(), "Whether the camera acquires now")
      .readOnly()
      .uncached()
      .vendorSpecific()
      .visibility("Expert")
      .computed([this](std::size_t) { return running_ ? 1 : 0; });
  speedMode_ = &map.boolean("SpeedMode", category(),
                            "Delivers as fast as buffers come back, with nothing but the frame ID written into them")
                    .describe(
                        "For measurements. Each frame holds its frame ID as 64-bit little-endian number in its first "
                        "8 bytes; the rest of the buffer stays as it was. Exposure, frame rate, triggers and chunks "
                        "have no effect.")
                    .vendorSpecific()
                    .visibility("Guru")
                    .lockedWhileStreaming()
                    .value(core_.config.speedMode ? 1 : 0);
  declareTriggers();
  declareLine();
}

void Acquisition::declareTriggers() {
  FeatureMap& map = core_.map;
  const char* const triggers = "TriggerControl";
  map.category(triggers, "What starts a frame, a burst or an acquisition", category());
  map.enumeration("TriggerSelector", triggers, "The trigger to look at")
      .entry("FrameStart", 0, "Starts one frame")
      .entry("AcquisitionStart", 1, "Lets the frames of an acquisition begin")
      .entry("FrameBurstStart", 2, "Starts AcquisitionBurstFrameCount frames");
  triggerMode_ = &map.enumeration("TriggerMode", triggers, "Whether the trigger is waited for")
                      .entry("Off", 0)
                      .entry("On", 1)
                      .selectedBy({"TriggerSelector"})
                      .lockedWhileStreaming()
                      .stored();
  map.command("TriggerSoftware", triggers, "Gives the selected trigger")
      .sharedBy({"TriggerSelector"})
      .onWrite([this](std::size_t) {
        const auto kind = static_cast<std::size_t>(core_.map.find("TriggerSelector")->integer());
        if (triggerSource_->integer(kind) != 0) {
          return GC_ERROR{GC_ERR_ACCESS_DENIED};
        }
        trigger(static_cast<TriggerKind>(kind));
        return kOk;
      })
      .computed([](std::size_t) { return 0; });
  triggerSource_ = &map.enumeration("TriggerSource", triggers, "Where the trigger comes from")
                        .selectedBy({"TriggerSelector"})
                        .stored();
  for (std::size_t i = 0; i < kTriggerSources.size(); ++i) {
    triggerSource_->entry(kTriggerSources[i].name, static_cast<std::int64_t>(i));
  }
  triggerActivation_ = &map.enumeration("TriggerActivation", triggers, "The edge of a line that triggers")
                            .entry("RisingEdge", 0)
                            .entry("FallingEdge", 1)
                            .entry("AnyEdge", 2)
                            .selectedBy({"TriggerSelector"})
                            .stored()
                            .visibility("Expert");
  triggerOverlap_ = &map.enumeration("TriggerOverlap", triggers, "When the next frame trigger is accepted")
                         .entry("Off", kOverlapOff, "When the frame before has been read out")
                         .entry("ReadOut", kOverlapReadOut, "When the exposure before has ended")
                         .entry("PreviousFrame", kOverlapPreviousFrame,
                                "At any time; one trigger is kept until the "
                                "exposure before has ended")
                         .selectedBy({"TriggerSelector"})
                         .stored()
                         .visibility("Expert");
  triggerDelay_ = &map.floating("TriggerDelay", triggers, "Time between a trigger and what it starts")
                       .unit("us")
                       .min("0")
                       .max("1000000")
                       .selectedBy({"TriggerSelector"})
                       .stored()
                       .visibility("Expert");
  triggersMissed_ = &map.integer("TriggersMissed", triggers, "Frame triggers since the start that came too early")
                         .length(8)
                         .readOnly()
                         .uncached()
                         .vendorSpecific()
                         .visibility("Expert");
}

void Acquisition::declareLine() {
  FeatureMap& map = core_.map;
  const char* const lines = "DigitalIOControl";
  map.category(lines, "Lines of the camera");
  map.enumeration("LineSelector", lines, "The line to look at")
      .entry("Line0", 0, "Trigger input")
      .entry("Line1", 1, "High while the camera acquires")
      .visibility("Expert");
  map.enumeration("LineMode", lines, "Direction of the line")
      .entry("Input", 0)
      .entry("Output", 1)
      .readOnly()
      .selectedBy({"LineSelector"})
      .valueOf([](std::size_t slot) { return static_cast<std::int64_t>(slot); })
      .visibility("Expert");
  map.boolean("LineStatus", lines, "Level of the line")
      .readOnly()
      .uncached()
      .selectedBy({"LineSelector"})
      .visibility("Expert")
      .computed([this](std::size_t slot) { return (slot == 0 ? lineHigh_ : running_) ? 1 : 0; });
  map.integer("LineStatusAll", lines, "Levels of all lines, a bit each")
      .readOnly()
      .uncached()
      .representation("HexNumber")
      .visibility("Expert")
      .computed([this](std::size_t) { return lineStatus(); });
  lineFrequency_ = &map.floating("LineSignalFrequency", lines,
                                 "Rate of the square wave that the virtual wiring puts on "
                                 "Line0; 0 leaves it low")
                        .unit("Hz")
                        .min("0")
                        .max("5000")
                        .vendorSpecific()
                        .visibility("Expert");
  lineFrequency_->onWrite([this](std::size_t) {
    ++lineGeneration_;
    lineHigh_ = false;
    if (lineFrequency_->floating() > 0) {
      core_.schedule(Clock::now(), [this, generation = lineGeneration_] {
        if (generation == lineGeneration_) {
          lineEdge();
        }
      });
    }
    return kOk;
  });
}

}  // namespace vcam
