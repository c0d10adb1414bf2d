/*
 * The public interface of the library: results, records, callbacks and all functions, in the order of use.
 *
 * Plain C11, usable from C++17. Strings are NUL-terminated narrow text (UTF-8; the ANSI code page on Windows), sizes
 * are bytes, time-outs are milliseconds, handles are 64-bit numbers and never 0.
 */
#ifndef OVI_OVI_H
#define OVI_OVI_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#if defined(OVI_BUILDING_LIBRARY)
#define OVI_API __declspec(dllexport)
#else
#define OVI_API __declspec(dllimport)
#endif
#define OVI_CALL __cdecl
#else
#define OVI_API __attribute__((visibility("default")))
#define OVI_CALL
#endif

#if defined(__cplusplus)
#define OVI_STATIC_ASSERT(condition, text) static_assert(condition, text)
extern "C" {
#else
#define OVI_STATIC_ASSERT(condition, text) _Static_assert(condition, text)
#endif

/* ---- Results ------------------------------------------------------------------------------------------------------
 */

/** The result of a function: OVI_SUCCESS or a negative code. Codes of a producer's own pass through unchanged. */
typedef int32_t oviErr;

enum {
  OVI_SUCCESS = 0,
  OVI_ERR_NOT_INITIALIZED = -100,
  OVI_ERR_INVALID_STATE = -101,
  OVI_ERR_NOT_OPENED = -102,
  OVI_ERR_NO_IMAGE_DATA_AVAILABLE = -103,
  OVI_ERR_NOT_FOUND = -104,
  OVI_ERR_INVALID_PARAMETER = -105,
  OVI_ERR_SYSTEM_NOT_AVAILABLE = -106,
  OVI_ERR_FUNCTION_NOT_AVAILABLE = -107,
  OVI_ERR_TIMEOUT = -108,
  OVI_ERR_ABORTED = -109,
  OVI_ERR_FILE_OPERATION_FAILURE = -110,
  OVI_ERR_FILE_OPERATION_FATAL = -111,
  OVI_ERR_NO_ACCESS = -112,
  OVI_ERR_WRONG_BUFFER_SIZE = -113,
  OVI_ERR_INVALID_BUFFER = -114,
  OVI_ERR_RESOURCE_IN_USE = -115,
  OVI_ERR_NOT_IMPLEMENTED = -116,
  OVI_ERR_INVALID_HANDLE = -117,
  OVI_ERR_IO = -118,
  OVI_ERR_PARSING = -119,
  OVI_ERR_INVALID_VALUE = -120,
  OVI_ERR_RESOURCE_EXHAUSTED = -121,
  OVI_ERR_OUT_OF_MEMORY = -122,
  OVI_ERR_BUSY = -123,
  OVI_ERR_UNKNOWN = -200,
  OVI_ERR_CUSTOM = -251658240,
  OVI_ERR_HYPERVISOR_NOT_DISABLED = -251659240,
  OVI_ERR_NO_KITHARA_PROCESSORS = -251659241
};

/** Levels of the log. */
enum {
  OVI_LOG_LEVEL_NONE = 0,
  OVI_LOG_LEVEL_ERROR = 1,
  OVI_LOG_LEVEL_WARNING = 2,
  OVI_LOG_LEVEL_INFO = 4,
  OVI_LOG_LEVEL_DEBUG = 8,
  OVI_LOG_LEVEL_VERBOSE = 16
};

/** Which module's features a feature function means, relative to the module of its handle. */
enum {
  OVI_MODULE_SYSTEM = 1,
  OVI_MODULE_INTERFACE = 2,
  OVI_MODULE_REMOTE_DEVICE = 3,
  OVI_MODULE_LOCAL_DEVICE = 4,
  OVI_MODULE_DATA_STREAM = 5,
  OVI_MODULE_BUFFER = 6
};

/** Kinds of events. */
enum { OVI_EVENT_NEW_BUFFER = 0, OVI_EVENT_ERROR = 1, OVI_EVENT_MODULE = 2 };

/** Values of oviFeatureParameter.featureType. */
enum {
  OVI_FEATURE_UNKNOWN = 0,
  OVI_FEATURE_BOOLEAN = 1,
  OVI_FEATURE_INTEGER = 2,
  OVI_FEATURE_FLOAT = 3,
  OVI_FEATURE_STRING = 4,
  OVI_FEATURE_ENUMERATION = 5,
  OVI_FEATURE_ENUM_ENTRY = 6,
  OVI_FEATURE_CATEGORY = 7,
  OVI_FEATURE_COMMAND = 8,
  OVI_FEATURE_REGISTER = 9
};

/** Values of oviFeatureParameter.visibility. */
enum { OVI_VISIBILITY_BEGINNER = 1, OVI_VISIBILITY_EXPERT = 2, OVI_VISIBILITY_GURU = 3, OVI_VISIBILITY_INVISIBLE = 5 };

/** Values of oviFeatureParameter.accessMode. */
enum {
  OVI_ACCESS_UNDEFINED = 0,
  OVI_ACCESS_NOT_AVAILABLE = 1,
  OVI_ACCESS_READ_ONLY = 2,
  OVI_ACCESS_READ_WRITE = 3,
  OVI_ACCESS_WRITE_ONLY = 4
};

/** Values of oviFeatureParameter.displayNotation. */
enum { OVI_NOTATION_AUTOMATIC = 0, OVI_NOTATION_FIXED = 1, OVI_NOTATION_SCIENTIFIC = 2 };

/** Values of oviFeatureParameter.representation. */
enum {
  OVI_REPRESENTATION_LINEAR = 0,
  OVI_REPRESENTATION_LOGARITHMIC = 1,
  OVI_REPRESENTATION_BOOLEAN = 2,
  OVI_REPRESENTATION_PURE_NUMBER = 3,
  OVI_REPRESENTATION_HEX_NUMBER = 4,
  OVI_REPRESENTATION_IPV4_ADDRESS = 5,
  OVI_REPRESENTATION_MAC_ADDRESS = 6
};

/** Access to ask for when a device is opened; passed to the producer as it is. */
enum { OVI_DEVICE_ACCESS_READ_ONLY = 2, OVI_DEVICE_ACCESS_CONTROL = 3, OVI_DEVICE_ACCESS_EXCLUSIVE = 4 };

/** Bits of oviScanImg's mode. */
enum { OVI_SCAN_IMAGES = 1, OVI_SCAN_MINUTES = 2, OVI_SCAN_CHECK_PATTERN = 4 };

/** A number of images that never ends an acquisition. */
#define OVI_INFINITE_IMAGES 0xFFFFFFFFU
/** A time-out that never passes. */
#define OVI_INFINITE_TIMEOUT UINT64_MAX

/* ---- Records ------------------------------------------------------------------------------------------------------
 */

/** What a producer's file says about itself. */
typedef struct oviTLProducerInfos {
  char name[512];
  char displayName[512];
  char reserved0[512];
  char pathName[512];
  char filePath[512];
  uint64_t reserved1;
} oviTLProducerInfos;

/** One camera of the latest discovery. */
typedef struct oviDeviceInfo {
  char deviceID[512];
  char displayName[512];
  char model[512];
  char vendor[512];
  char serialNumber[512];
  char interfaceDisplayName[512];
  char interfaceID[512];
  char userDefinedName[512];
  char version[512];
  uint64_t reserved0;
  char interfaceTLType[512];
  char tlDisplayName[512];
  char tlType[512];
  char tlPathName[512];
  char tlID[512];
  uint32_t accessStatus;
  uint8_t reserved1[20];
} oviDeviceInfo;

/** A report about a discovery that is under way, and its result. */
typedef struct oviDiscoveryInfo {
  uint32_t deviceCount;
  uint32_t reserved0;
  double progress;
  uint8_t running;
  uint8_t reserved1[7];
  oviDeviceInfo devices[16];
} oviDiscoveryInfo;

/** Everything about one feature. */
typedef struct oviFeatureParameter {
  uint32_t featureType;
  uint32_t visibility;
  uint32_t accessMode;
  uint32_t displayNotation;
  uint32_t representation;
  uint8_t displayPrecision;
  uint8_t reserved0[3];
  int64_t intValue;
  int64_t intInc;
  int64_t intMin;
  int64_t intMax;
  double floatValue;
  double floatInc;
  double floatMin;
  double floatMax;
  char stringValue[512];
  int64_t maxStringLength;
  int64_t treeDepth; /**< written by oviGetFeatureList only */
  uint32_t enumEntryCount;
  uint8_t enumEntryIndex;
  char displayName[512];
  char name[512];
  char toolTip[512];
  char unit[512];
  uint8_t reserved1[3];
  int64_t registerLength;
  int64_t registerAddress;
  bool isFeature;
  bool littleEndian;
  uint8_t reserved2[6];
} oviFeatureParameter;

/** The feature tree of a camera, in an array that the application supplies. */
typedef struct FEATURE_PARAM_LIST_STRUCT {
  uint32_t count;
  uint32_t maxDepth;
  oviFeatureParameter* features;
} FEATURE_PARAM_LIST_STRUCT;

/** Declared for completeness; no function uses it. */
typedef struct oviMemTransferInfo {
  uint64_t address;
  uint8_t* buffer;
  uint64_t length;
  uint64_t transferred;
  int32_t result;
  uint32_t reserved;
} oviMemTransferInfo;

/** One data stream of a device. */
typedef struct oviDataStreamInfo {
  char id[512];
  char name[512];
  uint32_t index;
} oviDataStreamInfo;

/** An event that happened. */
typedef struct oviEventData {
  uint32_t kind;
  uint32_t reserved0;
  uint64_t moduleHandle;
  uint32_t moduleSelector;
  uint32_t reserved1;
  void* eventData;
  uint64_t eventDataSize;
  void* value;
  uint64_t valueSize;
  uint64_t eventID;
} oviEventData;

/** A filled buffer. */
typedef struct oviNewBufferEventData {
  oviEventData event;
  uint64_t bufferHandle;
  uint64_t frameID;
  void* rawEventData;
  uint64_t timestampMs;
  uint64_t timestampNs;
  uint32_t width;
  uint32_t height;
  uint32_t linePitch;
  uint32_t channels;
  uint32_t pixelFormat;
  uint32_t reserved;
} oviNewBufferEventData;

/** The geometry of an image. */
typedef struct oviImageInfo {
  uint32_t width;
  uint32_t height;
  uint32_t linePitch;
  uint32_t channels;
  uint32_t pixelFormat;
} oviImageInfo;

/** Counters of a stream; -1 where its producer has none. */
typedef struct oviAcquistionStatistics {
  uint64_t underruns;
  int64_t frameLoss;
  uint64_t delivered;
  int64_t packetsReceived;
  int64_t packetLoss;
} oviAcquistionStatistics;

/** A report about a file transfer that is under way. */
typedef struct oviFileTransferProgress {
  uint64_t totalBytes;
  uint64_t bytesDone;
  uint32_t status;
  int32_t errorCode;
  char message[512];
} oviFileTransferProgress;

OVI_STATIC_ASSERT(sizeof(oviTLProducerInfos) == 2568, "oviTLProducerInfos has an unexpected size");
OVI_STATIC_ASSERT(sizeof(oviDeviceInfo) == 7200, "oviDeviceInfo has an unexpected size");
OVI_STATIC_ASSERT(sizeof(oviDiscoveryInfo) == 115224, "oviDiscoveryInfo has an unexpected size");
OVI_STATIC_ASSERT(sizeof(oviFeatureParameter) == 2696, "oviFeatureParameter has an unexpected size");
OVI_STATIC_ASSERT(sizeof(FEATURE_PARAM_LIST_STRUCT) == 16, "FEATURE_PARAM_LIST_STRUCT has an unexpected size");
OVI_STATIC_ASSERT(sizeof(oviMemTransferInfo) == 40, "oviMemTransferInfo has an unexpected size");
OVI_STATIC_ASSERT(sizeof(oviDataStreamInfo) == 1028, "oviDataStreamInfo has an unexpected size");
OVI_STATIC_ASSERT(sizeof(oviEventData) == 64, "oviEventData has an unexpected size");
OVI_STATIC_ASSERT(sizeof(oviNewBufferEventData) == 128, "oviNewBufferEventData has an unexpected size");
OVI_STATIC_ASSERT(sizeof(oviImageInfo) == 20, "oviImageInfo has an unexpected size");
OVI_STATIC_ASSERT(sizeof(oviAcquistionStatistics) == 40, "oviAcquistionStatistics has an unexpected size");
OVI_STATIC_ASSERT(sizeof(oviFileTransferProgress) == 536, "oviFileTransferProgress has an unexpected size");
OVI_STATIC_ASSERT(offsetof(oviTLProducerInfos, pathName) == 1536, "oviTLProducerInfos.pathName is misplaced");
OVI_STATIC_ASSERT(offsetof(oviTLProducerInfos, filePath) == 2048, "oviTLProducerInfos.filePath is misplaced");
OVI_STATIC_ASSERT(offsetof(oviTLProducerInfos, reserved1) == 2560, "oviTLProducerInfos.reserved1 is misplaced");
OVI_STATIC_ASSERT(offsetof(oviDeviceInfo, interfaceDisplayName) == 2560,
                  "oviDeviceInfo.interfaceDisplayName is misplaced");
OVI_STATIC_ASSERT(offsetof(oviDeviceInfo, interfaceID) == 3072, "oviDeviceInfo.interfaceID is misplaced");
OVI_STATIC_ASSERT(offsetof(oviDeviceInfo, userDefinedName) == 3584, "oviDeviceInfo.userDefinedName is misplaced");
OVI_STATIC_ASSERT(offsetof(oviDeviceInfo, version) == 4096, "oviDeviceInfo.version is misplaced");
OVI_STATIC_ASSERT(offsetof(oviDeviceInfo, reserved0) == 4608, "oviDeviceInfo.reserved0 is misplaced");
OVI_STATIC_ASSERT(offsetof(oviDeviceInfo, interfaceTLType) == 4616, "oviDeviceInfo.interfaceTLType is misplaced");
OVI_STATIC_ASSERT(offsetof(oviDeviceInfo, tlDisplayName) == 5128, "oviDeviceInfo.tlDisplayName is misplaced");
OVI_STATIC_ASSERT(offsetof(oviDeviceInfo, tlType) == 5640, "oviDeviceInfo.tlType is misplaced");
OVI_STATIC_ASSERT(offsetof(oviDeviceInfo, tlPathName) == 6152, "oviDeviceInfo.tlPathName is misplaced");
OVI_STATIC_ASSERT(offsetof(oviDeviceInfo, tlID) == 6664, "oviDeviceInfo.tlID is misplaced");
OVI_STATIC_ASSERT(offsetof(oviDeviceInfo, accessStatus) == 7176, "oviDeviceInfo.accessStatus is misplaced");
OVI_STATIC_ASSERT(offsetof(oviDiscoveryInfo, progress) == 8, "oviDiscoveryInfo.progress is misplaced");
OVI_STATIC_ASSERT(offsetof(oviDiscoveryInfo, running) == 16, "oviDiscoveryInfo.running is misplaced");
OVI_STATIC_ASSERT(offsetof(oviDiscoveryInfo, devices) == 24, "oviDiscoveryInfo.devices is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, representation) == 16,
                  "oviFeatureParameter.representation is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, displayPrecision) == 20,
                  "oviFeatureParameter.displayPrecision is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, intValue) == 24, "oviFeatureParameter.intValue is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, intInc) == 32, "oviFeatureParameter.intInc is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, intMin) == 40, "oviFeatureParameter.intMin is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, intMax) == 48, "oviFeatureParameter.intMax is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, floatValue) == 56, "oviFeatureParameter.floatValue is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, floatInc) == 64, "oviFeatureParameter.floatInc is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, floatMin) == 72, "oviFeatureParameter.floatMin is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, floatMax) == 80, "oviFeatureParameter.floatMax is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, stringValue) == 88, "oviFeatureParameter.stringValue is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, maxStringLength) == 600,
                  "oviFeatureParameter.maxStringLength is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, treeDepth) == 608, "oviFeatureParameter.treeDepth is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, enumEntryCount) == 616,
                  "oviFeatureParameter.enumEntryCount is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, enumEntryIndex) == 620,
                  "oviFeatureParameter.enumEntryIndex is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, displayName) == 621, "oviFeatureParameter.displayName is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, name) == 1133, "oviFeatureParameter.name is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, toolTip) == 1645, "oviFeatureParameter.toolTip is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, unit) == 2157, "oviFeatureParameter.unit is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, registerLength) == 2672,
                  "oviFeatureParameter.registerLength is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, registerAddress) == 2680,
                  "oviFeatureParameter.registerAddress is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, isFeature) == 2688, "oviFeatureParameter.isFeature is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFeatureParameter, littleEndian) == 2689, "oviFeatureParameter.littleEndian is misplaced");
OVI_STATIC_ASSERT(offsetof(FEATURE_PARAM_LIST_STRUCT, maxDepth) == 4,
                  "FEATURE_PARAM_LIST_STRUCT.maxDepth is misplaced");
OVI_STATIC_ASSERT(offsetof(FEATURE_PARAM_LIST_STRUCT, features) == 8,
                  "FEATURE_PARAM_LIST_STRUCT.features is misplaced");
OVI_STATIC_ASSERT(offsetof(oviDataStreamInfo, name) == 512, "oviDataStreamInfo.name is misplaced");
OVI_STATIC_ASSERT(offsetof(oviDataStreamInfo, index) == 1024, "oviDataStreamInfo.index is misplaced");
OVI_STATIC_ASSERT(offsetof(oviEventData, moduleHandle) == 8, "oviEventData.moduleHandle is misplaced");
OVI_STATIC_ASSERT(offsetof(oviEventData, moduleSelector) == 16, "oviEventData.moduleSelector is misplaced");
OVI_STATIC_ASSERT(offsetof(oviEventData, eventData) == 24, "oviEventData.eventData is misplaced");
OVI_STATIC_ASSERT(offsetof(oviEventData, eventDataSize) == 32, "oviEventData.eventDataSize is misplaced");
OVI_STATIC_ASSERT(offsetof(oviEventData, value) == 40, "oviEventData.value is misplaced");
OVI_STATIC_ASSERT(offsetof(oviEventData, valueSize) == 48, "oviEventData.valueSize is misplaced");
OVI_STATIC_ASSERT(offsetof(oviEventData, eventID) == 56, "oviEventData.eventID is misplaced");
OVI_STATIC_ASSERT(offsetof(oviNewBufferEventData, bufferHandle) == 64,
                  "oviNewBufferEventData.bufferHandle is misplaced");
OVI_STATIC_ASSERT(offsetof(oviNewBufferEventData, frameID) == 72, "oviNewBufferEventData.frameID is misplaced");
OVI_STATIC_ASSERT(offsetof(oviNewBufferEventData, rawEventData) == 80,
                  "oviNewBufferEventData.rawEventData is misplaced");
OVI_STATIC_ASSERT(offsetof(oviNewBufferEventData, timestampMs) == 88, "oviNewBufferEventData.timestampMs is misplaced");
OVI_STATIC_ASSERT(offsetof(oviNewBufferEventData, timestampNs) == 96, "oviNewBufferEventData.timestampNs is misplaced");
OVI_STATIC_ASSERT(offsetof(oviNewBufferEventData, width) == 104, "oviNewBufferEventData.width is misplaced");
OVI_STATIC_ASSERT(offsetof(oviNewBufferEventData, height) == 108, "oviNewBufferEventData.height is misplaced");
OVI_STATIC_ASSERT(offsetof(oviNewBufferEventData, linePitch) == 112, "oviNewBufferEventData.linePitch is misplaced");
OVI_STATIC_ASSERT(offsetof(oviNewBufferEventData, channels) == 116, "oviNewBufferEventData.channels is misplaced");
OVI_STATIC_ASSERT(offsetof(oviNewBufferEventData, pixelFormat) == 120,
                  "oviNewBufferEventData.pixelFormat is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFileTransferProgress, bytesDone) == 8, "oviFileTransferProgress.bytesDone is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFileTransferProgress, status) == 16, "oviFileTransferProgress.status is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFileTransferProgress, errorCode) == 20, "oviFileTransferProgress.errorCode is misplaced");
OVI_STATIC_ASSERT(offsetof(oviFileTransferProgress, message) == 24, "oviFileTransferProgress.message is misplaced");
OVI_STATIC_ASSERT(offsetof(oviMemTransferInfo, result) == 32, "oviMemTransferInfo.result is misplaced");

/* ---- Callbacks ----------------------------------------------------------------------------------------------------
 */

typedef void(OVI_CALL* oviLogCallback)(uint32_t level, const char* message, void* userData);
typedef void(OVI_CALL* oviDiscoveryCallback)(oviDiscoveryInfo* info);
typedef void(OVI_CALL* oviInvalidateCallback)(const char* featureName, void* context);
typedef void(OVI_CALL* oviScanCallback)(uint8_t* imageData, oviImageInfo* info, uint8_t ok);
/** Returns whether to go on; 0 stops the transfer. */
typedef uint8_t(OVI_CALL* oviFileTransferCallback)(const oviFileTransferProgress* progress, void* context);

/* ---- Functions ----------------------------------------------------------------------------------------------------
 */

OVI_API oviErr OVI_CALL oviInit(uint32_t logLevel, oviLogCallback callback, void* userData);
OVI_API oviErr OVI_CALL oviClose(void);
OVI_API oviErr OVI_CALL oviGetLibraryVersion(uint32_t* major, uint32_t* minor, uint32_t* patch, uint32_t* build);
OVI_API oviErr OVI_CALL oviSetIgnoreSubnetEnabled(uint8_t enabled);
OVI_API oviErr OVI_CALL oviSetFeatureCachingDisabled(uint8_t disabled);
OVI_API oviErr OVI_CALL oviIsFeatureCachingDisabled(uint8_t* disabled);
OVI_API oviErr OVI_CALL oviGetErrorDescription(int32_t code, char* text, uint64_t size);
OVI_API int32_t OVI_CALL get_error_string(int32_t code, char* text);
OVI_API int32_t OVI_CALL oviGetStructSize(const char* name, uint32_t* size);
OVI_API int32_t OVI_CALL get_struct_size(const char* name);
OVI_API oviErr OVI_CALL oviGetKitharaErrDescription(int32_t code, char* text, uint64_t size);
OVI_API oviErr OVI_CALL oviGetEuresysErrDescription(int32_t code, char* text, uint64_t size);
OVI_API int32_t OVI_CALL oviRegisterDebugExceptionHandler(void);

OVI_API oviErr OVI_CALL oviGetNumberOfTLProducers(uint32_t* count);
OVI_API oviErr OVI_CALL oviGetTLProducerPathByIndex(char* path, uint64_t pathSize, uint32_t index);
OVI_API oviErr OVI_CALL oviGetTLProducerInfobyFilePath(oviTLProducerInfos* info, const char* filePath);
OVI_API oviErr OVI_CALL oviDiscoverDevices(oviDiscoveryInfo* info, uint64_t timeout,
                                           oviDiscoveryCallback progressCallback, const char* searchPath,
                                           uint8_t useGivenPathsOnly);
OVI_API oviErr OVI_CALL oviGetDeviceInfo(uint32_t index, oviDeviceInfo* info);
OVI_API oviErr OVI_CALL oviOpenDevice(const char* deviceId, uint64_t* handle, uint64_t timeout, uint32_t accessFlags);
OVI_API oviErr OVI_CALL oviCloseDevice(uint64_t deviceHandle);
OVI_API oviErr OVI_CALL oviIsUsingS2iTL(uint64_t deviceHandle, bool* out);
OVI_API oviErr OVI_CALL oviIsUsingKitharaTL(uint64_t deviceHandle, bool* out);
OVI_API oviErr OVI_CALL oviIsUsingNimboTL(uint64_t deviceHandle, bool* out);
OVI_API oviErr OVI_CALL oviSetRemoteDeviceXMLFile(uint64_t deviceHandle, const char* path);

OVI_API oviErr OVI_CALL oviGetFeatureInt(uint64_t handle, const char* name, int64_t* value, uint32_t selector);
OVI_API oviErr OVI_CALL oviGetFeatureFloat(uint64_t handle, const char* name, double* value, uint32_t selector);
OVI_API oviErr OVI_CALL oviGetFeatureBool(uint64_t handle, const char* name, bool* value, uint32_t selector);
OVI_API oviErr OVI_CALL oviGetFeatureString(uint64_t handle, const char* name, char* buffer, size_t* size,
                                            uint32_t selector);
OVI_API oviErr OVI_CALL oviSetFeatureInt(uint64_t handle, const char* name, int64_t value, uint32_t selector);
OVI_API oviErr OVI_CALL oviSetFeatureFloat(uint64_t handle, const char* name, double value, uint32_t selector);
OVI_API oviErr OVI_CALL oviSetFeatureBool(uint64_t handle, const char* name, bool value, uint32_t selector);
OVI_API oviErr OVI_CALL oviSetFeatureString(uint64_t handle, const char* name, const char* value, uint32_t selector);
OVI_API oviErr OVI_CALL oviSetFeatureEnum(uint64_t handle, const char* name, const char* entryName, uint32_t selector);
OVI_API oviErr OVI_CALL oviGetFeatureEnum(uint64_t handle, const char* name, oviFeatureParameter* entry,
                                          uint32_t selector);
OVI_API oviErr OVI_CALL oviExecuteCommand(uint64_t handle, const char* name, uint32_t selector);
OVI_API oviErr OVI_CALL oviIsCommandActive(uint64_t handle, const char* name, bool* active, uint32_t selector);
OVI_API oviErr OVI_CALL oviGetFeatureReg(uint64_t handle, const char* name, uint8_t* buffer, int64_t* length,
                                         uint32_t selector);
OVI_API oviErr OVI_CALL oviSetFeatureReg(uint64_t handle, const char* name, const uint8_t* buffer, int64_t length,
                                         uint32_t selector);
OVI_API oviErr OVI_CALL oviGetFeatureParameter(uint64_t handle, const char* name, oviFeatureParameter* record,
                                               uint32_t selector);
OVI_API oviErr OVI_CALL oviGetFeatureAccessMode(uint64_t handle, const char* name, uint32_t* accessMode,
                                                uint32_t selector);
OVI_API oviErr OVI_CALL oviGetFeatureEnumEntryCount(uint64_t handle, const char* name, uint32_t* count,
                                                    uint32_t selector);
OVI_API oviErr OVI_CALL oviGetFeatureEnumEntryByIndex(uint64_t handle, const char* name, int32_t index,
                                                      oviFeatureParameter* record, uint32_t selector);
OVI_API oviErr OVI_CALL oviGetFeatureEnumEntryByName(uint64_t handle, const char* name, const char* entryName,
                                                     oviFeatureParameter* record, uint32_t selector);
OVI_API oviErr OVI_CALL oviGetFeatureAllEnums(uint64_t handle, const char* name, char* text, uint32_t useDisplayNames);
OVI_API oviErr OVI_CALL oviIterateFeatureTree(uint64_t handle, const char* parentName, uint32_t index, char* childName,
                                              size_t childNameSize, uint32_t* childType, uint32_t selector);
OVI_API oviErr OVI_CALL oviGetFeatureList(uint64_t handle, FEATURE_PARAM_LIST_STRUCT* list, int includeInvisible);
OVI_API oviErr OVI_CALL oviGetFeature(uint64_t handle, const char* name, char* text);
OVI_API oviErr OVI_CALL oviSetFeature(uint64_t handle, const char* name, const char* text);
OVI_API oviErr OVI_CALL oviGetFeatureOnModule(uint64_t handle, const char* name, char* text, uint32_t selector);
OVI_API oviErr OVI_CALL oviSetFeatureOnModule(uint64_t handle, const char* name, const char* text, uint32_t selector);
OVI_API oviErr OVI_CALL oviReadMemory(uint64_t handle, uint64_t address, uint8_t* buffer, uint64_t length);
OVI_API oviErr OVI_CALL oviWriteMemory(uint64_t handle, uint64_t address, const uint8_t* buffer, uint64_t length);
OVI_API oviErr OVI_CALL oviGetRegisterValue(uint64_t handle, const char* address, char* value, uint32_t direct);
OVI_API oviErr OVI_CALL oviSetRegisterValue(uint64_t handle, const char* address, const char* value, uint32_t direct);
OVI_API oviErr OVI_CALL oviIsModuleLittleEndian(uint64_t handle, int32_t selector, bool* littleEndian);
OVI_API oviErr OVI_CALL oviRegisterInvalidateCB(uint64_t handle, const char* name, void* context,
                                                oviInvalidateCallback callback, uint32_t selector);
OVI_API oviErr OVI_CALL oviUnRegisterInvalidateCB(uint64_t handle, const char* name, uint32_t selector);

OVI_API oviErr OVI_CALL oviCreateDataStream(uint64_t deviceHandle, uint32_t streamIndex, uint64_t* streamHandle,
                                            uint32_t bufferCount, uint64_t bufferSize);
OVI_API oviErr OVI_CALL oviCloseDataStream(uint64_t streamHandle);
OVI_API oviErr OVI_CALL oviGetNumberOfDataStreams(uint64_t deviceHandle, uint32_t* count);
OVI_API oviErr OVI_CALL oviGetDataStreamInfo(uint64_t deviceHandle, uint32_t streamIndex, oviDataStreamInfo* info);
OVI_API oviErr OVI_CALL oviCheckAndReallocBuffers(uint64_t deviceHandle);
OVI_API oviErr OVI_CALL oviStartAcquisition(uint64_t deviceHandle, uint32_t imageCount);
OVI_API oviErr OVI_CALL oviStopAcquisition(uint64_t deviceHandle);
OVI_API oviErr OVI_CALL oviAbortAcquisition(uint64_t deviceHandle);
OVI_API oviErr OVI_CALL oviRegisterEvent(uint64_t moduleHandle, uint32_t kind, uint64_t* eventHandle,
                                         uint32_t moduleSelector);
OVI_API oviErr OVI_CALL oviWaitForEvent(uint64_t eventHandle, uint64_t timeout, void** data);
OVI_API oviErr OVI_CALL oviGetNextImage(uint64_t eventHandle, oviNewBufferEventData* record, uint64_t timeout);
OVI_API oviErr OVI_CALL oviReleaseImage(uint64_t streamHandle, oviNewBufferEventData* record);
OVI_API oviErr OVI_CALL oviEventKill(uint64_t eventHandle);
OVI_API oviErr OVI_CALL oviUnregisterEvent(uint64_t eventHandle);
OVI_API oviErr OVI_CALL oviGetImageSize(uint64_t deviceHandle, int64_t* size);
OVI_API oviErr OVI_CALL oviGetAcquisitionStatistics(uint64_t streamHandle, oviAcquistionStatistics* statistics);
OVI_API uint32_t OVI_CALL oviBitsPerPixelFromFormat(uint32_t pixelFormat);
OVI_API oviErr OVI_CALL oviSetImageParameter(uint64_t deviceHandle, oviImageInfo* image, int64_t timeout,
                                             uint8_t filterDriver, uint8_t scanFlag);
OVI_API oviErr OVI_CALL oviSetDeviceMaxPacketSize(uint64_t deviceHandle);
OVI_API oviErr OVI_CALL oviGetMaintenanceMode(uint64_t deviceHandle, uint8_t* enabled);
OVI_API oviErr OVI_CALL oviSetMaintenanceMode(uint64_t deviceHandle, uint8_t enable, uint64_t address, uint32_t value);

OVI_API oviErr OVI_CALL oviScanImg(uint64_t deviceHandle, oviScanCallback callback, int32_t imageNumber, uint32_t mode,
                                   int32_t minutes);
OVI_API oviErr OVI_CALL oviScanImgStop(uint64_t deviceHandle);
OVI_API oviErr OVI_CALL oviScanImage(uint64_t deviceHandle, uint8_t* destination);
OVI_API oviErr OVI_CALL oviScanImageCont(uint64_t deviceHandle, uint32_t phase, uint64_t* stream, uint64_t* event,
                                         oviNewBufferEventData* record);
OVI_API oviErr OVI_CALL oviScanStreamImage(uint64_t deviceHandle, uint32_t streamCount, uint8_t* const* destinations,
                                           oviImageInfo* infos);
OVI_API oviErr OVI_CALL oviGetLastImageInfo(oviImageInfo* info);

OVI_API oviErr OVI_CALL oviFileDownloadToDevice(uint64_t deviceHandle, const char* filePath, const char* fileSelector,
                                                uint64_t timeout, oviFileTransferCallback progressFunction,
                                                void* progressContext);
OVI_API oviErr OVI_CALL oviFileUploadFromDevice(uint64_t deviceHandle, const char* filePath, const char* fileSelector,
                                                uint64_t timeout, oviFileTransferCallback progressFunction,
                                                void* progressContext);
OVI_API oviErr OVI_CALL oviGetUpdateFileType(uint64_t deviceHandle, const char* filePath, char* type,
                                             uint64_t typeSize);
OVI_API int32_t OVI_CALL oviNimboStartRecording(uint64_t deviceHandle);
OVI_API int32_t OVI_CALL oviNimboStopRecording(uint64_t deviceHandle);
OVI_API int32_t OVI_CALL oviNimboOpenRecordings(uint64_t deviceHandle, void* argument);
OVI_API int32_t OVI_CALL oviNimboCloseRecordings(uint64_t deviceHandle);
OVI_API int32_t OVI_CALL oviNimboClearAllRecordings(uint64_t deviceHandle);
OVI_API int32_t OVI_CALL oviNimboGetRecordingData(uint64_t deviceHandle, uint32_t index, void* data);
OVI_API int32_t OVI_CALL oviNimboSelectRecording(uint64_t deviceHandle, uint32_t index);
OVI_API uint64_t OVI_CALL oviNimboReadRecording(uint64_t deviceHandle, void* argument);
OVI_API int32_t OVI_CALL oviNimboFreeRecordImage(uint64_t deviceHandle, void* image);
OVI_API bool OVI_CALL oviNimboIsRecordingAvailable(uint64_t deviceHandle);
OVI_API int32_t OVI_CALL oviNimboGetRecordsInfo(uint64_t deviceHandle, void* info);
OVI_API int32_t OVI_CALL oviNimboSetFrameRate(uint64_t deviceHandle, uint32_t frameRate);
OVI_API int32_t OVI_CALL oviNimboSetRGBConversionEnabled(uint64_t deviceHandle, bool enabled);

#if defined(__cplusplus)
}
#endif

#endif
