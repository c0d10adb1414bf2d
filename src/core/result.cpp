// Result codes: conversion from GenTL, names, sentences, and the sizes of the records of the C interface.
#include "core/result.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <string>

#include "core/bounded_copy.h"

namespace OVI {

namespace {

struct CodePair {
  std::int32_t from;
  std::int32_t to;
};

// GenTL's codes -1001 to -1022, in their order, then those apart from them.
constexpr std::array kGenTLCodes = {
    CodePair{0, OVI_SUCCESS},
    CodePair{-1001, OVI_ERR_UNKNOWN},
    CodePair{-1002, OVI_ERR_NOT_INITIALIZED},
    CodePair{-1003, OVI_ERR_NOT_IMPLEMENTED},
    CodePair{-1004, OVI_ERR_RESOURCE_IN_USE},
    CodePair{-1005, OVI_ERR_NO_ACCESS},
    CodePair{-1006, OVI_ERR_INVALID_HANDLE},
    CodePair{-1007, OVI_ERR_INVALID_PARAMETER},
    CodePair{-1008, OVI_ERR_NOT_FOUND},
    CodePair{-1009, OVI_ERR_INVALID_PARAMETER},
    CodePair{-1010, OVI_ERR_IO},
    CodePair{-1011, OVI_ERR_TIMEOUT},
    CodePair{-1012, OVI_ERR_ABORTED},
    CodePair{-1013, OVI_ERR_INVALID_BUFFER},
    CodePair{-1014, OVI_ERR_SYSTEM_NOT_AVAILABLE},
    CodePair{-1015, OVI_ERR_INVALID_PARAMETER},
    CodePair{-1016, OVI_ERR_WRONG_BUFFER_SIZE},
    CodePair{-1017, OVI_ERR_INVALID_PARAMETER},
    CodePair{-1018, OVI_ERR_PARSING},
    CodePair{-1019, OVI_ERR_INVALID_VALUE},
    CodePair{-1020, OVI_ERR_RESOURCE_EXHAUSTED},
    CodePair{-1021, OVI_ERR_OUT_OF_MEMORY},
    CodePair{-1022, OVI_ERR_BUSY},
    CodePair{-10000, OVI_ERR_CUSTOM},
};

struct CodeText {
  std::int32_t code;
  const char* text;
};

constexpr const char* kNoName = "ErrorNumber not yet defined";
constexpr std::array kNames = {
    CodeText{OVI_SUCCESS, "Success"},
    CodeText{OVI_ERR_NOT_INITIALIZED, "NotInitialized"},
    CodeText{OVI_ERR_INVALID_STATE, "InvalidState"},
    CodeText{OVI_ERR_NOT_OPENED, "NotOpened"},
    CodeText{OVI_ERR_NO_IMAGE_DATA_AVAILABLE, "NoImageDataAvailable"},
    CodeText{OVI_ERR_NOT_FOUND, "NotFound"},
    CodeText{OVI_ERR_INVALID_PARAMETER, "InvalidParameter"},
    CodeText{OVI_ERR_SYSTEM_NOT_AVAILABLE, "SystemNotAvailable"},
    CodeText{OVI_ERR_FUNCTION_NOT_AVAILABLE, "FunctionNotAvailable"},
    CodeText{OVI_ERR_TIMEOUT, "Timeout"},
    CodeText{OVI_ERR_ABORTED, "Aborted"},
    CodeText{OVI_ERR_FILE_OPERATION_FAILURE, "FileOperationFailure"},
    CodeText{OVI_ERR_FILE_OPERATION_FATAL, "FileOperationFatalError"},
    CodeText{OVI_ERR_NO_ACCESS, "NoAccess"},
    CodeText{OVI_ERR_WRONG_BUFFER_SIZE, "WrongBufferSize"},
    CodeText{OVI_ERR_UNKNOWN, "Unknown"},
};

constexpr std::size_t kSentenceSize = 300;
constexpr std::array kSentences = {
    CodeText{OVI_ERR_NOT_INITIALIZED, "NOK: Not initialized error"},
    CodeText{OVI_ERR_INVALID_STATE, "NOK: State is not valid"},
    CodeText{OVI_ERR_NOT_OPENED, "NOK: Not opened error"},
    CodeText{OVI_ERR_NO_IMAGE_DATA_AVAILABLE, "NOK: No image data available"},
    CodeText{OVI_ERR_NOT_FOUND, "NOK: Not found error"},
    CodeText{OVI_ERR_INVALID_PARAMETER, "NOK: Parameter is not valid"},
    CodeText{OVI_ERR_SYSTEM_NOT_AVAILABLE, "NOK: Not available error"},
    CodeText{OVI_ERR_FUNCTION_NOT_AVAILABLE, "NOK: Function not available"},
    CodeText{OVI_ERR_TIMEOUT, "NOK: Timeout"},
    CodeText{OVI_ERR_ABORTED, "NOK: Aborted"},
    CodeText{OVI_ERR_FILE_OPERATION_FAILURE, "NOK: File operation failure"},
    CodeText{OVI_ERR_FILE_OPERATION_FATAL, "NOK: Fatal file operation error"},
    CodeText{OVI_ERR_NO_ACCESS, "NOK: No Access"},
    CodeText{OVI_ERR_WRONG_BUFFER_SIZE, "NOK: Wrong buffer size"},
    CodeText{OVI_ERR_INVALID_BUFFER, "NOK: Buffer is not valid"},
    CodeText{OVI_ERR_RESOURCE_IN_USE, "NOK: Resource in use"},
    CodeText{OVI_ERR_NOT_IMPLEMENTED, "NOK: Not implemented error"},
    CodeText{OVI_ERR_INVALID_HANDLE, "NOK: Handle is not valid"},
    CodeText{OVI_ERR_IO, "NOK: IO-Error"},
    CodeText{OVI_ERR_PARSING, "NOK: Parsing error"},
    CodeText{OVI_ERR_INVALID_VALUE, "NOK: Value is not valid"},
    CodeText{OVI_ERR_RESOURCE_EXHAUSTED, "NOK: Resource exhausted"},
    CodeText{OVI_ERR_OUT_OF_MEMORY, "NOK: Out of memory"},
    CodeText{OVI_ERR_BUSY, "NOK: Busy"},
    CodeText{OVI_ERR_CUSTOM, "NOK: Custom Error"},
};

constexpr std::array kKitharaTexts = {
    CodeText{OVI_ERR_NO_KITHARA_PROCESSORS, "No Kithara CPUs"},
    CodeText{OVI_ERR_HYPERVISOR_NOT_DISABLED, "Hyper-v not disabled"},
};

constexpr std::array<CodeText, 0> kEuresysTexts{};

struct RecordSize {
  const char* name;
  std::uint32_t size;
};
constexpr std::array kRecordSizes = {
    RecordSize{"oviFeatureParameter", sizeof(oviFeatureParameter)},
    RecordSize{"oviMemTransferInfo", sizeof(oviMemTransferInfo)},
    RecordSize{"oviTLProducerInfos", sizeof(oviTLProducerInfos)},
    RecordSize{"oviDeviceInfo", sizeof(oviDeviceInfo)},
    RecordSize{"oviDiscoveryInfo", sizeof(oviDiscoveryInfo)},
    RecordSize{"oviDataStreamInfo", sizeof(oviDataStreamInfo)},
    RecordSize{"oviImageInfo", sizeof(oviImageInfo)},
    RecordSize{"oviEventData", sizeof(oviEventData)},
    RecordSize{"oviNewBufferEventData", sizeof(oviNewBufferEventData)},
    RecordSize{"oviAcquistionStatistics", sizeof(oviAcquistionStatistics)},
};
constexpr std::uint32_t kNoSize = 0xFFFFFFFF;

template<std::size_t Size>
const char* findText(const std::array<CodeText, Size>& table, std::int32_t code) noexcept {
  for (const CodeText& entry : table) {
    if (entry.code == code) {
      return entry.text;
    }
  }
  return nullptr;
}

/** The frame of all description functions: the buffer is zero all over, but for the text. */
template<std::size_t Size>
oviErr describe(const std::array<CodeText, Size>& table, std::int32_t code, char* text, std::uint64_t size) noexcept {
  if (text == nullptr || size == 0) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  const char* found = findText(table, code);
  std::memset(text, 0, size);
  boundedCopy(text, size, found != nullptr ? found : kNoName);
  return OVI_SUCCESS;
}

}  // namespace

std::int32_t mapGenTLError(std::int32_t genTLCode) noexcept {
  for (const CodePair& pair : kGenTLCodes) {
    if (pair.from == genTLCode) {
      return pair.to;
    }
  }
  return genTLCode;
}

std::string_view resultName(oviErr code) noexcept {
  const char* name = findText(kNames, code);
  return name != nullptr ? name : kNoName;
}

std::string describeResult(oviErr code) {
  return "Code: [" + std::to_string(code) + "] - Error description: " + std::string(resultName(code));
}

oviErr oviGetErrorDescription(std::int32_t code, char* text, std::uint64_t size) {
  return describe(kNames, code, text, size);
}

std::int32_t get_error_string(std::int32_t code, char* text) {
  if (text == nullptr) {
    return -1;
  }
  const char* sentence = findText(kSentences, code);
  boundedCopy(text, kSentenceSize, sentence != nullptr ? sentence : "NOK: Undefined Error");
  return sentence != nullptr ? OVI_SUCCESS : OVI_ERR_UNKNOWN;
}

std::int32_t oviGetStructSize(const char* name, std::uint32_t* size) {
  if (size == nullptr) {
    return -1;
  }
  *size = kNoSize;
  if (name == nullptr) {
    return -1;
  }
  for (const RecordSize& record : kRecordSizes) {
    if (std::strcmp(record.name, name) == 0) {
      *size = record.size;
      return 0;
    }
  }
  return -1;
}

std::int32_t get_struct_size(const char* name) {
  std::uint32_t size = kNoSize;
  static_cast<void>(oviGetStructSize(name, &size));
  return static_cast<std::int32_t>(size);
}

oviErr oviGetKitharaErrDescription(std::int32_t code, char* text, std::uint64_t size) {
  return describe(kKitharaTexts, code, text, size);
}

oviErr oviGetEuresysErrDescription(std::int32_t code, char* text, std::uint64_t size) {
  return describe(kEuresysTexts, code, text, size);
}

}  // namespace OVI
