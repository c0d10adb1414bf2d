// Start, stop and abort: what reaches producer and camera, in which order, and whose failure counts.
#include "manual_camera_test.h"

namespace manual {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::StartsWith;

class ControlTest : public ManualCameraTest {};

TEST_F(ControlTest, ReachCameraAndStreamsInOrder) {
  struct Case {
    const char* name;
    std::uint32_t count;
    std::uint32_t lockedBefore;
    const char* failing;
    int failures;
    oviErr started;
    Calls startCalls;
    const char* log;
  };
  const Case cases[] = {
      {"endless",
       0xFFFFFFFF,
       0,
       "",
       0,
       OVI_SUCCESS,
       {"DSStartAcquisition(0,-1)", "DSStartAcquisition(1,-1)", "lock=1", "start"},
       ""},
      {"some",
       10,
       0,
       "",
       0,
       OVI_SUCCESS,
       {"DSStartAcquisition(0,10)", "DSStartAcquisition(1,10)", "lock=1", "start"},
       ""},
      {"sign-extended",
       0x80000000,
       0,
       "",
       0,
       OVI_SUCCESS,
       {"DSStartAcquisition(0,-2147483648)", "DSStartAcquisition(1,-2147483648)", "lock=1", "start"},
       ""},
      {"already locked", 1, 1, "", 0, OVI_SUCCESS, {"DSStartAcquisition(0,1)", "DSStartAcquisition(1,1)", "start"}, ""},
      {"the first stream fails",
       1,
       0,
       "DSStartAcquisition",
       1,
       OVI_SUCCESS,
       {"lock=1", "start"},
       "1 Failed to start acquisition for data stream: [Stream0]"},
      {"the lock fails",
       1,
       0,
       "GCWritePort",
       1,
       OVI_SUCCESS,
       {"DSStartAcquisition(0,1)", "DSStartAcquisition(1,1)", "start"},
       "1 Failed to set parameter!"},
      {"the camera fails",
       1,
       0,
       "GCWritePort",
       -1,
       OVI_ERR_IO,
       {"DSStartAcquisition(0,1)", "DSStartAcquisition(1,1)"},
       "1 Failed to execute command parameter!"},
  };
  const Stream first = openStream(0);
  const Stream second = openStream(1);
  for (const Case& each : cases) {
    SCOPED_TRACE(each.name);
    script().reset();
    script().setRegister(kParamsLocked, each.lockedBefore);
    takeLog();
    script().fail(each.failing, GC_ERR_IO, each.failures);
    EXPECT_EQ(oviStartAcquisition(device(), each.count), each.started);
    EXPECT_EQ(script().takeCalls(), each.startCalls);
    expectLogged(each.log);
  }
  static_cast<void>(first);
  static_cast<void>(second);
}

TEST_F(ControlTest, StopAndAbortGoOnAfterFailures) {
  struct Case {
    const char* name;
    oviErr(OVI_CALL* function)(std::uint64_t);
    std::uint32_t lockedBefore;
    const char* failing;
    int failures;
    oviErr result;
    Calls calls;
    const char* log;
  };
  const Calls rest = {"DSStopAcquisition(0,0)", "DSFlushQueue(0,2)", "DSStopAcquisition(1,0)", "DSFlushQueue(1,2)"};
  const auto with = [&](Calls calls) {
    calls.insert(calls.end(), rest.begin(), rest.end());
    return calls;
  };
  const Case cases[] = {
      {"stop", oviStopAcquisition, 1, "", 0, OVI_SUCCESS, with({"stop", "lock=0"}), ""},
      {"not locked", oviStopAcquisition, 0, "", 0, OVI_SUCCESS, with({"stop"}), ""},
      {"abort",
       oviAbortAcquisition,
       1,
       "",
       0,
       OVI_SUCCESS,
       {"abort", "lock=0", "DSStopAcquisition(0,1)", "DSFlushQueue(0,2)", "DSStopAcquisition(1,1)",
        "DSFlushQueue(1,2)"},
       ""},
      {"the unlock masks the command", oviStopAcquisition, 1, "GCWritePort", 1, OVI_SUCCESS, with({"lock=0"}), ""},
      {"the command alone fails", oviStopAcquisition, 0, "GCWritePort", 1, OVI_ERR_IO, with({}), ""},
      {"a stream does not stop",
       oviStopAcquisition,
       1,
       "DSStopAcquisition",
       1,
       OVI_ERR_IO,
       {"stop", "lock=0", "DSFlushQueue(0,2)", "DSStopAcquisition(1,0)", "DSFlushQueue(1,2)"},
       "1 Failed to stop acquisition for data stream: [Stream0]"},
      {"a flush fails",
       oviStopAcquisition,
       1,
       "DSFlushQueue",
       1,
       OVI_ERR_IO,
       {"stop", "lock=0", "DSStopAcquisition(0,0)", "DSStopAcquisition(1,0)", "DSFlushQueue(1,2)"},
       "2 Error during flush of queues for data stream: [Stream0] Error: -1010"},
  };
  openStream(0);
  openStream(1);
  for (const Case& each : cases) {
    SCOPED_TRACE(each.name);
    script().reset();
    script().setRegister(kParamsLocked, each.lockedBefore);
    takeLog();
    script().fail(each.failing, GC_ERR_IO, each.failures);
    EXPECT_EQ(each.function(device()), each.result);
    EXPECT_EQ(script().takeCalls(), each.calls);
    expectLogged(each.log);
  }
}

TEST_F(ControlTest, DevicesWithoutStreams) {
  start();
  EXPECT_EQ(script().takeCalls(), (Calls{"lock=1", "start"}));
  EXPECT_EQ(oviStopAcquisition(device()), OVI_SUCCESS);
  EXPECT_EQ(script().takeCalls(), (Calls{"stop", "lock=0"}));
  for (const auto function : {oviStopAcquisition, oviAbortAcquisition}) {
    EXPECT_EQ(function(0xDEAD), OVI_ERR_NOT_FOUND);
    EXPECT_THAT(takeLog(), Contains("1 There seem to be no data streams available for acquisition with this device!"));
  }
  EXPECT_EQ(oviStartAcquisition(0xDEAD, 1), OVI_ERR_NOT_FOUND);
}

TEST_F(ControlTest, EveryBufferIsQueuedAgainAfterAStop) {
  const Stream stream = openStream(0, 3);
  start();
  take(stream);
  EXPECT_TRUE(script().deliver(0, {}));
  EXPECT_EQ(script().queued(0), 1U);
  EXPECT_EQ(oviStopAcquisition(device()), OVI_SUCCESS);
  EXPECT_EQ(script().queued(0), 3U);
  void* data = nullptr;
  EXPECT_EQ(oviWaitForEvent(stream.event, 0, &data), OVI_ERR_TIMEOUT);
}

}  // namespace
}  // namespace manual
