// Waiting for events, and ending waits without hurting the next one.
#include <array>
#include <functional>
#include <thread>
#include <vector>

#include "binding_fixture.h"
#include "core/handle_registry.h"
#include "gentl/module_lookup.h"

namespace binding {
namespace {

using namespace GenTLCpp;

class EventTest : public BindingTest {
 protected:
  void SetUp() override {
    BindingTest::SetUp();
    openStream();
    event_ = stream_->registerNewBufferEvent();
    const std::lock_guard lock(script_->mutex);
    script_->filledBuffers = 0;
    script_->pendingKills = 0;
    script_->remembersOneKill = false;
  }
  void TearDown() override {
    event_.reset();
    OVI::HandleRegistry::instance().clear();
    BindingTest::TearDown();
  }

  static constexpr int kWaiters = 4;

  /** Waits on the event in a thread of its own and adds the status to `results`. */
  std::thread waiter(std::vector<GC_ERROR>& results, std::uint64_t timeout = GENTL_INFINITE) {
    return std::thread([this, &results, timeout] {
      GC_ERROR status = GC_ERR_SUCCESS;
      try {
        event_->waitForBuffer(timeout);
      } catch (const GenTLException& error) {
        status = error.code();
      }
      const std::lock_guard lock(script_->mutex);
      results.push_back(status);
    });
  }
  void untilWaiting(int threads) {
    std::unique_lock lock(script_->mutex);
    script_->changed.wait(lock, [&] { return script_->waiting == threads; });
  }
  void fillBuffer() {
    const std::lock_guard lock(script_->mutex);
    ++script_->filledBuffers;
    script_->changed.notify_all();
  }

  std::shared_ptr<NewBufferEvent> event_;
};

TEST_F(EventTest, DataTimeoutAndKill) {
  fillBuffer();
  EXPECT_NE(event_->waitForBuffer(0).BufferHandle, nullptr);
  EXPECT_THROW(event_->waitForBuffer(0), TimeoutException);
  event_->kill();
  EXPECT_THROW(event_->waitForBuffer(GENTL_INFINITE), AbortException);
  std::array<char, 8> small{};
  fillBuffer();
  EXPECT_EQ(event_->getData(small.data(), small.size(), 0), 8U);
  EXPECT_EQ(event_->getMaxDataSize(), 16U);
  EXPECT_EQ(event_->getDataNumericId(small.data(), small.size()), 77U);
  script_->answers["EventGetInfo"] = GC_ERR_NOT_IMPLEMENTED;
  EXPECT_THROW(event_->getMaxDataSize(), NotImplementedException);
  script_->answers.clear();
}

TEST_F(EventTest, EndsEveryWaitThatIsUnderWayAndNoOther) {
  event_->endWaits();
  EXPECT_EQ(callsOf("EventKill"), 0) << "nobody waits";

  std::vector<GC_ERROR> results;
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i) {
    threads.push_back(waiter(results));
  }
  untilWaiting(3);
  event_->endWaits();
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(results, (std::vector<GC_ERROR>(3, GC_ERR_ABORT)));
  EXPECT_GE(callsOf("EventKill"), 3);
  EXPECT_THROW(event_->waitForBuffer(0), TimeoutException);
}

TEST_F(EventTest, AKillThatCameTooLateDoesNotAbortTheNextWait) {
  // A waiter that has its buffer, but has not returned when the waits are ended, leaves its kill behind.
  std::vector<GC_ERROR> results;
  std::thread thread = waiter(results);
  untilWaiting(1);
  {
    std::unique_lock lock(script_->mutex);
    ++script_->filledBuffers;
    script_->changed.notify_all();
    script_->changed.wait(lock, [&] { return script_->waiting == 0; });
  }
  event_->endWaits();
  thread.join();
  fillBuffer();
  EXPECT_NO_THROW(event_->waitForBuffer(GENTL_INFINITE));

  // A kill that somebody means still counts.
  event_->kill();
  EXPECT_THROW(event_->waitForBuffer(GENTL_INFINITE), AbortException);
}

TEST_F(EventTest, AKillAndAnEndingAtTheSameMomentEndOneWait) {
  script_->holdsAborts = true;
  std::vector<GC_ERROR> results;
  std::thread thread = waiter(results);
  untilWaiting(1);
  EXPECT_TRUE(event_->killWaits());
  const auto hold = [&](bool (*isSo)(const Script&), bool holds) {
    std::unique_lock lock(script_->mutex);
    script_->changed.wait(lock, [&] { return isSo(*script_); });
    script_->holdsAborts = holds;
    script_->changed.notify_all();
  };
  hold([](const Script& script) { return script.held == 1; }, true);
  std::thread ending([&] { event_->endWaits(); });
  hold([](const Script& script) { return script.pendingKills != 0; }, false);
  ending.join();
  thread.join();
  EXPECT_EQ(results, std::vector<GC_ERROR>{GC_ERR_ABORT});
  fillBuffer();
  EXPECT_NO_THROW(event_->waitForBuffer(GENTL_INFINITE)) << "the first wait of the next acquisition";
}

TEST_F(EventTest, AProducerThatRemembersOneKillLeavesNobodyWaiting) {
  script_->remembersOneKill = true;
  const auto endWhileAllWait = [&](const std::function<void()>& end) {
    std::vector<GC_ERROR> results;
    std::vector<std::thread> threads;
    for (int i = 0; i < kWaiters; ++i) {
      threads.push_back(waiter(results));
    }
    untilWaiting(kWaiters);
    end();
    for (std::thread& thread : threads) {
      thread.join();
    }
    return results;
  };
  const std::vector<GC_ERROR> allAborted(kWaiters, GC_ERR_ABORT);
  EXPECT_EQ(endWhileAllWait([&] { EXPECT_TRUE(event_->endWaits()); }), allAborted);
  // The kills that the producer has forgotten are taken for nobody else's.
  event_->killWaits();
  EXPECT_THROW(event_->waitForBuffer(GENTL_INFINITE), AbortException);
  EXPECT_EQ(endWhileAllWait([&] { event_->killWaits(); }), allAborted);
  EXPECT_EQ(endWhileAllWait([&] { EXPECT_TRUE(event_->shutWaits()); }), allAborted);
  EXPECT_FALSE(event_->killWaits());
}

TEST_F(EventTest, WaitsAreEndedByStreamByDeviceAndAltogether) {
  OVI::HandleRegistry& registry = OVI::HandleRegistry::instance();
  OVI::HandleRegistry::Handle device = 0;
  OVI::HandleRegistry::Handle stream = 0;
  OVI::HandleRegistry::Handle handle = 0;
  ASSERT_EQ(registry.registerOpenedDevice(transportLayer_, tlInterface_, device_, device), OVI_SUCCESS);
  ASSERT_EQ(registry.registerOwned(device, stream_, OVI::ModuleKind::DataStream, stream), OVI_SUCCESS);
  ASSERT_EQ(registry.registerOwned(stream, event_, OVI::ModuleKind::Event, handle), OVI_SUCCESS);

  std::shared_ptr<Device> noDevice;
  std::shared_ptr<NewBufferEvent> found;
  EXPECT_EQ(OVI::lookupModule(stream, noDevice), OVI_ERR_NOT_FOUND);
  EXPECT_EQ(OVI::lookupModule(handle, found), OVI_SUCCESS);

  const auto endWhileWaiting = [&](const std::function<void()>& end) {
    std::vector<GC_ERROR> results;
    std::thread thread = waiter(results);
    untilWaiting(1);
    end();
    thread.join();
    return results;
  };
  const std::vector<GC_ERROR> aborted = {GC_ERR_ABORT};
  EXPECT_EQ(endWhileWaiting([&] { const OVI::StreamPause pause(stream); }), aborted);
  EXPECT_EQ(endWhileWaiting([&] { OVI::endDeviceWaits(device); }), aborted);
  forgetCalls();
  EXPECT_THROW(event_->waitForBuffer(GENTL_INFINITE), AbortException) << "the device is about to close";
  EXPECT_EQ(callsOf("EventGetData"), 0);

  event_ = stream_->registerNewBufferEvent();
  ASSERT_EQ(registry.registerOwned(stream, event_, OVI::ModuleKind::Event, handle), OVI_SUCCESS);
  EXPECT_EQ(endWhileWaiting([] { OVI::endAllWaits(); }), aborted);
}

TEST_F(EventTest, UnregistersOnceAndNotAfterItsModule) {
  event_->unregister();
  event_->unregister();
  event_.reset();
  EXPECT_EQ(callsOf("GCUnregisterEvent"), 1);
  auto second = stream_->registerEvent(EVENT_ERROR);
  stream_->close();
  second->unregister();
  EXPECT_FALSE(second->isUnregistered());
  second.reset();
  EXPECT_EQ(callsOf("GCUnregisterEvent"), 1);
}

}  // namespace
}  // namespace binding
