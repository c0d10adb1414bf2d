// The recording functions over a producer that has some of them.
#include "gentl/recording.h"

#include <functional>
#include <vector>

#include "binding_fixture.h"
#include "core/global_state.h"
#include "core/handle_registry.h"
#include "gentl/producer_family.h"

namespace binding {
namespace {

class RecordingTest : public BindingTest {
 protected:
  void SetUp() override {
    BindingTest::SetUp();
    openDevice();
    ASSERT_EQ(OVI::HandleRegistry::instance().registerOpenedDevice(transportLayer_, tlInterface_, device_, handle_),
              OVI_SUCCESS);
    OVI::setInitialized(true);
  }
  void TearDown() override {
    OVI::setInitialized(false);
    OVI::HandleRegistry::instance().clear();
    BindingTest::TearDown();
  }

  OVI::HandleRegistry::Handle handle_ = 0;
};

TEST_F(RecordingTest, StatusesAreCountedDownFromTheFirstCustomCode) {
  EXPECT_EQ(OVI::oviNimboStartRecording(handle_), 0);
  EXPECT_EQ(OVI::oviNimboSelectRecording(handle_, 0), 0);
  EXPECT_EQ(OVI::oviNimboSelectRecording(handle_, 1), -251658241);
  EXPECT_EQ(OVI::oviNimboSelectRecording(handle_, 2), -251658242);
  EXPECT_EQ(OVI::oviNimboCloseRecordings(handle_), static_cast<std::int32_t>(0xF10003E9));
  EXPECT_EQ(OVI::oviNimboReadRecording(handle_, this), 0xFEDCBA9876543210U);
}

TEST_F(RecordingTest, MissingFunctionsThrowButTheQuestionAnswersNo) {
  const std::vector<std::function<void()>> missing = {
      [&] { OVI::oviNimboStopRecording(handle_); },
      [&] { OVI::oviNimboGetRecordsInfo(handle_, this); },
      [&] { OVI::oviNimboSetFrameRate(handle_, 30); },
      [&] { OVI::oviNimboSetRGBConversionEnabled(handle_, true); },
  };
  for (const auto& call : missing) {
    EXPECT_EQ(thrownBy<std::runtime_error>(call), "Function not available in TL!");
  }
  EXPECT_FALSE(OVI::oviNimboIsRecordingAvailable(handle_));
}

TEST_F(RecordingTest, WithoutADeviceOrTheLibraryThereIsNoExtension) {
  EXPECT_EQ(OVI::oviNimboStartRecording(handle_ + 1000), -106);
  EXPECT_EQ(OVI::oviNimboReadRecording(handle_ + 1000, this), 0U);
  EXPECT_FALSE(OVI::oviNimboIsRecordingAvailable(handle_ + 1000));
  bool answer = true;
  EXPECT_EQ(OVI::oviIsUsingNimboTL(handle_ + 1000, &answer), OVI_ERR_NOT_FOUND);
  EXPECT_FALSE(answer);
  EXPECT_EQ(OVI::oviIsUsingS2iTL(handle_, nullptr), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(OVI::oviIsUsingS2iTL(handle_, &answer), OVI_SUCCESS);
  script_->answers["GCGetInfo"] = GC_ERR_IO;
  answer = true;
  EXPECT_EQ(OVI::oviIsUsingKitharaTL(handle_, &answer), OVI_ERR_IO);
  EXPECT_FALSE(answer);
  script_->answers.clear();

  OVI::setInitialized(false);
  EXPECT_EQ(OVI::oviNimboStartRecording(handle_), -100);
  EXPECT_EQ(OVI::oviNimboReadRecording(handle_, this), 0U);
  EXPECT_FALSE(OVI::oviNimboIsRecordingAvailable(handle_));
  EXPECT_EQ(OVI::oviIsUsingS2iTL(handle_, &answer), OVI_ERR_NOT_INITIALIZED);
}

}  // namespace
}  // namespace binding
