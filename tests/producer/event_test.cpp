// Waiting, killing, flushing and reading events.
#include "consumer.h"

#include <array>
#include <atomic>
#include <chrono>
#include <thread>

namespace producer_test {

class EventTest : public ProducerTest {
 protected:
  struct Entry {
    Error error = kError;
    std::string data;
  };
  Entry take(Handle event, std::uint64_t timeoutMs) {
    Entry entry;
    entry.data.resize(ask(g.EventGetInfo, event, 3).number());
    std::size_t size = entry.data.size();
    entry.error = g.EventGetData(event, entry.data.data(), &size, timeoutMs);
    entry.data.resize(entry.error == kSuccess ? size : 0);
    return entry;
  }
  Answer info(Handle event, const Entry& entry, int command) {
    return ask(g.EventGetDataInfo, event, static_cast<const void*>(entry.data.data()), entry.data.size(), command);
  }
};

TEST_F(EventTest, RegistrationHasItsRules) {
  openStream();
  Handle event = nullptr;
  struct Case {
    Handle module;
    std::array<Error, 6> results;
  };
  const Error no = kNotImplemented;
  const Handle buffer = announce(1, false).front();
  for (const Case& expected : std::vector<Case>{{tl, {0, no, no, no, no, 0}},
                                                {interface, {0, no, no, no, no, 0}},
                                                {device, {0, no, 0, 0, 0, 0}},
                                                {stream, {0, kResourceInUse, no, no, no, 0}},
                                                {buffer, {0, no, no, no, no, 0}}}) {
    for (std::int32_t type = 0; type < 6; ++type) {
      EXPECT_EQ(g.GCRegisterEvent(expected.module, type, &event), expected.results[static_cast<std::size_t>(type)])
          << type;
      if (expected.results[static_cast<std::size_t>(type)] == kSuccess) {
        EXPECT_EQ(g.GCRegisterEvent(expected.module, type, &event), kResourceInUse);
        EXPECT_EQ(ask(g.EventGetInfo, event, 0).number(), static_cast<std::uint64_t>(type));
        EXPECT_EQ(g.GCUnregisterEvent(expected.module, type), kSuccess);
        EXPECT_EQ(g.EventKill(event), kInvalidHandle);
      }
      if (expected.module != stream || type != kNewBuffer) {
        EXPECT_EQ(g.GCUnregisterEvent(expected.module, type), kNotInitialized);
      }
    }
    EXPECT_EQ(g.GCRegisterEvent(expected.module, 6, &event), kNotImplemented);
    EXPECT_EQ(g.GCRegisterEvent(expected.module, -1, &event), kNotImplemented);
    EXPECT_EQ(g.GCUnregisterEvent(expected.module, 77), kNotInitialized);
  }
}

TEST_F(EventTest, WaitsEndInTimeAndErrorsConsumeNothing) {
  openStream();
  announce(2);
  std::array<char, 64> data{};
  std::size_t size = data.size();
  EXPECT_EQ(g.EventGetData(newBuffer, data.data(), &size, 0), kTimeout);
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(g.EventGetData(newBuffer, data.data(), &size, 30), kTimeout);
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(30));
  EXPECT_EQ(g.EventGetData(newBuffer, data.data(), nullptr, 0), kInvalidParameter);

  ASSERT_EQ(g.DSFlushQueue(stream, 0), kSuccess);
  size = 15;
  EXPECT_EQ(g.EventGetData(newBuffer, data.data(), &size, 0), kBufferTooSmall);
  EXPECT_EQ(ask(g.EventGetInfo, newBuffer, 1).number(), 2U);
  size = data.size();
  EXPECT_EQ(g.EventGetData(newBuffer, data.data(), &size, 0), kSuccess);
  EXPECT_EQ(size, 16U);
  EXPECT_EQ(ask(g.EventGetInfo, newBuffer, 1).number(), 1U);
  EXPECT_EQ(ask(g.EventGetInfo, newBuffer, 2).number(), 2U) << "queued and delivered";

  const auto* const entry = static_cast<const void*>(data.data());
  const Answer id = ask(g.EventGetDataInfo, newBuffer, entry, size, 0);
  EXPECT_EQ(id.type, kPointer);
  const Answer user = ask(g.EventGetDataInfo, newBuffer, entry, size, 1);
  EXPECT_EQ(user.number(), bufferInfo(reinterpret_cast<Handle>(static_cast<std::uintptr_t>(id.number())), 2));
  EXPECT_EQ(ask(g.EventGetDataInfo, newBuffer, entry, size, 2).error, kNotAvailable);
  EXPECT_EQ(ask(g.EventGetDataInfo, newBuffer, entry, size, 3).error, kNotImplemented);
  EXPECT_EQ(ask(g.EventGetDataInfo, newBuffer, entry, std::size_t{8}, 0).error, kInvalidParameter);
  EXPECT_EQ(ask(g.EventGetDataInfo, newBuffer, entry, std::size_t{0}, 0).error, kInvalidParameter);
  EXPECT_EQ(ask(g.EventGetDataInfo, newBuffer, static_cast<const void*>(nullptr), size, 0).error, kInvalidParameter);

  // Without a target the entry is taken unseen.
  EXPECT_EQ(g.EventGetData(newBuffer, nullptr, &size, 0), kSuccess);
  EXPECT_EQ(ask(g.EventGetInfo, newBuffer, 1).number(), 0U);
  EXPECT_EQ(streamInfo(5), 0U);
}

TEST_F(EventTest, KillsAreCounted) {
  openStream();
  announce(1);
  // Nobody waits: each kill ends one wait to come, before any entry.
  ASSERT_EQ(g.DSFlushQueue(stream, 0), kSuccess);
  EXPECT_EQ(g.EventKill(newBuffer), kSuccess);
  EXPECT_EQ(g.EventKill(newBuffer), kSuccess);
  NewBufferData data{};
  std::size_t size = sizeof(data);
  EXPECT_EQ(g.EventGetData(newBuffer, &data, &size, 0), kAbort);
  EXPECT_EQ(g.EventGetData(newBuffer, &data, &size, kInfinite), kAbort);
  EXPECT_EQ(g.EventGetData(newBuffer, &data, &size, 0), kSuccess) << "the entry is still there";

  // Three wait: two kills end two waits, the third goes on.
  std::atomic<int> aborted{0};
  std::atomic<int> filled{0};
  std::vector<std::thread> waiters;
  for (int i = 0; i < 3; ++i) {
    waiters.emplace_back([&] {
      NewBufferData taken{};
      std::size_t bytes = sizeof(taken);
      const Error error = g.EventGetData(newBuffer, &taken, &bytes, kInfinite);
      aborted += error == kAbort ? 1 : 0;
      filled += error == kSuccess ? 1 : 0;
    });
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EXPECT_EQ(g.EventKill(newBuffer), kSuccess);
  EXPECT_EQ(g.EventKill(newBuffer), kSuccess);
  for (int wait = 0; wait < 5000 && aborted < 2; ++wait) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  EXPECT_EQ(aborted, 2);
  EXPECT_EQ(filled, 0);
  ASSERT_EQ(g.DSQueueBuffer(stream, data.buffer), kSuccess);
  ASSERT_EQ(g.DSFlushQueue(stream, 0), kSuccess);
  for (std::thread& waiter : waiters) {
    waiter.join();
  }
  EXPECT_EQ(aborted, 2);
  EXPECT_EQ(filled, 1);

  // A pending kill is forgotten with the registration.
  EXPECT_EQ(g.EventKill(newBuffer), kSuccess);
  ASSERT_EQ(g.GCUnregisterEvent(stream, kNewBuffer), kSuccess);
  ASSERT_EQ(g.GCRegisterEvent(stream, kNewBuffer, &newBuffer), kSuccess);
  EXPECT_EQ(g.EventGetData(newBuffer, &data, &size, 0), kTimeout);
}

TEST_F(EventTest, UnregisteringAndClosingEndWaits) {
  for (const bool close : {false, true}) {
    openStream();
    std::atomic<Error> result{0};
    std::thread waiter([&] {
      NewBufferData data{};
      std::size_t size = sizeof(data);
      result = g.EventGetData(newBuffer, &data, &size, kInfinite);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(close ? g.TLClose(tl) : g.GCUnregisterEvent(stream, kNewBuffer), kSuccess);
    waiter.join();
    EXPECT_EQ(result, kAbort);
    if (!close) {
      ASSERT_EQ(g.TLClose(tl), kSuccess);
    }
    tl = interface = device = nullptr;
  }
}

TEST_F(EventTest, ModuleAndErrorEventsTellWhatHappened) {
  openStream();
  Handle interfaceEvent = nullptr;
  Handle deviceEvent = nullptr;
  Handle errorEvent = nullptr;
  Handle streamEvent = nullptr;
  ASSERT_EQ(g.GCRegisterEvent(interface, kModuleEvent, &interfaceEvent), kSuccess);
  ASSERT_EQ(g.GCRegisterEvent(device, kModuleEvent, &deviceEvent), kSuccess);
  ASSERT_EQ(g.GCRegisterEvent(device, kErrorEvent, &errorEvent), kSuccess);
  ASSERT_EQ(g.GCRegisterEvent(stream, kModuleEvent, &streamEvent), kSuccess);
  announce(1);
  ASSERT_EQ(g.DSStartAcquisition(stream, 0, kInfinite), kSuccess);
  const Entry started = take(streamEvent, 1000);
  ASSERT_EQ(started.error, kSuccess);
  const Answer text = info(streamEvent, started, 0);
  EXPECT_EQ(text.type, kString);
  EXPECT_EQ(text.bytes.size() % 2, 0U);
  EXPECT_EQ(std::stoull(text.bytes, nullptr, 16), info(streamEvent, started, 2).number());
  EXPECT_EQ(info(streamEvent, started, 1).type, kBytes);
  // The description of the module knows the event.
  EXPECT_NE(Registers(stream).description().find("<EventID>" + text.bytes + "</EventID>"), std::string::npos);

  ASSERT_EQ(orders().loseDevice(deviceId.c_str()), 0);
  EXPECT_EQ(take(interfaceEvent, 1000).error, kSuccess);
  EXPECT_EQ(take(deviceEvent, 1000).error, kSuccess);
  const Entry error = take(errorEvent, 1000);
  ASSERT_EQ(error.error, kSuccess);
  EXPECT_EQ(static_cast<Error>(info(errorEvent, error, 0).number()), kIo);
  EXPECT_EQ(static_cast<Error>(info(errorEvent, error, 2).number()), kIo);
  EXPECT_FALSE(info(errorEvent, error, 1).bytes.empty());
  EXPECT_EQ(g.DSStopAcquisition(stream, 0), kSuccess);

  // A notification that is off stays silent.
  const Registers registers(interface);
  ASSERT_EQ(registers.set("EventSelector", registers.entry("EventSelector", "DeviceArrived")), kSuccess);
  ASSERT_EQ(registers.set("EventNotification", 0), kSuccess);
  ASSERT_EQ(orders().returnDevice(deviceId.c_str()), 0);
  EXPECT_EQ(take(interfaceEvent, 20).error, kTimeout);
}

TEST_F(EventTest, FeatureEventsComeFromTheTransportSide) {
  openStream();
  announce(1);
  Handle change = nullptr;
  Handle invalidate = nullptr;
  ASSERT_EQ(g.GCRegisterEvent(device, kFeatureChange, &change), kSuccess);
  ASSERT_EQ(g.GCRegisterEvent(device, kFeatureInvalidate, &invalidate), kSuccess);
  ASSERT_EQ(g.DSStartAcquisition(stream, 0, 1), kSuccess);
  ASSERT_EQ(g.DSStopAcquisition(stream, 0), kSuccess);
  for (const char* value : {"1", "0"}) {
    const Entry entry = take(change, 1000);
    ASSERT_EQ(entry.error, kSuccess);
    EXPECT_EQ(info(change, entry, 0).bytes, "TLParamsLocked");
    EXPECT_EQ(info(change, entry, 1).bytes, value);
    EXPECT_EQ(info(change, entry, 2).error, kNotAvailable);
  }
  EXPECT_EQ(take(invalidate, 0).error, kTimeout);
  ASSERT_EQ(remote->set("Height", remote->get("Height") / 2), kSuccess);
  const Entry entry = take(invalidate, 1000);
  ASSERT_EQ(entry.error, kSuccess);
  EXPECT_EQ(info(invalidate, entry, 0).bytes, "PayloadSize");
  EXPECT_EQ(info(invalidate, entry, 0).type, kString);
  EXPECT_EQ(info(invalidate, entry, 1).error, kNotAvailable);
  EXPECT_EQ(remote->set("Height", remote->get("Height") * 2), kSuccess);

  // Of two streams the first locks and the last one frees the parameters, also one that is closed.
  ASSERT_EQ(g.TLClose(tl), kSuccess);
  tl = interface = device = nullptr;
  openDevice("VC-1024D");
  ASSERT_EQ(g.GCRegisterEvent(device, kFeatureChange, &change), kSuccess);
  Handle streams[2] = {};
  for (std::uint32_t i = 0; i < 2; ++i) {
    openStream(i);
    streams[i] = stream;
    announce(1);
    ASSERT_EQ(g.DSStartAcquisition(stream, 0, kInfinite), kSuccess);
  }
  ASSERT_EQ(g.DSStopAcquisition(streams[0], 0), kSuccess);
  EXPECT_EQ(info(change, take(change, 1000), 1).bytes, "1");
  EXPECT_EQ(take(change, 0).error, kTimeout);
  ASSERT_EQ(g.DSClose(streams[1]), kSuccess);
  EXPECT_EQ(info(change, take(change, 1000), 1).bytes, "0");
}

TEST_F(EventTest, CameraEventsCarryTheirDataFromAddressZero) {
  openStream();
  announce(4);
  Handle event = nullptr;
  ASSERT_EQ(g.GCRegisterEvent(device, kRemoteDevice, &event), kSuccess);
  ASSERT_EQ(remote->set("EventSelector", remote->entry("EventSelector", "ExposureEnd")), kSuccess);
  ASSERT_EQ(remote->set("EventNotification", remote->entry("EventNotification", "On")), kSuccess);
  ASSERT_EQ(g.DSStartAcquisition(stream, 0, 3), kSuccess);
  startCamera();
  for (int i = 0; i < 3; ++i) {
    const Entry entry = take(event, 5000);
    ASSERT_EQ(entry.error, kSuccess);
    EXPECT_EQ(std::stoull(info(event, entry, 0).bytes, nullptr, 16), info(event, entry, 2).number());
    EXPECT_EQ(info(event, entry, 1).type, kBytes);
    EXPECT_FALSE(info(event, entry, 1).bytes.empty());
  }
  EXPECT_EQ(g.DSStopAcquisition(stream, 0), kSuccess);
  stopCamera();
  EXPECT_EQ(remote->set("EventNotification", 0), kSuccess);
}

}  // namespace producer_test
