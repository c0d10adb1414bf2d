// Every function with the roles of its arguments, a letter each.
#include "abuse_table.h"

#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace proof {

namespace {

/** The arguments of a call, made from left to right: a size follows the memory that it is of. */
template<class... Parameters, std::size_t... Positions>
std::tuple<Parameters...> makeAll(Arguments& arguments, const char* roles, std::index_sequence<Positions...>) {
  return std::tuple<Parameters...>{arguments.make<Parameters>(roles[Positions])...};
}

template<class Result, class... Parameters>
Function entry(const char* name, Result(OVI_CALL* function)(Parameters...), const char* roles, Kind kind) {
  if (std::strlen(roles) != sizeof...(Parameters))
    throw std::logic_error(std::string(name) + " has another number of parameters");
  const auto call = [=](Arguments& arguments) {
    arguments.begin();
    const auto made = makeAll<Parameters...>(arguments, roles, std::index_sequence_for<Parameters...>());
    ++calls;
    try {
      const Result result = std::apply(function, made);
      if constexpr (std::is_same_v<Result, std::int32_t>) {
        if (result == OVI_SUCCESS && arguments.hasUnknownHandle() && kind != Kind::Tolerant)
          report(std::string(name) + " succeeds with an unknown handle");
        if (result == OVI_SUCCESS)
          arguments.harvest();
      }
    } catch (const std::runtime_error& error) {  // Only recording functions that the producer lacks may throw.
      if (std::string(name).rfind("oviNimbo", 0) != 0)
        report(std::string(name) + " throws: " + error.what());
    }
  };
  return {name, kind, call};
}

#define FUNCTION(name, roles, ...) entry(#name, &(name), roles, Kind::__VA_ARGS__)

/** The functions that the public header declares. */
std::set<std::string> declaredFunctions() {
  std::ifstream file(HEADER);
  const std::string header{std::istreambuf_iterator<char>(file), {}};
  const std::string mark = "OVI_CALL ";
  std::set<std::string> names;
  for (std::size_t at = header.find(mark); at != std::string::npos; at = header.find(mark, at)) {
    at += mark.size();
    const std::size_t end =
        header.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_", at);
    if (end != std::string::npos && header[end] == '(' && end > at)
      names.insert(header.substr(at, end - at));
  }
  return names;
}

}  // namespace

std::vector<Function> allFunctions() {
  return {
      FUNCTION(oviInit, "i00", Ours),
      FUNCTION(oviClose, "", Ours),
      FUNCTION(oviGetLibraryVersion, "eeee", Quick),
      FUNCTION(oviSetIgnoreSubnetEnabled, "i", Quick),
      FUNCTION(oviSetFeatureCachingDisabled, "i", Quick),
      FUNCTION(oviIsFeatureCachingDisabled, "O", Quick),
      FUNCTION(oviGetErrorDescription, "ioz", Quick),
      FUNCTION(get_error_string, "iX", Quick),
      FUNCTION(oviGetStructSize, "nO", Quick),
      FUNCTION(get_struct_size, "n", Quick),
      FUNCTION(oviGetKitharaErrDescription, "ioz", Quick),
      FUNCTION(oviGetEuresysErrDescription, "ioz", Quick),
      FUNCTION(oviRegisterDebugExceptionHandler, "", Ours),
      FUNCTION(oviGetNumberOfTLProducers, "e", Quick),
      FUNCTION(oviGetTLProducerPathByIndex, "ozi", Quick),
      FUNCTION(oviGetTLProducerInfobyFilePath, "eq", Slow),
      FUNCTION(oviDiscoverDevices, "etcAi", Slow),
      FUNCTION(oviGetDeviceInfo, "ie", Quick),
      FUNCTION(oviOpenDevice, "Deti", Quick),
      FUNCTION(oviCloseDevice, "h", Slow),
      FUNCTION(oviIsUsingS2iTL, "he", Quick),
      FUNCTION(oviIsUsingKitharaTL, "he", Quick),
      FUNCTION(oviIsUsingNimboTL, "he", Quick),
      FUNCTION(oviSetRemoteDeviceXMLFile, "hp", Slow),
      FUNCTION(oviGetFeatureInt, "hnes", Quick),
      FUNCTION(oviGetFeatureFloat, "hnes", Quick),
      FUNCTION(oviGetFeatureBool, "hnes", Quick),
      FUNCTION(oviGetFeatureString, "hnoZs", Quick),
      FUNCTION(oviSetFeatureInt, "hnis", Quick),
      FUNCTION(oviSetFeatureFloat, "hnis", Quick),
      FUNCTION(oviSetFeatureBool, "hnks", Quick),
      FUNCTION(oviSetFeatureString, "hnns", Quick),
      FUNCTION(oviSetFeatureEnum, "hnns", Quick),
      FUNCTION(oviGetFeatureEnum, "hnes", Quick),
      FUNCTION(oviExecuteCommand, "hns", Quick),
      FUNCTION(oviIsCommandActive, "hnes", Quick),
      FUNCTION(oviGetFeatureReg, "hnoZs", Quick),
      FUNCTION(oviSetFeatureReg, "hnBzs", Quick),
      FUNCTION(oviGetFeatureParameter, "hnes", Quick),
      FUNCTION(oviGetFeatureAccessMode, "hnes", Quick),
      FUNCTION(oviGetFeatureEnumEntryCount, "hnes", Quick),
      FUNCTION(oviGetFeatureEnumEntryByIndex, "hnies", Quick),
      FUNCTION(oviGetFeatureEnumEntryByName, "hnnes", Quick),
      FUNCTION(oviGetFeatureAllEnums, "hnSi", Quick),
      FUNCTION(oviIterateFeatureTree, "hniozOs", Quick),
      FUNCTION(oviGetFeatureList, "hLi", Tolerant),
      FUNCTION(oviGetFeature, "hnT", Quick),
      FUNCTION(oviSetFeature, "hnw", Quick),
      FUNCTION(oviGetFeatureOnModule, "hnTs", Quick),
      FUNCTION(oviSetFeatureOnModule, "hnws", Quick),
      FUNCTION(oviReadMemory, "hioz", Quick),
      FUNCTION(oviWriteMemory, "hiBz", Quick),
      FUNCTION(oviGetRegisterValue, "hnTi", Quick),
      FUNCTION(oviSetRegisterValue, "hnni", Quick),
      FUNCTION(oviIsModuleLittleEndian, "hse", Quick),
      FUNCTION(oviRegisterInvalidateCB, "hnxcs", Quick),
      FUNCTION(oviUnRegisterInvalidateCB, "hns", Quick),
      FUNCTION(oviCreateDataStream, "hkeCQ", Quick),
      FUNCTION(oviCloseDataStream, "h", Slow),
      FUNCTION(oviGetNumberOfDataStreams, "he", Quick),
      FUNCTION(oviGetDataStreamInfo, "hke", Quick),
      FUNCTION(oviCheckAndReallocBuffers, "h", Slow),
      FUNCTION(oviStartAcquisition, "hi", Quick),
      FUNCTION(oviStopAcquisition, "h", Quick),
      FUNCTION(oviAbortAcquisition, "h", Quick),
      FUNCTION(oviRegisterEvent, "hkes", Quick),
      FUNCTION(oviWaitForEvent, "hte", Quick),
      FUNCTION(oviGetNextImage, "het", Quick),
      FUNCTION(oviReleaseImage, "hR", Tolerant),
      FUNCTION(oviEventKill, "h", Quick),
      FUNCTION(oviUnregisterEvent, "h", Slow),
      FUNCTION(oviGetImageSize, "he", Quick),
      FUNCTION(oviGetAcquisitionStatistics, "he", Quick),
      FUNCTION(oviBitsPerPixelFromFormat, "i", Quick),
      FUNCTION(oviSetImageParameter, "hRtkk", Quick),
      FUNCTION(oviSetDeviceMaxPacketSize, "h", Quick),
      FUNCTION(oviGetMaintenanceMode, "he", Quick),
      FUNCTION(oviSetMaintenanceMode, "hkii", Slow),
      FUNCTION(oviScanImg, "hcjum", Slow),
      FUNCTION(oviScanImgStop, "h", Tolerant),
      FUNCTION(oviScanImage, "hS", Slow),
      FUNCTION(oviScanImageCont, "hkEER", Tolerant),
      FUNCTION(oviScanStreamImage, "hkPe", Slow),
      FUNCTION(oviGetLastImageInfo, "e", Quick),
      FUNCTION(oviFileDownloadToDevice, "hpntcx", Slow),
      FUNCTION(oviFileUploadFromDevice, "hpntcx", Slow),
      FUNCTION(oviGetUpdateFileType, "hpoz", Quick),
      FUNCTION(oviNimboStartRecording, "h", Quick),
      FUNCTION(oviNimboStopRecording, "h", Quick),
      FUNCTION(oviNimboOpenRecordings, "he", Quick),
      FUNCTION(oviNimboCloseRecordings, "h", Quick),
      FUNCTION(oviNimboClearAllRecordings, "h", Quick),
      FUNCTION(oviNimboGetRecordingData, "hie", Quick),
      FUNCTION(oviNimboSelectRecording, "hi", Quick),
      FUNCTION(oviNimboReadRecording, "he", Quick),
      FUNCTION(oviNimboFreeRecordImage, "he", Quick),
      FUNCTION(oviNimboIsRecordingAvailable, "h", Quick),
      FUNCTION(oviNimboGetRecordsInfo, "he", Quick),
      FUNCTION(oviNimboSetFrameRate, "hi", Quick),
      FUNCTION(oviNimboSetRGBConversionEnabled, "hk", Quick),
  };
}

bool checkTable(const std::vector<Function>& functions) {
  std::set<std::string> names = declaredFunctions();
  bool isRight = !names.empty();
  for (const Function& function : functions)
    if (names.erase(function.name) == 0) {
      report(function.name + " is in the table, but not declared, or twice");
      isRight = false;
    }
  for (const std::string& name : names) {
    report(name + " is declared, but not in the table");
    isRight = false;
  }
  return isRight;
}

}  // namespace proof
