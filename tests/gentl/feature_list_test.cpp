// Feature lists: what is in them, whom they call, and how they end.
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <thread>

#include "binding_fixture.h"

namespace binding {
namespace {

using namespace GenTLCpp;

const char* const kNodes =
    "<Category Name=\"Inner\"><pFeature>Gain</pFeature><pFeature>Root</pFeature></Category>"
    "<Integer Name=\"Gain\"><pValue>GainReg</pValue><Unit>dB</Unit></Integer>"
    "<IntReg Name=\"GainReg\"><Address>0x10</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
    "<PollingTime>50</PollingTime><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>"
    "<Enumeration Name=\"Selector\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry><Value>0</Value>"
    "<pSelected>Selected</pSelected></Enumeration>"
    "<Integer Name=\"Selected\"><Value>1</Value></Integer>"
    "<Integer Name=\"Aside\"><Value>1</Value></Integer>"
    "<Integer Name=\"TLParamsLocked\"><Value>0</Value></Integer>";

class FeatureListTest : public BindingTest {
 protected:
  void SetUp() override {
    BindingTest::SetUp();
    openDevice();
    describeModules(describe("<pFeature>Inner</pFeature><pFeature>Selector</pFeature>", kNodes));
    list_ = device_->getRemoteFeatureList();
    ASSERT_NE(list_, nullptr);
  }
  void TearDown() override {
    list_.reset();
    script_->answers.clear();
    BindingTest::TearDown();
  }

  void setGain(std::int64_t value) { dynamic_cast<GenApi::IInteger*>(list_->getNode("Gain"))->SetValue(value); }

  std::shared_ptr<FeatureList> list_;
};

void call(const char* /*name*/, void* context) {
  (*static_cast<std::function<void()>*>(context))();
}

TEST_F(FeatureListTest, HoldsWhatCategoriesAndSelectorsReach) {
  for (const char* name : {"Root", "Inner", "Gain", "Selector", "Selected", "TLParamsLocked", "Device"}) {
    EXPECT_NE(list_->getFeature(name), nullptr) << name;
  }
  for (const char* name : {"Aside", "GainReg", "gain", ""}) {
    EXPECT_EQ(list_->getFeature(name), nullptr) << name;
  }
  EXPECT_NE(list_->getNode("Aside"), nullptr);
  EXPECT_EQ(list_->getFeature("Gain")->getTexts().unit, "dB");
  EXPECT_EQ(list_->getFeature("Gain")->getTexts().displayNotation, "");
}

TEST_F(FeatureListTest, PolledNodesCallFromTheirOwnThread) {
  std::promise<std::thread::id> polled;
  std::atomic<bool> done = false;
  std::function<void()> report = [&] {
    if (!done.exchange(true)) {
      polled.set_value(std::this_thread::get_id());
    }
  };
  list_->registerCallback("Gain", &report, &call);
  auto thread = polled.get_future();
  ASSERT_EQ(thread.wait_for(std::chrono::seconds(20)), std::future_status::ready);
  EXPECT_NE(thread.get(), std::this_thread::get_id());
  list_->unregisterCallback("Gain");
}

TEST_F(FeatureListTest, ADeviceClosesWhenItsLastUserLetsGo) {
  std::weak_ptr<Device> watched = device_;
  static_cast<void>(device_->getPort(false));
  list_.reset();
  device_.reset();
  EXPECT_TRUE(watched.expired()) << "its own feature list and ports do not keep it";
  EXPECT_EQ(callsOf("DevClose"), 1);
}

TEST_F(FeatureListTest, AListThatOutlivesItsDeviceFailsWithoutReachingTheProducer) {
  device_->close();
  forgetCalls();
  EXPECT_THROW(setGain(1), ClosedException);
  device_.reset();
  EXPECT_THROW(setGain(1), ClosedException);
  EXPECT_EQ(callsOf("GCWritePort") + callsOf("GCReadPort"), 0);
}

TEST_F(FeatureListTest, ACallbackMayCloseTheDeviceOnWhateverThreadItRuns) {
  // On the thread that writes.
  std::function<void()> close = [&] { device_->close(); };
  list_->registerCallback("Gain", &close, &call);
  setGain(1);
  EXPECT_TRUE(device_->isClosed());

  // On the polling thread, which drops the last reference as well.
  openDevice();
  list_ = device_->getRemoteFeatureList();
  std::promise<void> closed;
  std::atomic<bool> done = false;
  std::function<void()> drop = [&] {
    if (!done.exchange(true)) {
      device_->close();
      device_.reset();
      list_.reset();
      closed.set_value();
    }
  };
  const auto list = list_.get();
  list->registerCallback("Gain", &drop, &call);
  ASSERT_EQ(closed.get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
  EXPECT_EQ(callsOf("DevClose"), 2);
}

TEST_F(FeatureListTest, ClosingWaitsForACallbackButNotForEver) {
  std::promise<void> entered;
  std::promise<void> leave;
  std::shared_future<void> left = leave.get_future().share();
  std::atomic<bool> done = false;
  std::function<void()> hang = [&] {
    if (!done.exchange(true)) {
      entered.set_value();
      left.wait();
    }
  };
  list_->registerCallback("Gain", &hang, &call);
  ASSERT_EQ(entered.get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
  std::weak_ptr<GenApi::INodeMap> nodeMap = list_->getNodeMap();
  list_.reset();
  device_->close();
  device_.reset();
  EXPECT_FALSE(nodeMap.expired()) << "the thread that is still in it keeps it";
  leave.set_value();
  for (int i = 0; i < 2000 && !nodeMap.expired(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_TRUE(nodeMap.expired());
}

}  // namespace
}  // namespace binding
