// What certain producers need around the opening of a device.
#include "device_adjustments.h"

#include <string>

#include "Base/GCException.h"
#include "GenApi/GenApi.h"
#include "core/log.h"
#include "features/typed_access.h"
#include "gentl/feature_list.h"
#include "gentl/guard.h"
#include "gentl/producer_family.h"
#include "gentl/recording.h"
#include "platform/ascii.h"

namespace OVI {

namespace {

bool isServed(std::uint64_t deviceHandle, oviErr (*test)(std::uint64_t, bool*)) {
  bool served = false;
  return test(deviceHandle, &served) == OVI_SUCCESS && served;
}

}  // namespace

void beforeDeviceOpen(const oviDeviceInfo& record, GenTLCpp::TransportLayer& transportLayer) {
  if (platform::upperCase(std::string_view(record.vendor)).find("MIK") == std::string::npos)
    return;
  guarded("OVI::beforeDeviceOpen", Severity::Error,
          "Failed to adjust the producer before the device is opened. Error: ", [&] {
            const std::shared_ptr<GenTLCpp::FeatureList> features = transportLayer.getFeatureList();
            GenApi::INode* node =
                features == nullptr ? nullptr : features->getNode("EnableKitharaIncreasedInterruptInterval");
            auto* feature = dynamic_cast<GenApi::IBoolean*>(node);
            if (feature != nullptr && (node->GetAccessMode() == GenApi::WO || node->GetAccessMode() == GenApi::RW))
              feature->SetValue(false, true);
            return OVI_SUCCESS;
          });
}

void afterDeviceOpen(std::uint64_t deviceHandle) {
  constexpr std::int64_t kAckTimeout = 2000;         // milliseconds
  constexpr std::uint32_t kRecordingFrameRate = 30;  // frames a second
  guarded("OVI::oviOpenDevice", Severity::Debug, "The adjustment after the opening failed: ", [&] {
    if (isServed(deviceHandle, oviIsUsingS2iTL))
      OVI::oviSetFeatureInt(deviceHandle, "GVCPAckTimeout", kAckTimeout, OVI_MODULE_LOCAL_DEVICE);
    if (isServed(deviceHandle, oviIsUsingNimboTL))
      oviNimboSetFrameRate(deviceHandle, kRecordingFrameRate);
    return OVI_SUCCESS;
  });
}

}  // namespace OVI
