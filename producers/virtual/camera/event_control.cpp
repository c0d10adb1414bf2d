// Each event carries its time stamp and frame ID, some a value more, in the camera's byte order.
#include "event_control.h"

#include <algorithm>
#include <array>
#include <bit>
#include <string>

namespace vcam {
namespace {

constexpr std::uint64_t kTimestampOffset = 0;
constexpr std::uint64_t kFrameIdOffset = 8;
constexpr std::uint64_t kValueOffset = 16;

struct EventDeclaration {
  const char* name;
  std::uint64_t id;
  Signal signal;
  const char* toolTip;
  const char* value;  // name of the value that it carries, or nullptr
};

constexpr std::array<EventDeclaration, 11> kEvents{{
    {"AcquisitionStart", 0x9001, Signal::AcquisitionStart, "The acquisition started", nullptr},
    {"AcquisitionEnd", 0x9002, Signal::AcquisitionEnd, "The acquisition ended", nullptr},
    {"FrameStart", 0x9003, Signal::FrameStart, "The exposure of a frame began", nullptr},
    {"ExposureEnd", 0x9004, Signal::ExposureEnd, "The exposure of a frame ended", nullptr},
    {"FrameTriggerMissed", 0x9005, Signal::FrameTriggerMissed, "A frame trigger came too early", nullptr},
    {"Timer0End", 0x9010, Signal::Timer0End, "Timer 0 has run down", nullptr},
    {"Timer1End", 0x9011, Signal::Timer1End, "Timer 1 has run down", nullptr},
    {"Counter0End", 0x9012, Signal::Counter0End, "Counter 0 reached its duration", nullptr},
    {"Counter1End", 0x9013, Signal::Counter1End, "Counter 1 reached its duration", nullptr},
    {"DeviceTemperature", 0x9020, Signal::Off, "The temperature passed its limit", "Value"},
    {"Test", 0x9FFF, Signal::Off, "TestEventGenerate was executed", nullptr},
}};
constexpr std::size_t kTemperatureEvent = 9;
constexpr std::size_t kTestEvent = 10;

}  // namespace

void EventControl::declare() {
  FeatureMap& map = core_.map;
  const std::string category = "EventControl";
  map.category(category, "Messages that the camera sends by itself");
  Feature& selector = map.enumeration("EventSelector", category, "The event to look at").visibility("Expert");
  notification_ = &map.enumeration("EventNotification", category, "Whether the event is sent")
                       .entry("Off", 0)
                       .entry("On", 1)
                       .selectedBy({"EventSelector"})
                       .visibility("Expert")
                       .stored();
  map.command("TestEventGenerate", category, "Sends the event Test")
      .visibility("Guru")
      .onWrite([this](std::size_t) {
        send(kTestEvent, 0, 0);
        return GC_ERROR{GC_ERR_SUCCESS};
      })
      .computed([](std::size_t) { return 0; });
  for (std::size_t i = 0; i < kEvents.size(); ++i) {
    const EventDeclaration& event = kEvents[i];
    selector.entry(event.name, static_cast<std::int64_t>(i), event.toolTip);
    const std::string name = std::string("Event") + event.name;
    const std::string dataCategory = name + "Data";
    const std::string port = name + "Port";
    map.category(dataCategory, event.toolTip, category);
    map.port({port, DataPort::Kind::Event, event.id});
    map.integer(name, dataCategory, "ID of the event")
        .readOnly()
        .value(static_cast<std::int64_t>(event.id))
        .representation("HexNumber")
        .visibility("Expert");
    map.integer(name + "Timestamp", dataCategory, "Time stamp of the event")
        .length(8)
        .unit("ns")
        .onPort(port, kTimestampOffset)
        .visibility("Expert");
    map.integer(name + "FrameID", dataCategory, "ID of the frame that the event belongs to, or 0")
        .length(8)
        .onPort(port, kFrameIdOffset)
        .visibility("Expert");
    if (event.value != nullptr) {
      map.floating(name + event.value, dataCategory, "Value that the event carries")
          .onPort(port, kValueOffset)
          .visibility("Expert");
    }
  }
}

bool EventControl::watchesFrames() const {
  for (std::size_t i = 0; i < kEvents.size(); ++i) {
    if ((kEvents[i].signal == Signal::FrameStart || kEvents[i].signal == Signal::ExposureEnd) && enabled(i)) {
      return true;
    }
  }
  return false;
}

void EventControl::signal(Signal signal, std::uint64_t frameId) {
  const auto* const event = std::ranges::find_if(kEvents, [&](const auto& e) { return e.signal == signal; });
  if (signal != Signal::Off && event != kEvents.end()) {
    send(static_cast<std::size_t>(event - kEvents.begin()), frameId, 0);
  }
}

void EventControl::overheat(double temperature) {
  send(kTemperatureEvent, 0, temperature);
}

void EventControl::send(std::size_t index, std::uint64_t frameId, double value) {
  if (!enabled(index)) {
    return;
  }
  const EventDeclaration& event = kEvents[index];
  std::vector<std::byte> data(event.value != nullptr ? kValueOffset + 8 : kValueOffset);
  const std::span<std::byte> all(data);
  core_.map.putInteger(all.subspan(kTimestampOffset, 8), core_.ticks(Clock::now()));
  core_.map.putInteger(all.subspan(kFrameIdOffset, 8), frameId);
  if (event.value != nullptr) {
    core_.map.putInteger(all.subspan(kValueOffset, 8), std::bit_cast<std::uint64_t>(value));
  }
  core_.emit(event.id, std::move(data));
}

}  // namespace vcam
