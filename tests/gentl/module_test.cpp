// The chain of modules: opening, closing, what outlives what, and the operations of a stream.
#include <array>
#include <functional>
#include <limits>
#include <map>

#include "binding_fixture.h"

namespace binding {
namespace {

using namespace GenTLCpp;

class ModuleTest : public BindingTest {
 protected:
  void TearDown() override {
    script_->answers.clear();
    script_->withoutHandle.clear();
    script_->counter = 0;
    script_->bufferBase = nullptr;
    BindingTest::TearDown();
  }
};

TEST_F(ModuleTest, AnOpenCallThatGivesNoHandleHasFailed) {
  openStream();
  const std::map<std::string, std::function<void()>> opens = {
      {"TLOpen", [&] { producer_->openTransportLayer(); }},
      {"TLOpenInterface", [&] { transportLayer_->openInterfaceHandle("If0"); }},
      {"IFOpenDevice", [&] { tlInterface_->openDeviceHandle("Dev", DEVICE_ACCESS_CONTROL); }},
      {"DevOpenDataStream", [&] { device_->openDataStream("Stream"); }},
      {"DevGetPort", [&] { device_->getRemotePort(true); }},
  };
  for (const auto& [name, open] : opens) {
    script_->withoutHandle = {name};
    for (const GC_ERROR status : {0, 1, -1023, -10000}) {
      script_->answers[name] = status;
      EXPECT_NE(thrownBy<ErrorException>(open).find("Unspecified runtime exception. (Message from the source: "),
                std::string::npos)
          << name << status;
    }
    script_->answers[name] = GC_ERR_IO;
    EXPECT_THROW(open(), IoException) << name;
    script_->withoutHandle.clear();
    script_->answers[name] = GC_ERR_AMBIGUOUS;
    EXPECT_NO_THROW(open()) << name << ": a handle is a handle";
    script_->answers.clear();
  }
}

TEST_F(ModuleTest, NoEventAndNoBufferIsNoFailure) {
  openStream();
  script_->withoutHandle = {"GCRegisterEvent", "DSAllocAndAnnounceBuffer"};
  EXPECT_EQ(stream_->registerEvent(EVENT_ERROR), nullptr);
  EXPECT_EQ(stream_->registerNewBufferEvent(), nullptr);
  EXPECT_EQ(stream_->allocAndAnnounceBuffer(100, nullptr), nullptr);
  EXPECT_THROW(device_->openDataStream(1), InvalidIndexException);
}

TEST_F(ModuleTest, ListsAndInfosOfTheModules) {
  transportLayer_ = producer_->openTransportLayer();
  EXPECT_TRUE(transportLayer_->getInterfaceInfos().empty());
  EXPECT_EQ(callsOf("TLGetInterfaceID"), 0);
  script_->counter = 2;
  const auto info = transportLayer_->findInterfaceInfo("If1");
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->getDisplayName(), "Name of If1");
  for (const char* id : {"if1", "If1 ", "If", ""}) {
    EXPECT_EQ(transportLayer_->findInterfaceInfo(id), nullptr) << id;
  }
  tlInterface_ = info->open();
  const auto device = tlInterface_->findDeviceInfo("Dev");
  ASSERT_NE(device, nullptr);
  EXPECT_EQ(tlInterface_->findDeviceInfo("dev"), nullptr);
  EXPECT_EQ(device->getInfoString(DEVICE_INFO_VENDOR), "Vendor");
  EXPECT_EQ(device->getAccessStatus(), 4);
  EXPECT_FALSE(tlInterface_->updateDeviceList(1));
}

TEST_F(ModuleTest, ClosingAModuleShutsThoseBelowIt) {
  openStream();
  const auto event = stream_->registerEvent(EVENT_ERROR);
  const auto buffer = stream_->allocAndAnnounceBuffer(100, nullptr);
  std::array<char, 16> data{};

  stream_->close();
  EXPECT_EQ(thrownBy<ClosedException>([&] { static_cast<void>(buffer->getHandle()); }),
            "Data stream is closed, cannot return handle (ID: -10002)");
  EXPECT_EQ(thrownBy<ClosedException>([&] { event->getData(data.data(), data.size(), 0); }),
            "Module is closed, cannot get data (ID: -10002)");
  device_->close();
  EXPECT_EQ(thrownBy<ClosedException>([&] { stream_->getNumUnderrun(); }),
            "Device is closed, cannot access DataStream (ID: -10002)");
  EXPECT_EQ(thrownBy<ClosedException>([&] { device_->getDataStreamIDs(); }),
            "Device is closed, cannot return handle (ID: -10002)");
  tlInterface_->close();
  EXPECT_EQ(thrownBy<ClosedException>([&] { device_->getDataStreamIDs(); }),
            "Interface is closed, cannot access device (ID: -10002)");
  EXPECT_EQ(thrownBy<ClosedException>([&] { tlInterface_->getDeviceIDs(); }),
            "Interface is closed, cannot return handle (ID: -10002)");
  transportLayer_->close();
  EXPECT_EQ(thrownBy<ClosedException>([&] { tlInterface_->getDeviceIDs(); }),
            "TransportLayer is closed, cannot access TLInterface (ID: -10002)");
  EXPECT_EQ(thrownBy<ClosedException>([&] { transportLayer_->getInterfaceIDs(); }),
            "TransportLayer is closed, cannot return handle (ID: -10002)");
  EXPECT_EQ(callsOf("EventGetData"), 0);
}

TEST_F(ModuleTest, EveryModuleIsClosedOnceAndNotAfterItsParent) {
  openStream();
  tlInterface_->close();
  tlInterface_->close();
  EXPECT_EQ(callsOf("IFClose"), 1);
  EXPECT_TRUE(device_->isClosed());
  stream_.reset();
  device_.reset();
  EXPECT_EQ(callsOf("DSClose") + callsOf("DevClose"), 0);

  forgetCalls();
  openStream();
  std::weak_ptr<TransportLayer> watched = transportLayer_;
  transportLayer_.reset();
  tlInterface_.reset();
  device_.reset();
  EXPECT_FALSE(watched.expired()) << "the stream holds the chain above it";
  stream_.reset();
  EXPECT_TRUE(watched.expired());
  const std::vector<std::string> expected = {"DSClose", "DevClose", "IFClose", "TLClose"};
  const std::vector<std::string> last(script_->calls.end() - 4, script_->calls.end());
  EXPECT_EQ(last, expected);
}

TEST_F(ModuleTest, StreamOperationsReturnOrThrow) {
  openStream();
  std::string memory(100, 'x');
  script_->bufferBase = memory.data();
  script_->bufferSize = 60;
  const auto buffer = stream_->allocAndAnnounceBuffer(100, this);
  EXPECT_EQ(buffer->getUserData(), this);
  EXPECT_EQ(buffer->getSizeFilled(), 60U);

  for (const char* name : {"DSQueueBuffer", "DSFlushQueue", "DSStartAcquisition", "DSStopAcquisition"}) {
    script_->answers[name] = GC_ERR_RESOURCE_EXHAUSTED;
  }
  EXPECT_EQ(stream_->queueBuffer(*buffer, true), GC_ERR_RESOURCE_EXHAUSTED);
  EXPECT_EQ(memory, std::string(60, '\0') + std::string(40, 'x'));
  EXPECT_EQ(stream_->flushQueue(ACQ_QUEUE_ALL_DISCARD), GC_ERR_RESOURCE_EXHAUSTED);
  EXPECT_EQ(stream_->startAcquisition(ACQ_START_FLAGS_DEFAULT, 1), GC_ERR_RESOURCE_EXHAUSTED);
  EXPECT_EQ(stream_->stopAcquisition(ACQ_STOP_FLAGS_DEFAULT), GC_ERR_RESOURCE_EXHAUSTED);
  script_->bufferBase = nullptr;
  EXPECT_EQ(stream_->queueBuffer(*buffer, true), GC_ERR_RESOURCE_EXHAUSTED);
  script_->answers["DSGetBufferInfo"] = GC_ERR_NOT_IMPLEMENTED;
  EXPECT_THROW(buffer->getSizeFilled(), NotImplementedException);

  script_->counter = std::numeric_limits<std::int64_t>::max();
  EXPECT_EQ(stream_->getNumDelivered(), std::numeric_limits<std::int64_t>::max());
  ++script_->counter;
  EXPECT_EQ(thrownBy<std::runtime_error>([&] { stream_->getNumDelivered(); }),
            "Value 9223372036854775808 exceeds max (9223372036854775807)");
  EXPECT_TRUE(stream_->definesPayloadSize());
  EXPECT_NE(stream_->revokeBuffer(*buffer), nullptr);
  script_->answers["DSRevokeBuffer"] = GC_ERR_INVALID_HANDLE;
  EXPECT_THROW(stream_->revokeBuffer(*buffer), InvalidHandleException);
}

}  // namespace
}  // namespace binding
