// What all exported functions have in common, and what the header promises about records.
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "gtest/gtest.h"
#include "ovi/ovi.h"

extern "C" std::size_t sizeOfDiscoveryInC(void);
std::size_t sizeOfDiscoveryInCpp();

namespace {

// Nothing of what they are given may be touched: these pointers lead nowhere.
template<class T>
T* nowhere() {
  return reinterpret_cast<T*>(std::uintptr_t{16});  // NOLINT(performance-no-int-to-ptr)
}

/** Calls a function with arguments that it would crash on if it looked at them. */
template<class Result, class... Parameters>
Result callBlindly(Result(OVI_CALL* function)(Parameters...)) {
  const auto argument = []<class T>(std::type_identity<T>) -> T {
    if constexpr (std::is_function_v<std::remove_pointer_t<T>>)
      return nullptr;
    else if constexpr (std::is_pointer_v<T>)
      return nowhere<std::remove_pointer_t<T>>();
    else
      return T{1};
  };
  return function(argument(std::type_identity<Parameters>{})...);
}

void expectRefusal(std::size_t position, std::int32_t result) {
  EXPECT_EQ(result, OVI_ERR_NOT_INITIALIZED) << "function " << position << " of the list";
}

template<class... Functions>
void expectNotInitialized(Functions... functions) {
  std::size_t position = 0;
  (expectRefusal(position++, callBlindly(functions)), ...);
}

TEST(Frame, NothingWorksBeforeInitialisationButWhatSaysSo) {
  expectNotInitialized(oviGetNumberOfTLProducers, oviGetTLProducerPathByIndex, oviGetTLProducerInfobyFilePath,
                       oviDiscoverDevices, oviGetDeviceInfo, oviOpenDevice, oviCloseDevice, oviIsUsingS2iTL,
                       oviIsUsingKitharaTL, oviIsUsingNimboTL, oviSetRemoteDeviceXMLFile);
  expectNotInitialized(oviGetFeatureInt, oviGetFeatureFloat, oviGetFeatureBool, oviGetFeatureString, oviSetFeatureInt,
                       oviSetFeatureFloat, oviSetFeatureBool, oviSetFeatureString, oviSetFeatureEnum, oviGetFeatureEnum,
                       oviExecuteCommand, oviIsCommandActive, oviGetFeatureReg, oviSetFeatureReg,
                       oviGetFeatureParameter, oviGetFeatureAccessMode, oviGetFeatureEnumEntryCount,
                       oviGetFeatureEnumEntryByIndex, oviGetFeatureEnumEntryByName, oviGetFeatureAllEnums,
                       oviIterateFeatureTree, oviGetFeatureList, oviGetFeature, oviSetFeature, oviGetFeatureOnModule,
                       oviSetFeatureOnModule, oviReadMemory, oviWriteMemory, oviGetRegisterValue, oviSetRegisterValue,
                       oviIsModuleLittleEndian, oviRegisterInvalidateCB, oviUnRegisterInvalidateCB);
  expectNotInitialized(oviCreateDataStream, oviCloseDataStream, oviGetNumberOfDataStreams, oviGetDataStreamInfo,
                       oviCheckAndReallocBuffers, oviStartAcquisition, oviStopAcquisition, oviAbortAcquisition,
                       oviRegisterEvent, oviWaitForEvent, oviGetNextImage, oviReleaseImage, oviEventKill,
                       oviUnregisterEvent, oviGetImageSize, oviGetAcquisitionStatistics, oviSetImageParameter,
                       oviSetDeviceMaxPacketSize, oviGetMaintenanceMode, oviSetMaintenanceMode, oviScanImg,
                       oviScanImgStop, oviScanImage, oviScanImageCont, oviScanStreamImage, oviGetLastImageInfo);
  expectNotInitialized(oviFileDownloadToDevice, oviFileUploadFromDevice, oviGetUpdateFileType, oviNimboStartRecording,
                       oviNimboStopRecording, oviNimboOpenRecordings, oviNimboCloseRecordings,
                       oviNimboClearAllRecordings, oviNimboGetRecordingData, oviNimboSelectRecording,
                       oviNimboFreeRecordImage, oviNimboGetRecordsInfo, oviNimboSetFrameRate,
                       oviNimboSetRGBConversionEnabled);
  EXPECT_EQ(oviClose(), OVI_ERR_NOT_INITIALIZED);
  EXPECT_EQ(callBlindly(oviNimboReadRecording), 0U);
  EXPECT_FALSE(callBlindly(oviNimboIsRecordingAvailable));

  std::uint32_t minor = 0;
  EXPECT_EQ(oviGetLibraryVersion(nullptr, &minor, nullptr, nullptr), OVI_SUCCESS);
  EXPECT_EQ(minor, 15U);
  std::uint8_t disabled = 9;
  EXPECT_EQ(oviSetFeatureCachingDisabled(1), OVI_SUCCESS);
  EXPECT_EQ(oviIsFeatureCachingDisabled(&disabled), OVI_SUCCESS);
  EXPECT_EQ(disabled, 1);
  EXPECT_EQ(oviSetFeatureCachingDisabled(0), OVI_SUCCESS);
  EXPECT_EQ(oviSetIgnoreSubnetEnabled(0), OVI_SUCCESS);
  char text[300];
  EXPECT_EQ(oviGetErrorDescription(OVI_ERR_TIMEOUT, text, sizeof text), OVI_SUCCESS);
  EXPECT_STREQ(text, "Timeout");
  EXPECT_EQ(get_error_string(OVI_ERR_TIMEOUT, text), 0);
  EXPECT_STREQ(text, "NOK: Timeout");
  EXPECT_EQ(oviGetKitharaErrDescription(OVI_ERR_NO_KITHARA_PROCESSORS, text, sizeof text), OVI_SUCCESS);
  EXPECT_STREQ(text, "No Kithara CPUs");
  EXPECT_EQ(oviGetEuresysErrDescription(1, nullptr, 5), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(oviBitsPerPixelFromFormat(0x010C0047), 12U);
}

TEST(Frame, InitialisationCountsOnceAndHandlesAreUnknownAfterwards) {
  ASSERT_EQ(oviInit(OVI_LOG_LEVEL_NONE, nullptr, nullptr), OVI_SUCCESS);
  EXPECT_EQ(oviInit(OVI_LOG_LEVEL_NONE, nullptr, nullptr), OVI_SUCCESS);
  std::int64_t value = 5;
  EXPECT_EQ(oviGetFeatureInt(77, "Width", &value, OVI_MODULE_REMOTE_DEVICE), OVI_ERR_NOT_FOUND);
  EXPECT_EQ(value, 5);
  EXPECT_EQ(oviNimboStartRecording(77), OVI_ERR_SYSTEM_NOT_AVAILABLE);
  EXPECT_EQ(oviNimboReadRecording(77, nullptr), 0U);
  EXPECT_FALSE(oviNimboIsRecordingAvailable(77));
  EXPECT_EQ(oviClose(), OVI_SUCCESS);
  EXPECT_EQ(oviClose(), OVI_ERR_NOT_INITIALIZED);
  EXPECT_EQ(oviGetFeatureInt(77, "Width", &value, OVI_MODULE_REMOTE_DEVICE), OVI_ERR_NOT_INITIALIZED);
}

TEST(Header, RecordsAreOfOneSizeInEveryLanguage) {
  EXPECT_EQ(get_struct_size("oviDiscoveryInfo"), 115224);
  EXPECT_EQ(sizeOfDiscoveryInC(), 115224U);
  EXPECT_EQ(sizeOfDiscoveryInCpp(), 115224U);
  EXPECT_EQ(get_struct_size("oviAcquisitionStatistics"), -1);
  EXPECT_EQ(get_struct_size("oviAcquistionStatistics"), static_cast<std::int32_t>(sizeof(oviAcquistionStatistics)));
}

}  // namespace
