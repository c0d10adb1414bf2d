// Events that bring no image: registration, their records, kill and unregister.
#include <cstring>

#include "manual_camera_test.h"

namespace manual {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::StartsWith;

class EventsTest : public ManualCameraTest {};

TEST_F(EventsTest, RegistrationsThatFail) {
  const Stream stream = openStream();
  std::uint64_t event = 0;
  struct Case {
    const char* name;
    std::uint64_t module;
    std::uint32_t kind;
    std::uint32_t selector;
    const char* failing;
    GC_ERROR code;
    oviErr result;
    std::string log;
  };
  const std::string device = std::to_string(this->device());
  const Case cases[] = {
      {"no module", 0, 1, 4, "", 0, OVI_ERR_INVALID_PARAMETER, ""},
      {"unknown", 0xDEAD, 1, 4, "", 0, OVI_ERR_NOT_FOUND,
       "1 Failed to to get module! Perhaps, invalid handle? Handle value: 57005"},
      {"images of a device", this->device(), 0, 4, "", 0, OVI_ERR_NOT_FOUND,
       "1 DataStream not found for provided module handle, could not register new buffer event! Perhaps handle is not "
       "a data stream module?"},
      {"unknown kind", this->device(), 3, 4, "", 0, OVI_ERR_INVALID_PARAMETER,
       "1 Failed to register event on module:  Handle: [" + device + "] Error: Event object was NULL"},
      {"no such module above", this->device(), 2, 5, "", 0, OVI_ERR_NOT_FOUND,
       "1 Failed to register event on module: Could not find requested module for given parameters. Event type was: 2 "
       "Module type: 5"},
      {"nothing above an event", stream.event, 1, 5, "", 0, OVI_ERR_NOT_FOUND,
       "1 Failed to register event on module: Could not find requested module for given parameters. Event type was: 1 "
       "Module type: 5"},
      {"refused", this->device(), 1, 4, "GCRegisterEvent", GC_ERR_ACCESS_DENIED, OVI_ERR_NO_ACCESS,
       "1 Failed to register event on module:  Handle: [" + device + "] Error: "},
      {"no size", this->device(), 1, 4, "EventGetInfo", GC_ERR_IO, OVI_ERR_IO,
       "1 Failed to register event on module:  Handle: [" + device + "] Error: "},
      {"twice", stream.handle, 0, 5, "", 0, OVI_ERR_RESOURCE_IN_USE,
       "1 Failed to register event on module:  Handle: [" + std::to_string(stream.handle) + "] Error: "},
      {"size unknown", this->device(), 1, 4, "EventGetInfo", GC_ERR_NOT_AVAILABLE, OVI_SUCCESS, ""},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.name);
    takeLog();
    script().fail(each.failing, each.code);
    EXPECT_EQ(oviRegisterEvent(each.module, each.kind, &event, each.selector), each.result);
    script().fail(each.failing, 0, 0);
    EXPECT_EQ(event != 0, each.result == OVI_SUCCESS);
    expectLogged(each.log);
  }
  EXPECT_EQ(oviRegisterEvent(this->device(), 1, nullptr, 4), OVI_ERR_INVALID_PARAMETER);
}

TEST_F(EventsTest, TheRecordTellsWhatHappened) {
  struct Case {
    std::uint32_t kind;
    EVENT_TYPE type;
    std::int64_t id;
    const char* value;
    std::uint64_t recordedId;
  };
  const Case cases[] = {
      {OVI_EVENT_ERROR, EVENT_ERROR, -1010, "link lost", static_cast<std::uint64_t>(-1010)},
      {OVI_EVENT_MODULE, EVENT_MODULE, 0x9C4F, "x", 0x9C4F},
      {OVI_EVENT_MODULE, EVENT_MODULE, 1, "", 1},
  };
  const Stream stream = openStream();
  for (const Case& each : cases) {
    SCOPED_TRACE(each.value);
    std::uint64_t event = 0;
    // From the stream's handle the selector walks up to the device.
    ASSERT_EQ(oviRegisterEvent(stream.handle, each.kind, &event, OVI_MODULE_LOCAL_DEVICE), OVI_SUCCESS);
    script().post(each.type, each.id, "overwritten by the next");
    script().post(each.type, each.id, each.value);
    void* data = nullptr;
    ASSERT_EQ(oviWaitForEvent(event, 1000, &data), OVI_SUCCESS);
    ASSERT_EQ(oviWaitForEvent(event, 1000, &data), OVI_SUCCESS);
    const auto* record = static_cast<const oviEventData*>(data);
    EXPECT_EQ(record->kind, each.kind);
    EXPECT_EQ(record->moduleHandle, device());
    EXPECT_EQ(record->eventID, each.recordedId);
    EXPECT_STREQ(static_cast<const char*>(record->value), each.value);
    EXPECT_EQ(record->valueSize, std::strlen(each.value));
    EXPECT_EQ(record->eventDataSize, 56U);

    void* same = nullptr;
    takeLog();
    EXPECT_EQ(oviWaitForEvent(event, 0, &same), OVI_ERR_TIMEOUT);
    EXPECT_EQ(same, data);
    EXPECT_THAT(takeLog(), Contains(StartsWith("2 Failed to get event data! Error: ")));
    script().fail("EventGetData", GC_ERR_ABORT, 1);
    EXPECT_EQ(oviWaitForEvent(event, 0, &same), OVI_ERR_ABORTED);
    EXPECT_THAT(takeLog(), Contains(StartsWith("8 Event was aborted! Error: ")));
    oviNewBufferEventData copy{};
    EXPECT_EQ(oviGetNextImage(event, &copy, 0), OVI_SUCCESS) << "no event for images: the record stays empty";
    EXPECT_EQ(oviUnregisterEvent(event), OVI_SUCCESS);
  }
}

TEST_F(EventsTest, AKillThatNobodyWaitsForEndsTheNextWait) {
  const Stream stream = openStream();
  start();
  script().takeCalls();
  script().deliver(0, {});
  EXPECT_EQ(oviEventKill(stream.event), OVI_SUCCESS);
  EXPECT_EQ(script().takeCalls(), (Calls{"EventFlush", "EventKill"}));
  void* data = nullptr;
  EXPECT_EQ(oviWaitForEvent(stream.event, 1000, &data), OVI_ERR_ABORTED);
  EXPECT_EQ(oviWaitForEvent(stream.event, 0, &data), OVI_ERR_TIMEOUT) << "flushed";
  for (const char* failing : {"EventFlush", "EventKill"}) {
    script().fail(failing, GC_ERR_IO, 1);
    takeLog();
    EXPECT_EQ(oviEventKill(stream.event), OVI_ERR_IO);
    EXPECT_THAT(takeLog(), Contains(StartsWith("1 Failed killingevent! Error: ")));
  }
  EXPECT_EQ(oviEventKill(0), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(oviEventKill(device()), OVI_ERR_NOT_FOUND);
}

TEST_F(EventsTest, AnEventHasNoByteOrder) {
  const Stream stream = openStream();
  bool little = false;
  EXPECT_EQ(oviIsModuleLittleEndian(stream.handle, OVI_MODULE_DATA_STREAM, &little), OVI_SUCCESS);
  EXPECT_TRUE(little);
  EXPECT_EQ(oviIsModuleLittleEndian(stream.event, OVI_MODULE_DATA_STREAM, &little), OVI_ERR_NOT_FOUND);
}

TEST_F(EventsTest, UnregisterOnce) {
  const Stream stream = openStream();
  EXPECT_EQ(oviUnregisterEvent(stream.event), OVI_SUCCESS);
  EXPECT_EQ(script().takeCalls(), (Calls{"GCUnregisterEvent(1)"}));
  EXPECT_EQ(oviUnregisterEvent(stream.event), OVI_ERR_NOT_FOUND);
  EXPECT_EQ(oviUnregisterEvent(0), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(oviUnregisterEvent(stream.handle), OVI_ERR_NOT_FOUND);
  std::uint64_t again = 0;
  EXPECT_EQ(oviRegisterEvent(stream.handle, 0, &again, 5), OVI_SUCCESS);
  script().takeCalls();
  EXPECT_EQ(oviCloseDataStream(stream.handle), OVI_SUCCESS);
  EXPECT_THAT(script().takeCalls(), testing::Not(Contains("GCUnregisterEvent(1)")))
      << "the closed stream took it along";
}

TEST_F(EventsTest, TheEndOfTheLibraryUnregistersAllThenCloses) {
  openStream();
  std::uint64_t event = 0;
  ASSERT_EQ(oviRegisterEvent(device(), OVI_EVENT_MODULE, &event, OVI_MODULE_LOCAL_DEVICE), OVI_SUCCESS);
  script().takeCalls();
  EXPECT_EQ(oviClose(), OVI_SUCCESS);
  forgetDevice();
  const Calls calls = script().takeCalls();
  ASSERT_EQ(calls.size(), 4U);
  EXPECT_THAT(Calls(calls.begin(), calls.begin() + 2),
              testing::UnorderedElementsAre("GCUnregisterEvent(1)", "GCUnregisterEvent(5)"));
  EXPECT_THAT(Calls(calls.begin() + 2, calls.end()), testing::ElementsAre("DSClose(0)", "DevClose"));
}

}  // namespace
}  // namespace manual
