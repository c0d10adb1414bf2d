/**
 * @file
 * The public interface of the library: constants, records, callbacks, and all functions in the order of use.
 *
 * Plain C11, usable from C++17. Strings are NUL-terminated narrow text (UTF-8; the ANSI code page on Windows), sizes
 * are bytes, time-outs are milliseconds, handles are 64-bit numbers and never 0.
 *
 * The usual order of a program:
 *
 *     oviInit -> oviDiscoverDevices -> oviOpenDevice -> features (oviGetFeatureInt, oviSetFeatureEnum, ...)
 *       -> oviCreateDataStream -> oviRegisterEvent -> oviStartAcquisition
 *           -> oviWaitForEvent, use the image, oviReleaseImage, again and again
 *       -> oviStopAcquisition -> oviUnregisterEvent -> oviCloseDataStream -> oviCloseDevice -> oviClose
 *
 * What holds for every function unless its own text says otherwise:
 *  - Before oviInit it returns NotInitialized (-100) and touches no argument.
 *  - It may be called from any thread, and from several at once; none but the waits, scans, searches and transfers
 *    blocks for long. oviInit and oviClose are the exception, see there.
 *  - A handle that is unknown, was closed or belongs to another kind of module gives NotFound (-104).
 *  - An error of a producer comes as the result code that fits it; the log has a line that names the thing, what was
 *    tried and what the producer answered. A status that is none of GenTL's counts as a success, except when a buffer
 *    is queued and when a stream is stopped or flushed: there it is the result.
 *  - When a function fails, what it was to write is as it was before; handles are then not given out. Nothing is rolled
 *    back: a failure in the middle leaves the earlier steps done.
 *  - No C++ exception leaves the library, except from the recording functions, which say so.
 */
#ifndef OVI_OVI_H
#define OVI_OVI_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

/** @cond */
/* A system header of mingw-w64, by way of windows.h's ras.h, makes a number of what is a member's name here. */
#if defined(maxStringLength)
#undef maxStringLength
#endif

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
/** @endcond */

/* ---- Constants --------------------------------------------------------------------------------------------------- */

/**
 * @defgroup constants Constants
 * @{
 */

/**
 * The result of a function: OVI_SUCCESS or a negative code.
 *
 * Three kinds have no constant: -10001, a file that cannot be loaded as a producer; -10002, a module that was closed
 * while it was used; and a producer's own.
 */
typedef int32_t oviErr;

/** The results. docs/result-codes.md tells the causes of each, and the cures. */
enum {
  OVI_SUCCESS = 0,                        /**< It worked */
  OVI_ERR_NOT_INITIALIZED = -100,         /**< oviInit was not called, or oviClose was */
  OVI_ERR_INVALID_STATE = -101,           /**< Not possible in this state */
  OVI_ERR_NOT_OPENED = -102,              /**< Something must be opened first */
  OVI_ERR_NO_IMAGE_DATA_AVAILABLE = -103, /**< A stream delivered nothing in time */
  OVI_ERR_NOT_FOUND = -104,               /**< No such handle, device, feature, entry or index */
  OVI_ERR_INVALID_PARAMETER = -105,       /**< A null pointer, an impossible value, an unreadable text */
  OVI_ERR_SYSTEM_NOT_AVAILABLE = -106,    /**< The producer does not have what was asked of it */
  OVI_ERR_FUNCTION_NOT_AVAILABLE = -107,  /**< The function is not available here */
  OVI_ERR_TIMEOUT = -108,                 /**< The time is over; normal for a wait */
  OVI_ERR_ABORTED = -109,                 /**< A wait was ended by another thread, a transfer by the application */
  OVI_ERR_FILE_OPERATION_FAILURE = -110,  /**< A file could not be read or written, here or on the camera */
  OVI_ERR_FILE_OPERATION_FATAL = -111,    /**< The same, and the camera's file is in an unknown state */
  OVI_ERR_NO_ACCESS = -112,               /**< Not readable, not writable, or opened by somebody else */
  OVI_ERR_WRONG_BUFFER_SIZE = -113,       /**< A buffer is too small */
  OVI_ERR_INVALID_BUFFER = -114,          /**< An image arrived incomplete; its buffer is queued again already */
  OVI_ERR_RESOURCE_IN_USE = -115,         /**< Opened already */
  OVI_ERR_NOT_IMPLEMENTED = -116,         /**< The producer has no such thing */
  OVI_ERR_INVALID_HANDLE = -117,          /**< The producer does not know its own handle any more */
  OVI_ERR_IO = -118,                      /**< The connection to the camera failed */
  OVI_ERR_PARSING = -119,                 /**< Data of the camera could not be understood */
  OVI_ERR_INVALID_VALUE = -120,           /**< A value that the producer or the camera refuses */
  OVI_ERR_RESOURCE_EXHAUSTED = -121,      /**< Too many of something, or too slow for the camera */
  OVI_ERR_OUT_OF_MEMORY = -122,           /**< No memory left */
  OVI_ERR_BUSY = -123,                    /**< Try again later */
  OVI_ERR_UNKNOWN = -200,                 /**< A failure without a code of its own; the log says more */
  OVI_ERR_CUSTOM = -251658240,            /**< The first code of a producer's own */
  OVI_ERR_HYPERVISOR_NOT_DISABLED = -251659240, /**< A real-time producer cannot run beside a hypervisor */
  OVI_ERR_NO_KITHARA_PROCESSORS = -251659241    /**< No processors are set aside for a real-time producer */
};

/** Levels of the log; each one includes those before it. */
enum {
  OVI_LOG_LEVEL_NONE = 0,    /**< Nothing */
  OVI_LOG_LEVEL_ERROR = 1,   /**< What failed */
  OVI_LOG_LEVEL_WARNING = 2, /**< What was odd and could be dealt with */
  OVI_LOG_LEVEL_INFO = 4,    /**< Producers that are loaded, modules that are closed */
  OVI_LOG_LEVEL_DEBUG = 8,   /**< Every step of discovery, opening and file transfer */
  OVI_LOG_LEVEL_VERBOSE = 16 /**< All there is */
};

/**
 * Which module's features a feature function means, relative to the module of its handle: with a stream handle,
 * OVI_MODULE_DATA_STREAM is the stream itself and OVI_MODULE_SYSTEM the producer that it belongs to.
 */
enum {
  OVI_MODULE_SYSTEM = 1,        /**< The producer */
  OVI_MODULE_INTERFACE = 2,     /**< The network card, USB controller or frame grabber that the camera is on */
  OVI_MODULE_REMOTE_DEVICE = 3, /**< The camera */
  OVI_MODULE_LOCAL_DEVICE = 4,  /**< The producer's side of the connection to the camera */
  OVI_MODULE_DATA_STREAM = 5,
  OVI_MODULE_BUFFER = 6
};

/** Kinds of events. */
enum {
  OVI_EVENT_NEW_BUFFER = 0, /**< A buffer was filled; of data streams only */
  OVI_EVENT_ERROR = 1,      /**< The producer reports an error */
  OVI_EVENT_MODULE = 2      /**< The module reports that something happened to it */
};

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
enum {
  OVI_DEVICE_ACCESS_READ_ONLY = 2,
  OVI_DEVICE_ACCESS_CONTROL = 3,  /**< The usual one: others may still read */
  OVI_DEVICE_ACCESS_EXCLUSIVE = 4 /**< Nobody else may open the device meanwhile */
};

/** Bits of oviScanImg's mode. */
enum { OVI_SCAN_IMAGES = 1, OVI_SCAN_MINUTES = 2, OVI_SCAN_CHECK_PATTERN = 4 };

/** A number of images that never ends an acquisition. */
#define OVI_INFINITE_IMAGES 0xFFFFFFFFU
/** A time-out that never passes. */
#define OVI_INFINITE_TIMEOUT UINT64_MAX

/** @} */

/* ---- Records ----------------------------------------------------------------------------------------------------- */

/**
 * @defgroup records Records
 *
 * The application supplies the memory of a record, the library fills it. Reserved fields are zero.
 * @{
 */

/** What a producer's file says about itself. */
typedef struct oviTLProducerInfos {
  char name[512];        /**< The file's name, as the producer reports it */
  char displayName[512]; /**< What the producer wants to be called */
  char reserved0[512];   /**< Zero */
  char pathName[512];    /**< The path as the producer itself reports it */
  char filePath[512];    /**< The path that the application asked about */
  uint64_t reserved1;    /**< Zero */
} oviTLProducerInfos;

/** One camera of the latest discovery. A text that its producer does not give is empty. */
typedef struct oviDeviceInfo {
  char deviceID[512];             /**< What oviOpenDevice takes */
  char displayName[512];          /**< What the producer calls the camera */
  char model[512];                /**< Its model; never empty */
  char vendor[512];               /**< Its maker */
  char serialNumber[512];         /**< Its serial number */
  char interfaceDisplayName[512]; /**< What the producer calls the interface */
  char interfaceID[512];          /**< The interface that the camera was found on, and is opened through */
  char userDefinedName[512];      /**< The name that somebody gave to the camera */
  char version[512];              /**< The camera's version */
  uint64_t reserved0;             /**< Zero */
  char interfaceTLType[512];      /**< The interface's kind of transport layer, "GEV", "U3V", ... */
  char tlDisplayName[512];        /**< The producer's display name */
  char tlType[512];               /**< The camera's kind of transport layer */
  char tlPathName[512];           /**< The producer's file */
  char tlID[512];                 /**< The producer's ID */
  uint32_t accessStatus; /**< 1 read-write, 2 read-only, 3 no access, 4 busy, 5 opened by this process, 0 unknown */
  uint8_t reserved1[20]; /**< Zero */
} oviDeviceInfo;

/** A report about a discovery that is under way, and its result. */
typedef struct oviDiscoveryInfo {
  uint32_t deviceCount;      /**< Entries of devices that are filled, at most 16 */
  uint32_t reserved0;        /**< Zero */
  double progress;           /**< In reports: percent of the whole discovery, 0 to 100 */
  uint8_t running;           /**< In reports: 1, and 0 in the last one */
  uint8_t reserved1[7];      /**< Zero */
  oviDeviceInfo devices[16]; /**< The first cameras of the list */
} oviDiscoveryInfo;

/** Everything about one feature. Fields that its kind of feature does not have are zero. */
typedef struct oviFeatureParameter {
  uint32_t featureType;     /**< OVI_FEATURE_... */
  uint32_t visibility;      /**< OVI_VISIBILITY_... */
  uint32_t accessMode;      /**< OVI_ACCESS_... */
  uint32_t displayNotation; /**< OVI_NOTATION_..., of floats */
  uint32_t representation;  /**< OVI_REPRESENTATION_..., of numbers */
  uint8_t displayPrecision; /**< Digits to show, of floats */
  uint8_t reserved0[3];     /**< Zero */
  int64_t intValue;         /**< Of integers, booleans (0 or 1), enumerations and enumeration entries */
  int64_t intInc;           /**< Of integers: the step between values */
  int64_t intMin;           /**< Of integers: the smallest value now */
  int64_t intMax;           /**< Of integers: the largest value now */
  double floatValue;        /**< Of floats */
  double floatInc;          /**< Of floats: the step between values, 0 when there is none */
  double floatMin;          /**< Of floats: the smallest value now */
  double floatMax;          /**< Of floats: the largest value now */
  char stringValue[512];    /**< Of strings; of enumerations the current entry's name, of entries their own */
  int64_t maxStringLength;  /**< Of strings */
  int64_t treeDepth;        /**< Written by oviGetFeatureList only: 0 below "Root", 1 below that, ... */
  uint32_t enumEntryCount;  /**< Of enumerations: entries that can be used now */
  uint8_t enumEntryIndex;   /**< Of enumeration entries: their position; 255 when it is not known */
  char displayName[512];    /**< What a user should see */
  char name[512];           /**< What the feature functions take */
  char toolTip[512];        /**< One sentence for a user */
  char unit[512];           /**< The unit of the value, "us" or "Hz"; empty when there is none */
  uint8_t reserved1[3];     /**< Zero */
  int64_t registerLength;   /**< Of registers, bytes */
  int64_t registerAddress;  /**< Of registers, in the module's register space */
  bool isFeature;           /**< False for nodes of the description that are no features */
  bool littleEndian;        /**< The byte order of the module that the feature belongs to */
  uint8_t reserved2[6];     /**< Zero */
} oviFeatureParameter;

/** The feature tree of a camera, in an array that the application supplies. */
typedef struct FEATURE_PARAM_LIST_STRUCT {
  uint32_t count;                /**< Records written */
  uint32_t maxDepth;             /**< The deepest treeDepth among them */
  oviFeatureParameter* features; /**< The application's array, one record a feature */
} FEATURE_PARAM_LIST_STRUCT;

/** Declared for completeness; no function uses it. */
typedef struct oviMemTransferInfo {
  uint64_t address;     /**< In a camera's register space */
  uint8_t* buffer;      /**< The bytes */
  uint64_t length;      /**< Bytes wanted */
  uint64_t transferred; /**< Bytes moved */
  int32_t result;       /**< A result code */
  uint32_t reserved;    /**< Zero */
} oviMemTransferInfo;

/** One data stream of a device. */
typedef struct oviDataStreamInfo {
  char id[512];   /**< The producer's ID of the stream */
  char name[512]; /**< The ID again: streams have no names of their own */
  uint32_t index; /**< What oviCreateDataStream takes */
} oviDataStreamInfo;

/** An event that happened. The library owns the record and what it points to. */
typedef struct oviEventData {
  uint32_t kind;           /**< OVI_EVENT_... */
  uint32_t reserved0;      /**< Zero */
  uint64_t moduleHandle;   /**< Of the module that the event is registered on; the stream of a filled buffer */
  uint32_t moduleSelector; /**< OVI_MODULE_DATA_STREAM for a filled buffer */
  uint32_t reserved1;      /**< Zero */
  void* eventData;         /**< The event's data as the producer gives them */
  uint64_t eventDataSize;  /**< Bytes */
  void* value;             /**< The event's value as text; the image data of a filled buffer */
  uint64_t valueSize;      /**< Length of the text without its NUL; bytes that are filled in the buffer */
  uint64_t eventID;        /**< As the producer reports it, 0 when it does not */
} oviEventData;

/** A filled buffer. event.value is the image. */
typedef struct oviNewBufferEventData {
  oviEventData event;    /**< What all events have; its value is the image */
  uint64_t bufferHandle; /**< What oviReleaseImage takes back */
  uint64_t frameID;      /**< The camera's number of the image; a gap means lost images */
  void* rawEventData;    /**< The same as event.eventData */
  uint64_t timestampMs;  /**< When the image was received, in milliseconds of a clock that never goes back */
  uint64_t timestampNs;  /**< The same moment in nanoseconds */
  uint32_t width;        /**< Pixels */
  uint32_t height;       /**< Pixels */
  uint32_t linePitch;    /**< Bytes a line */
  uint32_t channels;     /**< 1, 3 or 4 */
  uint32_t pixelFormat;  /**< A code of the Pixel Format Naming Convention */
  uint32_t reserved;     /**< Zero */
} oviNewBufferEventData;

/** The geometry of an image; the fields are those of oviNewBufferEventData. */
typedef struct oviImageInfo {
  uint32_t width;       /**< Pixels */
  uint32_t height;      /**< Pixels */
  uint32_t linePitch;   /**< Bytes a line */
  uint32_t channels;    /**< 1, 3 or 4 */
  uint32_t pixelFormat; /**< A code of the Pixel Format Naming Convention */
} oviImageInfo;

/** Counters of a stream; -1 where its producer has none. */
typedef struct oviAcquistionStatistics {
  uint64_t underruns;      /**< Images lost because no buffer was queued */
  int64_t frameLoss;       /**< Images of which too much was missing */
  uint64_t delivered;      /**< Images since the start */
  int64_t packetsReceived; /**< Packets of the network that arrived */
  int64_t packetLoss;      /**< Packets of the network that did not */
} oviAcquistionStatistics;

/** A report about a file transfer that is under way. */
typedef struct oviFileTransferProgress {
  uint64_t totalBytes; /**< The file's size */
  uint64_t bytesDone;  /**< Of them moved */
  uint32_t status;   /**< 0 starting, 1 running, 2 waiting for the device, 3 done, 4 ended with an error, 5 an error */
  int32_t errorCode; /**< Of status 4 and 5 */
  char message[512]; /**< The same in words */
} oviFileTransferProgress;

/** @} */

/* ---- Callbacks --------------------------------------------------------------------------------------------------- */

/**
 * @defgroup callbacks Callbacks
 *
 * They run on the thread that called the function which they report about, and should be quick; what they are given is
 * valid until they return. They must not throw.
 * @{
 */

/**
 * Receives a line of the log. Runs on whatever thread logs, one line at a time, and must not call back into the
 * library.
 *
 * @param level     OVI_LOG_LEVEL_...
 * @param message   one line, without time and place
 * @param userData  as given to oviInit
 */
typedef void(OVI_CALL* oviLogCallback)(uint32_t level, const char* message, void* userData);

/**
 * Receives the progress of oviDiscoverDevices, and must not call into discovery, device opening or oviClose.
 *
 * @param info  the cameras found so far, and how far the search is
 */
typedef void(OVI_CALL* oviDiscoveryCallback)(oviDiscoveryInfo* info);

/**
 * Learns that a feature may have changed. Runs on the thread that changed it or on one of the library's own; may read
 * and write features.
 *
 * @param featureName  the feature
 * @param context      as given to oviRegisterInvalidateCB
 */
typedef void(OVI_CALL* oviInvalidateCallback)(const char* featureName, void* context);

/**
 * Receives an image of oviScanImg.
 *
 * @param imageData  the pixels
 * @param info       their geometry
 * @param ok         0 when the image was checked and is not as it should be, else 1
 */
typedef void(OVI_CALL* oviScanCallback)(uint8_t* imageData, oviImageInfo* info, uint8_t ok);

/**
 * Receives the progress of a file transfer.
 *
 * @param progress  how far it is
 * @param context   as given to the transfer
 * @return whether to go on; 0 stops the transfer
 */
typedef uint8_t(OVI_CALL* oviFileTransferCallback)(const oviFileTransferProgress* progress, void* context);

/** @} */

/* ---- Results ----------------------------------------------------------------------------------------------------- */

/**
 * @defgroup results Results
 *
 * These work with and without oviInit.
 * @{
 */

/**
 * Names a result code: "NotFound" for -104.
 *
 * @param code  any number; one without a name gives "ErrorNumber not yet defined"
 * @param text  receives the name; all of its bytes are cleared first; a name that does not fit is cut
 * @param size  bytes at `text`
 * @return Success; InvalidParameter (-105) for a null text or size 0
 * @threads any
 */
OVI_API oviErr OVI_CALL oviGetErrorDescription(int32_t code, char* text, uint64_t size);

/**
 * Describes a result code as a sentence: "NOK: Not found error" for -104.
 *
 * @param code  any number; Success has no sentence
 * @param text  receives the sentence; room for 300 bytes
 * @return 0; -200 for a code without a sentence, and `text` is then "NOK: Undefined Error"; -1 for a null text
 * @threads any
 */
OVI_API int32_t OVI_CALL get_error_string(int32_t code, char* text);

/**
 * Tells the size that the library gives to a record, so that an application in another language can check its own.
 *
 * @param name  "oviFeatureParameter", "oviMemTransferInfo", "oviTLProducerInfos", "oviDeviceInfo", "oviDiscoveryInfo",
 *              "oviDataStreamInfo", "oviImageInfo", "oviEventData", "oviNewBufferEventData" or
 *              "oviAcquistionStatistics"
 * @param size  receives the size in bytes, 0xFFFFFFFF for another name
 * @return 0, or -1 for another name or none, and for a null size
 * @threads any
 */
OVI_API int32_t OVI_CALL oviGetStructSize(const char* name, uint32_t* size);

/**
 * The same as oviGetStructSize, with the size as the result.
 *
 * @param name  as in oviGetStructSize
 * @return the size in bytes, or -1
 * @threads any
 */
OVI_API int32_t OVI_CALL get_struct_size(const char* name);

/**
 * Names the two codes that only real-time producers give: "No Kithara CPUs" and "Hyper-v not disabled".
 *
 * @param code  any number; another one gives "ErrorNumber not yet defined"
 * @param text  receives the name, as in oviGetErrorDescription
 * @param size  bytes at `text`
 * @return Success; InvalidParameter (-105) for a null text or size 0
 * @threads any
 */
OVI_API oviErr OVI_CALL oviGetKitharaErrDescription(int32_t code, char* text, uint64_t size);

/**
 * Names the codes of a family of producers that has none of its own: always "ErrorNumber not yet defined".
 *
 * @param code  any number
 * @param text  receives the text, as in oviGetErrorDescription
 * @param size  bytes at `text`
 * @return Success; InvalidParameter (-105) for a null text or size 0
 * @threads any
 */
OVI_API oviErr OVI_CALL oviGetEuresysErrDescription(int32_t code, char* text, uint64_t size);

/** @} */

/* ---- Lifecycle --------------------------------------------------------------------------------------------------- */

/**
 * @defgroup lifecycle Lifecycle
 * @{
 */

/**
 * Starts the use of the library. A second call before oviClose does nothing.
 *
 * The log goes to standard output and, on Windows, to the debugger's channel. Its level is that of the first call of
 * the process and stays, also after oviClose; with OVI_LOG_LEVEL_NONE nothing is written, nor told to the callback.
 *
 * An application that ends without oviClose has it done for it when the process exits; the callback is not called then.
 *
 * @param logLevel  OVI_LOG_LEVEL_...; any other number means warnings
 * @param callback  receives every line of the log too; null for none. Each oviInit with a callback, after an oviClose,
 *                  adds a delivery: from then on every line arrives once more
 * @param userData  handed to the callback; both must stay valid until the process ends or another oviInit names others
 * @return Success
 * @threads not at the same time as oviInit or oviClose on another thread
 */
OVI_API oviErr OVI_CALL oviInit(uint32_t logLevel, oviLogCallback callback, void* userData);

/**
 * Ends the use of the library: ends waits that are under way, closes every stream, device, interface and producer that
 * is open. Handles from before are unknown afterwards, records of images invalid, the list of devices empty.
 *
 * @return Success, whatever a producer answers; NotInitialized (-100)
 * @threads while no other thread is inside the library, but for waits, which it ends
 */
OVI_API oviErr OVI_CALL oviClose(void);

/**
 * Tells the library's version. Works without oviInit.
 *
 * @param major,minor,patch,build  receive the parts; null for those that do not matter
 * @return Success
 * @threads any
 */
OVI_API oviErr OVI_CALL oviGetLibraryVersion(uint32_t* major, uint32_t* minor, uint32_t* patch, uint32_t* build);

/**
 * Decides whether the GigE producer that has such a switch lists cameras of other subnets, from the next discovery on.
 * Works without oviInit, and outlives oviClose.
 *
 * @param enabled  0 or 1; 0 at the start
 * @return Success
 * @threads any; not from within a log callback
 */
OVI_API oviErr OVI_CALL oviSetIgnoreSubnetEnabled(uint8_t enabled);

/**
 * Decides whether reading a feature always asks the device, instead of a value that was read or written before and
 * cannot have changed. Reads get slower by the way to the device. Works without oviInit, and outlives oviClose.
 *
 * @param disabled  1: always ask the device; 0 at the start
 * @return Success
 * @threads any
 */
OVI_API oviErr OVI_CALL oviSetFeatureCachingDisabled(uint8_t disabled);

/**
 * Tells what oviSetFeatureCachingDisabled set last.
 *
 * @param disabled  receives 0 or 1; must not be null
 * @return Success
 * @threads any
 */
OVI_API oviErr OVI_CALL oviIsFeatureCachingDisabled(uint8_t* disabled);

/** @} */

/* ---- Producers and discovery ------------------------------------------------------------------------------------- */

/**
 * @defgroup discovery Producers and discovery
 *
 * Producers are libraries with the extension ".cti" in the folders of the environment variable GENICAM_GENTL64_PATH and
 * in those that the application names. A folder is searched itself, not what is below it. A producer that cannot be
 * loaded is logged and passed over.
 * @{
 */

/**
 * Counts the producer files in the search path, whether they can be loaded or not.
 *
 * @param count  receives the number
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for null
 * @threads any
 */
OVI_API oviErr OVI_CALL oviGetNumberOfTLProducers(uint32_t* count);

/**
 * Names one of the producer files in the search path.
 *
 * @param path      receives the file's path, cut when it does not fit
 * @param pathSize  bytes at `path`
 * @param index     from 0, less than the number of oviGetNumberOfTLProducers
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for null or an index too large
 * @threads any
 */
OVI_API oviErr OVI_CALL oviGetTLProducerPathByIndex(char* path, uint64_t pathSize, uint32_t index);

/**
 * Asks a producer file about itself. A producer that is not in use is loaded for the question and closed again.
 *
 * @param info      receives the answer; cleared first; after a failure only `filePath` is set. Note that the record
 *                  comes first
 * @param filePath  the file, as oviGetTLProducerPathByIndex names it
 * @return Success, also when the producer does not tell one thing or another; NotInitialized (-100); InvalidParameter
 *         (-105) for null; OVI_ERR_HYPERVISOR_NOT_DISABLED or OVI_ERR_NO_KITHARA_PROCESSORS for a real-time producer on
 *         a machine that is not prepared for it; -10001 when the file cannot be loaded; the producer's error when it
 *         cannot be opened
 * @threads any; waits while another thread uses the producers
 */
OVI_API oviErr OVI_CALL oviGetTLProducerInfobyFilePath(oviTLProducerInfos* info, const char* filePath);

/**
 * Looks for producers, loads those that are new, and lists all cameras that the library serves.
 *
 * The list replaces that of the discovery before. It holds all cameras; the record only the first 16. The others are
 * had from oviGetDeviceInfo.
 *
 * @param info               receives the cameras found, with progress and running 0; cleared first
 * @param timeout            milliseconds for each producer's and each interface's search; some use all of it
 * @param progressCallback   told about the progress, on the calling thread; null for nobody
 * @param searchPath         folders to search, separated by ";" (outside Windows by ":" too); null keeps those of the
 *                           call before, an empty text drops them
 * @param useGivenPathsOnly  with a search path: 1 to leave GENICAM_GENTL64_PATH aside
 * @return Success, also when a producer fails or nothing is found; NotInitialized (-100); InvalidParameter (-105) for a
 *         null record; Busy (-123) from within a progress callback
 * @threads any but that of a progress callback; one discovery at a time, others wait
 */
OVI_API oviErr OVI_CALL oviDiscoverDevices(oviDiscoveryInfo* info, uint64_t timeout,
                                           oviDiscoveryCallback progressCallback, const char* searchPath,
                                           uint8_t useGivenPathsOnly);

/**
 * Describes a camera of the latest discovery.
 *
 * @param index  the camera's position in the list, from 0; valid until the next discovery
 * @param info   receives the record
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for null; NotFound (-104) for an index too large
 * @threads any but that of a progress callback; waits for a discovery that is under way
 */
OVI_API oviErr OVI_CALL oviGetDeviceInfo(uint32_t index, oviDeviceInfo* info);

/** @} */

/* ---- Devices ----------------------------------------------------------------------------------------------------- */

/**
 * @defgroup devices Devices
 * @{
 */

/**
 * Opens a camera of the latest discovery.
 *
 * @param deviceId     its ID, from oviDeviceInfo.deviceID
 * @param handle       receives the device's handle; the application closes it with oviCloseDevice
 * @param timeout      milliseconds for each update of the producer's lists
 * @param accessFlags  OVI_DEVICE_ACCESS_..., as the producer takes it
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for null or an empty ID; NotFound (-104) when the
 *         latest discovery did not list the ID or its interface is gone; NoAccess (-112) or ResourceInUse (-115) when
 *         somebody has the camera open; other errors of the producer
 * @threads any but that of a progress callback; waits for a discovery that is under way
 */
OVI_API oviErr OVI_CALL oviOpenDevice(const char* deviceId, uint64_t* handle, uint64_t timeout, uint32_t accessFlags);

/**
 * Closes a device with its streams and events. Waits on them end with Aborted (-109).
 *
 * @param deviceHandle  is unknown afterwards, as are those of its streams, buffers and events, whatever the result
 * @return Success; NotInitialized (-100); NotFound (-104) for an unknown handle; the producer's error
 * @threads any; no other thread may be using the device
 */
OVI_API oviErr OVI_CALL oviCloseDevice(uint64_t deviceHandle);

/**
 * Tells whether the device is served by the S2i GigE producer.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param out           receives the answer; false after a failure
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for null; NotFound (-104) for an unknown handle; the
 *         producer's error when it does not say what it is
 * @threads any
 */
OVI_API oviErr OVI_CALL oviIsUsingS2iTL(uint64_t deviceHandle, bool* out);

/**
 * Tells whether the device is served by the Kithara real-time GigE producer.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param out           receives the answer; false after a failure
 * @return as oviIsUsingS2iTL
 * @threads any
 */
OVI_API oviErr OVI_CALL oviIsUsingKitharaTL(uint64_t deviceHandle, bool* out);

/**
 * Tells whether the device is served by one of the producers that can record.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param out           receives the answer; false after a failure
 * @return as oviIsUsingS2iTL
 * @threads any
 */
OVI_API oviErr OVI_CALL oviIsUsingNimboTL(uint64_t deviceHandle, bool* out);

/**
 * Takes the camera's features from a description file instead of from the camera.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param path          an XML file, or a ZIP archive with one; used for this device until it is closed
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for null or a file that is not there or holds no
 *         description; NotFound (-104) for an unknown handle; another code when the device does not answer. After a
 *         failure the description in use stays
 * @threads any; callbacks of oviRegisterInvalidateCB on the old description end
 */
OVI_API oviErr OVI_CALL oviSetRemoteDeviceXMLFile(uint64_t deviceHandle, const char* path);

/** @} */

/* ---- Features ---------------------------------------------------------------------------------------------------- */

/**
 * @defgroup features Features
 *
 * A feature is found by the handle of any opened module, the selector of the module whose feature it is
 * (OVI_MODULE_...), seen from there upwards, and its name. The camera's own features, OVI_MODULE_REMOTE_DEVICE, are
 * found from the device's handle alone. The types are not converted into each other; only texts, oviGetFeature and
 * oviSetFeature, suit them all.
 *
 * All functions here share these results, beside those that they name:
 *  - NotInitialized (-100).
 *  - InvalidParameter (-105) for a null name or output, and for handle 0; lists of entries or children say NotFound.
 *  - NotFound (-104): the handle is unknown, there is no such module above it, the module has no features, it has no
 *    feature of that name, or the feature is of another type.
 *  - NoAccess (-112): an integer, float, boolean or string cannot be read, or written, now.
 *  - Unknown (-200): the description forbids it or is broken: an enumeration, command or register that cannot be used
 *    now, a value out of range or off its increment, a dependency that cannot be read. The log tells.
 *  - the producer's error, such as IoError (-118), when the device does not answer.
 *
 * @threads any, at the same time too: calls on one module's features run one after the other
 * @{
 */

/**
 * Reads an integer feature.
 *
 * @param handle,name,selector  which feature, see above
 * @param value                 receives it. Of an enumeration, the call succeeds but leaves this as it is: use
 *                              oviGetFeatureEnum
 * @return as above
 */
OVI_API oviErr OVI_CALL oviGetFeatureInt(uint64_t handle, const char* name, int64_t* value, uint32_t selector);

/**
 * Reads a float feature.
 *
 * @param handle,name,selector  which feature, see above
 * @param value                 receives it
 * @return as above
 */
OVI_API oviErr OVI_CALL oviGetFeatureFloat(uint64_t handle, const char* name, double* value, uint32_t selector);

/**
 * Reads a boolean feature.
 *
 * @param handle,name,selector  which feature, see above
 * @param value                 receives it
 * @return as above
 */
OVI_API oviErr OVI_CALL oviGetFeatureBool(uint64_t handle, const char* name, bool* value, uint32_t selector);

/**
 * Reads a string feature, or the name of an enumeration's current entry.
 *
 * @param handle,name,selector  which feature, see above
 * @param buffer                receives the text, cut when it does not fit; null to ask for the size
 * @param size                  in: bytes at `buffer`, 0 to ask for the size; out: when asked, the bytes needed with the
 *                              NUL
 * @return as above
 */
OVI_API oviErr OVI_CALL oviGetFeatureString(uint64_t handle, const char* name, char* buffer, size_t* size,
                                            uint32_t selector);

/**
 * Writes an integer feature, if the value is within its limits and on its increment.
 *
 * @param handle,name,selector  which feature, see above
 * @param value                 the value, in the feature's unit
 * @return as above
 */
OVI_API oviErr OVI_CALL oviSetFeatureInt(uint64_t handle, const char* name, int64_t value, uint32_t selector);

/**
 * Writes a float feature, if the value is within its limits.
 *
 * @param handle,name,selector  which feature, see above
 * @param value                 the value, in the feature's unit
 * @return as above
 */
OVI_API oviErr OVI_CALL oviSetFeatureFloat(uint64_t handle, const char* name, double value, uint32_t selector);

/**
 * Writes a boolean feature.
 *
 * @param handle,name,selector  which feature, see above
 * @param value                 the value
 * @return as above
 */
OVI_API oviErr OVI_CALL oviSetFeatureBool(uint64_t handle, const char* name, bool value, uint32_t selector);

/**
 * Writes a string feature, or sets an enumeration as oviSetFeatureEnum does.
 *
 * @param handle,name,selector  which feature, see above
 * @param value                 the text; not null
 * @return as above
 */
OVI_API oviErr OVI_CALL oviSetFeatureString(uint64_t handle, const char* name, const char* value, uint32_t selector);

/**
 * Sets an enumeration feature.
 *
 * @param handle,name,selector  which feature, see above
 * @param entryName             the entry's name, exactly; NotFound (-104) when the enumeration has no such entry
 * @return as above
 */
OVI_API oviErr OVI_CALL oviSetFeatureEnum(uint64_t handle, const char* name, const char* entryName, uint32_t selector);

/**
 * Describes the current entry of an enumeration feature.
 *
 * @param handle,name,selector  which feature, see above
 * @param entry                 receives the entry: intValue, stringValue (its name) and names; other fields stay as
 *                              they are. enumEntryIndex counts all entries, those too that cannot be used now
 * @return as above, but InvalidParameter (-105) for a feature that is no enumeration
 */
OVI_API oviErr OVI_CALL oviGetFeatureEnum(uint64_t handle, const char* name, oviFeatureParameter* entry,
                                          uint32_t selector);

/**
 * Starts a command feature, and does not wait until it is done.
 *
 * @param handle,name,selector  which feature, see above
 * @return as above
 */
OVI_API oviErr OVI_CALL oviExecuteCommand(uint64_t handle, const char* name, uint32_t selector);

/**
 * Tells whether a command is still being executed.
 *
 * @param handle,name,selector  which feature, see above
 * @param active                receives the answer
 * @return as above, but InvalidParameter (-105) for a feature that is no command
 */
OVI_API oviErr OVI_CALL oviIsCommandActive(uint64_t handle, const char* name, bool* active, uint32_t selector);

/**
 * Reads a register feature, byte by byte.
 *
 * @param handle,name,selector  which feature, see above
 * @param buffer                receives the bytes; null to ask for the length
 * @param length                in: bytes to read, never more than the register has; 0 to ask for the length; out: when
 *                              asked, the register's length in bytes
 * @return as above, but InvalidParameter (-105) for a feature that is no register
 */
OVI_API oviErr OVI_CALL oviGetFeatureReg(uint64_t handle, const char* name, uint8_t* buffer, int64_t* length,
                                         uint32_t selector);

/**
 * Writes a register feature, byte by byte.
 *
 * @param handle,name,selector  which feature, see above
 * @param buffer                the bytes
 * @param length                their number, not 0
 * @return as above, but InvalidParameter (-105) for a feature that is no register
 */
OVI_API oviErr OVI_CALL oviSetFeatureReg(uint64_t handle, const char* name, const uint8_t* buffer, int64_t length,
                                         uint32_t selector);

/**
 * Describes a feature: its kind, names, access, value and limits.
 *
 * @param handle,name,selector  which feature, see above
 * @param record                receives the description; cleared first. A failure leaves what could be read in it; a
 *                              feature that cannot be used now is described by its names and kind, with Success
 * @return as above; InvalidParameter (-105) also for an enumeration whose value fits no entry, with the rest filled
 */
OVI_API oviErr OVI_CALL oviGetFeatureParameter(uint64_t handle, const char* name, oviFeatureParameter* record,
                                               uint32_t selector);

/**
 * Tells how a feature can be accessed now.
 *
 * @param handle,name,selector  which feature, see above
 * @param accessMode            receives OVI_ACCESS_...
 * @return as above, but Unknown (-200) for a name that the module does not have, and for an unknown handle
 */
OVI_API oviErr OVI_CALL oviGetFeatureAccessMode(uint64_t handle, const char* name, uint32_t* accessMode,
                                                uint32_t selector);

/**
 * Counts the entries of an enumeration that can be used now.
 *
 * @param handle,name,selector  which feature, see above
 * @param count                 receives the number; 0 after a failure
 * @return as above
 */
OVI_API oviErr OVI_CALL oviGetFeatureEnumEntryCount(uint64_t handle, const char* name, uint32_t* count,
                                                    uint32_t selector);

/**
 * Describes an entry of an enumeration.
 *
 * @param handle,name,selector  which feature, see above
 * @param index                 0 up to the count of oviGetFeatureEnumEntryCount; InvalidParameter (-105) beyond it
 * @param record                receives the entry, cleared first
 * @return as above
 */
OVI_API oviErr OVI_CALL oviGetFeatureEnumEntryByIndex(uint64_t handle, const char* name, int32_t index,
                                                      oviFeatureParameter* record, uint32_t selector);

/**
 * Describes an entry of an enumeration that is found by its name.
 *
 * @param handle,name,selector  which feature, see above
 * @param entryName             the name, exactly; NotFound (-104) when there is no such entry or it cannot be used now
 * @param record                receives the entry, cleared first
 * @return as above
 */
OVI_API oviErr OVI_CALL oviGetFeatureEnumEntryByName(uint64_t handle, const char* name, const char* entryName,
                                                     oviFeatureParameter* record, uint32_t selector);

/**
 * Lists the entries of an enumeration of the camera in one text, separated by blanks.
 *
 * @param handle           a device
 * @param name             the enumeration's name
 * @param text             receives the list. It is not bounded: there must be room for all names, their separators and
 *                         the NUL
 * @param useDisplayNames  1: display names, each in angle brackets; 0: names
 * @return as above, but Success with an empty text for a feature that is no enumeration
 */
OVI_API oviErr OVI_CALL oviGetFeatureAllEnums(uint64_t handle, const char* name, char* text, uint32_t useDisplayNames);

/**
 * Steps through the children of a feature: what a category contains, what a selector selects, an enumeration's entries.
 * "Root" is the topmost category. Call it with index 0, 1, 2, ... until it does not succeed.
 *
 * @param handle,selector  which module, see above
 * @param parentName       the feature whose children are asked for
 * @param index            the child's position, from 0; NotFound (-104) beyond the last
 * @param childName        receives the child's name, cut when it does not fit
 * @param childNameSize    bytes at `childName`
 * @param childType        receives OVI_FEATURE_...; must not be null
 * @return as above
 */
OVI_API oviErr OVI_CALL oviIterateFeatureTree(uint64_t handle, const char* parentName, uint32_t index, char* childName,
                                              size_t childNameSize, uint32_t* childType, uint32_t selector);

/**
 * Lists all features of a camera as a tree: kind, name and depth of each. A feature of two categories is listed in
 * both, but what it contains only once.
 *
 * @param handle            a device
 * @param list              `features` points to the application's array, which is not bounded: walk the tree with
 *                          oviIterateFeatureTree first to know how many records it takes. `count` and `maxDepth` are
 *                          written
 * @param includeInvisible  not 0: list invisible features too
 * @return the result of the last feature read; Success with `count` 0 for an empty tree and for an unknown handle
 */
OVI_API oviErr OVI_CALL oviGetFeatureList(uint64_t handle, FEATURE_PARAM_LIST_STRUCT* list, int includeInvisible);

/**
 * Reads any feature of the camera as text: numbers in their notation and precision, addresses in hexadecimal with 0x,
 * booleans as 0 and 1, enumerations by the current entry's name, a command as 1 while it runs, else 0, a register's
 * bytes up to the first zero.
 *
 * @param handle,name  which feature, see above
 * @param text         receives the text; room for 512 bytes; empty after a failure
 * @return as above; InvalidParameter (-105) also for a category, an entry, or a register of more than 512 bytes
 */
OVI_API oviErr OVI_CALL oviGetFeature(uint64_t handle, const char* name, char* text);

/**
 * Writes any feature of the camera from text.
 *
 * @param handle,name  which feature, see above
 * @param text         booleans: "0" or "1". Integers: decimal, or hexadecimal after an "x". Floats: digits, "-" and
 *                     ".", without exponent. Enumerations: an entry's name. Commands: anything, the command is
 *                     executed, up to five times while that fails. Registers: 512 bytes, whatever they hold
 * @return as above; InvalidParameter (-105) also for a text that does not suit the feature
 */
OVI_API oviErr OVI_CALL oviSetFeature(uint64_t handle, const char* name, const char* text);

/**
 * As oviGetFeature, on any module.
 *
 * @param handle,name,selector  which feature, see above
 * @param text                  receives the text; room for 512 bytes; empty after a failure
 * @return as oviGetFeature
 */
OVI_API oviErr OVI_CALL oviGetFeatureOnModule(uint64_t handle, const char* name, char* text, uint32_t selector);

/**
 * As oviSetFeature, on any module.
 *
 * @param handle,name,selector  which feature, see above
 * @param text                  as for oviSetFeature
 * @return as oviSetFeature
 */
OVI_API oviErr OVI_CALL oviSetFeatureOnModule(uint64_t handle, const char* name, const char* text, uint32_t selector);

/**
 * Reads memory of a camera.
 *
 * @param handle   a device
 * @param address  in the camera's register space
 * @param buffer   receives the bytes; those of a big-endian camera in reverse order, so that a number of that size is
 *                 right on a little-endian machine
 * @param length   bytes, not 0
 * @return as above; NotFound (-104) for a handle that is no device's
 */
OVI_API oviErr OVI_CALL oviReadMemory(uint64_t handle, uint64_t address, uint8_t* buffer, uint64_t length);

/**
 * Writes memory of a camera.
 *
 * @param handle   a device
 * @param address  in the camera's register space
 * @param buffer   the bytes, in the order in which oviReadMemory gives them
 * @param length   bytes, not 0
 * @return as oviReadMemory
 */
OVI_API oviErr OVI_CALL oviWriteMemory(uint64_t handle, uint64_t address, const uint8_t* buffer, uint64_t length);

/**
 * Reads a 32-bit register of a camera as text.
 *
 * @param handle   a device
 * @param address  decimal, or hexadecimal after an "x"; InvalidParameter (-105) for another text
 * @param value    receives the number in hexadecimal with 0x and four digits or more; room for 11 bytes
 * @param direct   not 0: the register at the address itself; 0: through the camera's indirect register pair
 * @return as above
 */
OVI_API oviErr OVI_CALL oviGetRegisterValue(uint64_t handle, const char* address, char* value, uint32_t direct);

/**
 * Writes a 32-bit register of a camera from text.
 *
 * @param handle   a device
 * @param address  as above
 * @param value    decimal, or hexadecimal after an "x"; InvalidParameter (-105) for another text
 * @param direct   as above
 * @return as above
 */
OVI_API oviErr OVI_CALL oviSetRegisterValue(uint64_t handle, const char* address, const char* value, uint32_t direct);

/**
 * Tells the byte order of a module's registers.
 *
 * @param handle        a device for OVI_MODULE_REMOTE_DEVICE; else the module itself
 * @param selector      OVI_MODULE_REMOTE_DEVICE asks the camera; any other one the module of the handle, not one above
 * @param littleEndian  receives the answer
 * @return as above
 */
OVI_API oviErr OVI_CALL oviIsModuleLittleEndian(uint64_t handle, int32_t selector, bool* littleEndian);

/**
 * Has a callback called when a feature may have changed: because it or one that it depends on was written, or because a
 * polled value was read anew. One callback a feature; a later registration replaces the earlier.
 *
 * @param handle,name,selector  which feature, see above
 * @param context               handed to the callback; with null it is not called
 * @param callback              called on the thread that changed the feature or on one of the library's own, until
 *                              oviUnRegisterInvalidateCB or the module's closing
 * @return as above, but Success also for a name that no category of the module leads to: it is never called then
 */
OVI_API oviErr OVI_CALL oviRegisterInvalidateCB(uint64_t handle, const char* name, void* context,
                                                oviInvalidateCallback callback, uint32_t selector);

/**
 * Ends the calls of a callback of oviRegisterInvalidateCB. One that is under way on another thread may still be running
 * when this returns.
 *
 * @param handle,name,selector  which feature, see above
 * @return as above, but Success also for a feature without a callback
 */
OVI_API oviErr OVI_CALL oviUnRegisterInvalidateCB(uint64_t handle, const char* name, uint32_t selector);

/** @} */

/* ---- Acquisition ------------------------------------------------------------------------------------------------- */

/**
 * @defgroup acquisition Acquisition
 *
 * A stream has a pool of buffers. A buffer is filled by the producer, handed to the application, and used again when
 * the application gives it back. Pixels are never copied.
 * @{
 */

/**
 * Counts the data streams of a device.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param count         receives the number
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for null; NotFound (-104); the producer's error
 * @threads any
 */
OVI_API oviErr OVI_CALL oviGetNumberOfDataStreams(uint64_t deviceHandle, uint32_t* count);

/**
 * Describes a data stream of a device.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param streamIndex   from 0, less than the number of oviGetNumberOfDataStreams
 * @param info          receives the record; cleared first
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for null; NotFound (-104) for an unknown handle or an
 *         index too large; the producer's error
 * @threads any
 */
OVI_API oviErr OVI_CALL oviGetDataStreamInfo(uint64_t deviceHandle, uint32_t streamIndex, oviDataStreamInfo* info);

/**
 * Opens a data stream and gives it its buffers, all queued.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param streamIndex   from 0, less than the number of oviGetNumberOfDataStreams
 * @param streamHandle  receives the stream's handle. It is given out also when the buffers fail; the application closes
 *                      it with oviCloseDataStream
 * @param bufferCount   number of buffers; a handful lets the application fall behind for as many images
 * @param bufferSize    bytes of each; 0 for what an image needs now
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for null or an index too large; NotFound (-104) for
 *         an unknown device; ResourceInUse (-115) for a stream that is open already; OutOfMemory (-122) or
 *         ResourceExhausted (-121) when not all buffers could be had; other errors of the producer
 * @threads any
 */
OVI_API oviErr OVI_CALL oviCreateDataStream(uint64_t deviceHandle, uint32_t streamIndex, uint64_t* streamHandle,
                                            uint32_t bufferCount, uint64_t bufferSize);

/**
 * Closes a data stream with its buffers. Waits on it end with Aborted (-109). Records of its images stay readable, the
 * pixels do not.
 *
 * @param streamHandle  is unknown afterwards, as are those of its buffers and events, whatever the result
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for 0; NotFound (-104); the producer's error
 * @threads any; stop the acquisition first
 */
OVI_API oviErr OVI_CALL oviCloseDataStream(uint64_t streamHandle);

/**
 * Gives all streams of a device new buffers when theirs are too small for the images that the camera sends now. To be
 * called after a change of the image's size or format. Records keep their addresses, buffers get new handles.
 *
 * @param deviceHandle  of oviOpenDevice
 * @return Success, also when there was nothing to do; NotInitialized (-100); NotFound (-104) for an unknown handle; of
 *         several streams the result of the last
 * @threads any; not while the acquisition is running, nor while images are with the application
 */
OVI_API oviErr OVI_CALL oviCheckAndReallocBuffers(uint64_t deviceHandle);

/**
 * Starts the acquisition: the streams first, then, with the transport layer's features locked, the camera.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param imageCount    images to acquire on each stream; OVI_INFINITE_IMAGES for no end
 * @return the result of the camera's "AcquisitionStart". A stream that does not start is logged, and those behind it
 *         are not started. NotInitialized (-100); NotFound (-104) for an unknown handle
 * @threads any
 */
OVI_API oviErr OVI_CALL oviStartAcquisition(uint64_t deviceHandle, uint32_t imageCount);

/**
 * Stops the acquisition: the camera first, then the streams. All buffers are queued for the next start, those that were
 * filled and not fetched too. Waits for images end with Aborted (-109).
 *
 * @param deviceHandle  of oviOpenDevice
 * @return Success, or the code of the last step that failed: all are done in any case. ResourceInUse (-115) when
 *         nothing ran, with many producers. NotInitialized (-100); NotFound (-104) for an unknown handle
 * @threads any, also while others wait for images
 */
OVI_API oviErr OVI_CALL oviStopAcquisition(uint64_t deviceHandle);

/**
 * Stops the acquisition without waiting for the image that is being transferred, and with the camera's
 * "AcquisitionAbort".
 *
 * @param deviceHandle  of oviOpenDevice
 * @return as oviStopAcquisition
 * @threads any, also while others wait for images
 */
OVI_API oviErr OVI_CALL oviAbortAcquisition(uint64_t deviceHandle);

/**
 * Tells the number of bytes of an image, from the camera's "PayloadSize".
 *
 * @param deviceHandle  of oviOpenDevice
 * @param size          receives the bytes
 * @return as the feature functions
 * @threads any
 */
OVI_API oviErr OVI_CALL oviGetImageSize(uint64_t deviceHandle, int64_t* size);

/**
 * Registers an event, so that it can be waited for.
 *
 * @param moduleHandle    the data stream for OVI_EVENT_NEW_BUFFER; else any module
 * @param kind            OVI_EVENT_...
 * @param eventHandle     receives the event's handle; the application ends it with oviUnregisterEvent
 * @param moduleSelector  for kinds other than OVI_EVENT_NEW_BUFFER: whose event it is, seen from the module upwards
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for null or an unknown kind; NotFound (-104) for an
 *         unknown handle, a module that is no stream, or a selector without a module; the producer's error, such as
 *         ResourceInUse (-115) for a second registration or NotImplemented (-116)
 * @threads any
 */
OVI_API oviErr OVI_CALL oviRegisterEvent(uint64_t moduleHandle, uint32_t kind, uint64_t* eventHandle,
                                         uint32_t moduleSelector);

/**
 * Waits until the event happens, that is for OVI_EVENT_NEW_BUFFER: until a buffer is filled, or until the time is over.
 *
 * Allocates nothing and holds no lock while it waits for an image.
 *
 * @param eventHandle  of oviRegisterEvent
 * @param timeout      milliseconds; OVI_INFINITE_TIMEOUT waits for ever, 0 does not wait
 * @param data         receives the record: an oviNewBufferEventData for OVI_EVENT_NEW_BUFFER, else an oviEventData. It
 *                     belongs to the library. That of an image stays as it is until the buffer is released, and the
 *                     pointer is untouched unless an image arrived; that of another event is given out whatever the
 *                     result, and stays until the next wait for it
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for 0 or null; NotFound (-104) for an unknown handle;
 *         Timeout (-108), a normal outcome; Aborted (-109) after oviEventKill, a stop or a closing; InvalidBuffer
 *         (-114) when an image arrived incomplete, and its buffer is queued again already; the producer's error
 * @threads any; one waiter an event gets an image, several share them out
 */
OVI_API oviErr OVI_CALL oviWaitForEvent(uint64_t eventHandle, uint64_t timeout, void** data);

/**
 * Waits for an image as oviWaitForEvent does, and copies its record into one of the application's own.
 *
 * @param eventHandle  of oviRegisterEvent
 * @param record       receives a copy of the record; cleared first. oviReleaseImage takes the copy
 * @param timeout      milliseconds, as above
 * @return as oviWaitForEvent; Success with an empty record for an event of another kind
 * @threads as oviWaitForEvent
 */
OVI_API oviErr OVI_CALL oviGetNextImage(uint64_t eventHandle, oviNewBufferEventData* record, uint64_t timeout);

/**
 * Gives a buffer back: the producer may fill it again.
 *
 * @param streamHandle  the stream that the image came from
 * @param record        the record of the image, or a copy of it; read only
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for 0 or null; NotFound (-104) for a buffer that is
 *         unknown, as after the stream's closing; the producer's error for a buffer that is queued already. A stream
 *         that is unknown is logged only
 * @threads any; nobody may use the image any more
 */
OVI_API oviErr OVI_CALL oviReleaseImage(uint64_t streamHandle, oviNewBufferEventData* record);

/**
 * Ends the waits for an event that are under way on other threads, with Aborted (-109), and drops what is queued. A
 * thread that has just read an event, or that comes to wait only now, meets it with its next wait. The buffers of
 * images that are dropped are filled again after the next oviStopAcquisition only: to go on meanwhile, wait with a
 * time-out instead.
 *
 * @param eventHandle  of oviRegisterEvent
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for 0; NotFound (-104); the producer's error
 * @threads any
 */
OVI_API oviErr OVI_CALL oviEventKill(uint64_t eventHandle);

/**
 * Ends the registration of an event.
 *
 * @param eventHandle  is unknown afterwards
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for 0; NotFound (-104); the producer's error
 * @threads any; nobody may be waiting for it
 */
OVI_API oviErr OVI_CALL oviUnregisterEvent(uint64_t eventHandle);

/**
 * Tells how a stream is doing.
 *
 * @param streamHandle  of oviCreateDataStream
 * @param statistics    receives the counters; cleared first; -1 where the producer does not count
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for null; NotFound (-104); the producer's error
 * @threads any
 */
OVI_API oviErr OVI_CALL oviGetAcquisitionStatistics(uint64_t streamHandle, oviAcquistionStatistics* statistics);

/**
 * Tells how many bits a pixel takes. Works without oviInit.
 *
 * @param pixelFormat  a code of the Pixel Format Naming Convention
 * @return bits; 0 for format 0, 8 for a format of unknown width
 * @threads any
 */
OVI_API uint32_t OVI_CALL oviBitsPerPixelFromFormat(uint32_t pixelFormat);

/**
 * Sets the format and size of a camera's images and, for the whole process, what the scan functions below do.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param image         pixelFormat, width and height, each set unless 0; a pixel format that the library has no name
 *                      for is set to "RGB8". The other fields do not matter
 * @param timeout       milliseconds that a scan waits for an image; 0 to keep the one set before, at first 3000
 * @param filterDriver  whether a scan has the S2i producer use its filter driver; at first 1
 * @param scanFlag      whether a scan takes another image when one is not as high as the camera's "Height"; at first 0
 * @return as the feature functions, from the first that failed
 * @threads any; not during a scan
 */
OVI_API oviErr OVI_CALL oviSetImageParameter(uint64_t deviceHandle, oviImageInfo* image, int64_t timeout,
                                             uint8_t filterDriver, uint8_t scanFlag);

/**
 * Raises a GigE camera's packet size to its maximum.
 *
 * @param deviceHandle  of oviOpenDevice
 * @return Success, also when it is there already; else as the feature functions
 * @threads any
 */
OVI_API oviErr OVI_CALL oviSetDeviceMaxPacketSize(uint64_t deviceHandle);

/**
 * Tells whether a camera is in its maintenance mode.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param enabled       receives 0 or 1
 * @return as oviReadMemory
 * @threads any
 */
OVI_API oviErr OVI_CALL oviGetMaintenanceMode(uint64_t deviceHandle, uint8_t* enabled);

/**
 * Switches a camera's maintenance mode. Tries up to three times, half a second apart.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param enable        0 or 1
 * @param address       of the mode's register; all ones for the usual one
 * @param value         what switches it on; all ones for the usual one
 * @return as oviReadMemory and oviWriteMemory
 * @threads any
 */
OVI_API oviErr OVI_CALL oviSetMaintenanceMode(uint64_t deviceHandle, uint8_t enable, uint64_t address, uint32_t value);

/** @} */

/* ---- Scan helpers ------------------------------------------------------------------------------------------------ */

/**
 * @defgroup scan Scan helpers
 *
 * Images without streams and events: each call opens a stream, takes its images and closes it. They block the calling
 * thread and report what goes wrong on standard output too.
 * @{
 */

/**
 * Takes images until there are enough of them, the time is over, or oviScanImgStop is called.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param callback      receives each image, on the calling thread; the image is given back when it returns
 * @param imageNumber   with OVI_SCAN_IMAGES: how many
 * @param mode          OVI_SCAN_IMAGES or OVI_SCAN_MINUTES; either with OVI_SCAN_CHECK_PATTERN to compare every image
 *                      with the camera's test pattern
 * @param minutes       with OVI_SCAN_MINUTES: how long
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for an impossible argument; InvalidValue (-120) for a
 *         pixel format that cannot be compared; ResourceExhausted (-121) when images were lost that should have been
 *         compared; Timeout (-108) when no image comes or the camera does not stop; the code of the step that failed
 * @threads any; one scan a device
 */
OVI_API oviErr OVI_CALL oviScanImg(uint64_t deviceHandle, oviScanCallback callback, int32_t imageNumber, uint32_t mode,
                                   int32_t minutes);

/**
 * Ends the scan that is running on a device, after the image that it is at. One that has not started yet is not
 * touched.
 *
 * @param deviceHandle  of oviOpenDevice
 * @return Success, also when there is no scan; NotInitialized (-100)
 * @threads any
 */
OVI_API oviErr OVI_CALL oviScanImgStop(uint64_t deviceHandle);

/**
 * Takes one image.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param destination   receives the pixels; room for the whole image, see oviGetImageSize
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for null; the code of the step that failed
 * @threads any; one scan at a time, since oviGetLastImageInfo is one for the process
 */
OVI_API oviErr OVI_CALL oviScanImage(uint64_t deviceHandle, uint8_t* destination);

/**
 * Takes images one at a time, and keeps the stream open between them.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param phase         0 opens stream and event; 1 takes one image and releases the one before; 2 releases and closes
 * @param stream        the application's variable for the stream's handle, the same in all phases
 * @param event         the application's variable for the event's handle, the same in all phases
 * @param record        the application's record of the image, the same in all phases; zeros at first
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for null; the first failure. Other phases do nothing
 * @threads any; one scan at a time
 */
OVI_API oviErr OVI_CALL oviScanImageCont(uint64_t deviceHandle, uint32_t phase, uint64_t* stream, uint64_t* event,
                                         oviNewBufferEventData* record);

/**
 * Takes one image from each of a device's first streams.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param streamCount   number of streams, not 0
 * @param destinations  for each stream, where its pixels go, with room for the whole image; null for none
 * @param infos         for each stream, receives the image's geometry; null for none at all
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for no streams; NoImageDataAvailable (-103) when a
 *         stream delivered nothing in time, with the images of the others copied; the code of the step that failed
 * @threads any; one scan a device
 */
OVI_API oviErr OVI_CALL oviScanStreamImage(uint64_t deviceHandle, uint32_t streamCount, uint8_t* const* destinations,
                                           oviImageInfo* infos);

/**
 * Tells the geometry of the last image that one of the functions above took in this process; zeros before the first.
 *
 * @param info  receives it
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for null
 * @threads any; not during a scan
 */
OVI_API oviErr OVI_CALL oviGetLastImageInfo(oviImageInfo* info);

/** @} */

/* ---- File transfer ----------------------------------------------------------------------------------------------- */

/**
 * @defgroup transfer File transfer
 *
 * A camera has files, each with a name that its feature "FileSelector" lists. Feature caching is off during a transfer.
 * @{
 */

/**
 * Writes a file of this machine into a camera's file: firmware, tables, settings.
 *
 * @param deviceHandle      of oviOpenDevice
 * @param filePath          the file to read
 * @param fileSelector      the camera's file; oviGetUpdateFileType knows which one suits
 * @param timeout           milliseconds that the camera may be silent
 * @param progressFunction  told about the progress on the calling thread, and may stop the transfer; null for nobody
 * @param progressContext   handed to the function
 * @return Success: the camera said so. NotInitialized (-100); InvalidParameter (-105) for null or a file that the
 *         camera does not have; NotFound (-104) for an unknown device, or a file of this machine that cannot be read or
 *         is empty; Aborted (-109) when the function stopped it; FileOperationFailure (-110) when the camera refuses
 *         the file; Unknown (-200) when it reports an error for a part of it; the code of the feature that failed
 * @threads any; one transfer a device, and nobody else at its file features
 */
OVI_API oviErr OVI_CALL oviFileDownloadToDevice(uint64_t deviceHandle, const char* filePath, const char* fileSelector,
                                                uint64_t timeout, oviFileTransferCallback progressFunction,
                                                void* progressContext);

/**
 * Reads a camera's file into a file of this machine, which appears only when it is complete and its checksum is right.
 *
 * @param deviceHandle      of oviOpenDevice
 * @param filePath          the file to write; one that exists is replaced
 * @param fileSelector      the camera's file
 * @param timeout           milliseconds that the camera may be silent
 * @param progressFunction  told about the progress, as in oviFileDownloadToDevice; null for nobody
 * @param progressContext   handed to the function
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for null or a file that the camera does not have;
 *         NotFound (-104) for an unknown device; Aborted (-109) when the function stopped it; FileOperationFailure
 *         (-110) when the camera reports a failure, a size or checksum is wrong, or the file cannot be written here;
 *         FileOperationFatal (-111) when the camera reports a fatal error; the code of the feature that failed
 * @threads as oviFileDownloadToDevice
 */
OVI_API oviErr OVI_CALL oviFileUploadFromDevice(uint64_t deviceHandle, const char* filePath, const char* fileSelector,
                                                uint64_t timeout, oviFileTransferCallback progressFunction,
                                                void* progressContext);

/**
 * Tells from a file's first bytes which of the camera's files it is meant for.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param filePath      the file to look at
 * @param type          receives the name, cut when it does not fit; untouched when the type or the file cannot be read
 * @param typeSize      bytes at `type`
 * @return Success; NotInitialized (-100); InvalidParameter (-105) for null or size 0; NotFound (-104) for an unknown
 *         device
 * @threads any
 */
OVI_API oviErr OVI_CALL oviGetUpdateFileType(uint64_t deviceHandle, const char* filePath, char* type,
                                             uint64_t typeSize);

/** @} */

/* ---- Recording --------------------------------------------------------------------------------------------------- */

/**
 * @defgroup recording Recording
 *
 * Some producers can record images and play them back. What the pointers point to is theirs: see their documentation.
 * The functions share these results:
 *  - Success; NotInitialized (-100).
 *  - SystemNotAvailable (-106) for a handle that is no device's.
 *  - 0xF1000000 - s, as a signed number, when the producer answers with the status s.
 *
 * When the device's producer has no such function, a std::runtime_error leaves the call: only C++ applications can
 * catch it, so ask oviNimboIsRecordingAvailable first.
 *
 * @threads as the producer allows
 * @{
 */

/**
 * Tells whether the device can record. Throws nothing.
 *
 * @param deviceHandle  of oviOpenDevice
 * @return whether it can; false also without oviInit or a device
 */
OVI_API bool OVI_CALL oviNimboIsRecordingAvailable(uint64_t deviceHandle);

/**
 * Starts recording.
 *
 * @param deviceHandle  of oviOpenDevice
 * @return as above
 */
OVI_API int32_t OVI_CALL oviNimboStartRecording(uint64_t deviceHandle);

/**
 * Ends recording.
 *
 * @param deviceHandle  of oviOpenDevice
 * @return as above
 */
OVI_API int32_t OVI_CALL oviNimboStopRecording(uint64_t deviceHandle);

/**
 * Sets the rate of recording.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param frameRate     images a second; opening a device sets 30
 * @return as above
 */
OVI_API int32_t OVI_CALL oviNimboSetFrameRate(uint64_t deviceHandle, uint32_t frameRate);

/**
 * Decides whether recorded images are converted to RGB.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param enabled       whether they are
 * @return as above
 */
OVI_API int32_t OVI_CALL oviNimboSetRGBConversionEnabled(uint64_t deviceHandle, bool enabled);

/**
 * Opens what was recorded.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param argument      handed to the producer
 * @return as above
 */
OVI_API int32_t OVI_CALL oviNimboOpenRecordings(uint64_t deviceHandle, void* argument);

/**
 * Tells what was recorded.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param info          a record of the producer's
 * @return as above
 */
OVI_API int32_t OVI_CALL oviNimboGetRecordsInfo(uint64_t deviceHandle, void* info);

/**
 * Selects a recording.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param index         its position, from 0
 * @return as above
 */
OVI_API int32_t OVI_CALL oviNimboSelectRecording(uint64_t deviceHandle, uint32_t index);

/**
 * Describes a recording.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param index         its position, from 0
 * @param data          a record of the producer's
 * @return as above
 */
OVI_API int32_t OVI_CALL oviNimboGetRecordingData(uint64_t deviceHandle, uint32_t index, void* data);

/**
 * Reads the next image of the selected recording.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param argument      handed to the producer
 * @return the producer's reference to the image, given back with oviNimboFreeRecordImage; 0 without oviInit or a device
 */
OVI_API uint64_t OVI_CALL oviNimboReadRecording(uint64_t deviceHandle, void* argument);

/**
 * Gives an image back.
 *
 * @param deviceHandle  of oviOpenDevice
 * @param image         the reference of oviNimboReadRecording
 * @return as above
 */
OVI_API int32_t OVI_CALL oviNimboFreeRecordImage(uint64_t deviceHandle, void* image);

/**
 * Closes what was recorded.
 *
 * @param deviceHandle  of oviOpenDevice
 * @return as above
 */
OVI_API int32_t OVI_CALL oviNimboCloseRecordings(uint64_t deviceHandle);

/**
 * Deletes what was recorded.
 *
 * @param deviceHandle  of oviOpenDevice
 * @return as above
 */
OVI_API int32_t OVI_CALL oviNimboClearAllRecordings(uint64_t deviceHandle);

/** @} */

/* ---- Diagnostics ------------------------------------------------------------------------------------------------- */

/**
 * @defgroup diagnostics Diagnostics
 * @{
 */

/**
 * Has a report written into the folder for temporary files when the process crashes: a mini-dump on Windows, where a
 * message says so and the process ends; elsewhere a text, and the system's own handling of the crash follows. Works
 * without oviInit; further calls do nothing, and it cannot be undone.
 *
 * @return 0
 * @threads any
 */
OVI_API int32_t OVI_CALL oviRegisterDebugExceptionHandler(void);

/** @} */

/** @cond */
/* ---- Layout -------------------------------------------------------------------------------------------------------
 *
 * Applications in other languages rebuild the records from these numbers.
 */

#define OVI_ASSERT_SIZE(record, size) OVI_STATIC_ASSERT(sizeof(record) == (size), #record " has an unexpected size")
#define OVI_ASSERT_AT(record, field, offset) \
  OVI_STATIC_ASSERT(offsetof(record, field) == (offset), #record "." #field " is misplaced")

OVI_ASSERT_SIZE(oviTLProducerInfos, 2568);
OVI_ASSERT_AT(oviTLProducerInfos, name, 0);
OVI_ASSERT_AT(oviTLProducerInfos, displayName, 512);
OVI_ASSERT_AT(oviTLProducerInfos, reserved0, 1024);
OVI_ASSERT_AT(oviTLProducerInfos, pathName, 1536);
OVI_ASSERT_AT(oviTLProducerInfos, filePath, 2048);
OVI_ASSERT_AT(oviTLProducerInfos, reserved1, 2560);

OVI_ASSERT_SIZE(oviDeviceInfo, 7200);
OVI_ASSERT_AT(oviDeviceInfo, deviceID, 0);
OVI_ASSERT_AT(oviDeviceInfo, displayName, 512);
OVI_ASSERT_AT(oviDeviceInfo, model, 1024);
OVI_ASSERT_AT(oviDeviceInfo, vendor, 1536);
OVI_ASSERT_AT(oviDeviceInfo, serialNumber, 2048);
OVI_ASSERT_AT(oviDeviceInfo, interfaceDisplayName, 2560);
OVI_ASSERT_AT(oviDeviceInfo, interfaceID, 3072);
OVI_ASSERT_AT(oviDeviceInfo, userDefinedName, 3584);
OVI_ASSERT_AT(oviDeviceInfo, version, 4096);
OVI_ASSERT_AT(oviDeviceInfo, reserved0, 4608);
OVI_ASSERT_AT(oviDeviceInfo, interfaceTLType, 4616);
OVI_ASSERT_AT(oviDeviceInfo, tlDisplayName, 5128);
OVI_ASSERT_AT(oviDeviceInfo, tlType, 5640);
OVI_ASSERT_AT(oviDeviceInfo, tlPathName, 6152);
OVI_ASSERT_AT(oviDeviceInfo, tlID, 6664);
OVI_ASSERT_AT(oviDeviceInfo, accessStatus, 7176);
OVI_ASSERT_AT(oviDeviceInfo, reserved1, 7180);

OVI_ASSERT_SIZE(oviDiscoveryInfo, 115224);
OVI_ASSERT_AT(oviDiscoveryInfo, deviceCount, 0);
OVI_ASSERT_AT(oviDiscoveryInfo, reserved0, 4);
OVI_ASSERT_AT(oviDiscoveryInfo, progress, 8);
OVI_ASSERT_AT(oviDiscoveryInfo, running, 16);
OVI_ASSERT_AT(oviDiscoveryInfo, reserved1, 17);
OVI_ASSERT_AT(oviDiscoveryInfo, devices, 24);

OVI_ASSERT_SIZE(oviFeatureParameter, 2696);
OVI_ASSERT_AT(oviFeatureParameter, featureType, 0);
OVI_ASSERT_AT(oviFeatureParameter, visibility, 4);
OVI_ASSERT_AT(oviFeatureParameter, accessMode, 8);
OVI_ASSERT_AT(oviFeatureParameter, displayNotation, 12);
OVI_ASSERT_AT(oviFeatureParameter, representation, 16);
OVI_ASSERT_AT(oviFeatureParameter, displayPrecision, 20);
OVI_ASSERT_AT(oviFeatureParameter, intValue, 24);
OVI_ASSERT_AT(oviFeatureParameter, intInc, 32);
OVI_ASSERT_AT(oviFeatureParameter, intMin, 40);
OVI_ASSERT_AT(oviFeatureParameter, intMax, 48);
OVI_ASSERT_AT(oviFeatureParameter, floatValue, 56);
OVI_ASSERT_AT(oviFeatureParameter, floatInc, 64);
OVI_ASSERT_AT(oviFeatureParameter, floatMin, 72);
OVI_ASSERT_AT(oviFeatureParameter, floatMax, 80);
OVI_ASSERT_AT(oviFeatureParameter, stringValue, 88);
OVI_ASSERT_AT(oviFeatureParameter, maxStringLength, 600);
OVI_ASSERT_AT(oviFeatureParameter, treeDepth, 608);
OVI_ASSERT_AT(oviFeatureParameter, enumEntryCount, 616);
OVI_ASSERT_AT(oviFeatureParameter, enumEntryIndex, 620);
OVI_ASSERT_AT(oviFeatureParameter, displayName, 621);
OVI_ASSERT_AT(oviFeatureParameter, name, 1133);
OVI_ASSERT_AT(oviFeatureParameter, toolTip, 1645);
OVI_ASSERT_AT(oviFeatureParameter, unit, 2157);
OVI_ASSERT_AT(oviFeatureParameter, registerLength, 2672);
OVI_ASSERT_AT(oviFeatureParameter, registerAddress, 2680);
OVI_ASSERT_AT(oviFeatureParameter, isFeature, 2688);
OVI_ASSERT_AT(oviFeatureParameter, littleEndian, 2689);

OVI_ASSERT_SIZE(FEATURE_PARAM_LIST_STRUCT, 16);
OVI_ASSERT_AT(FEATURE_PARAM_LIST_STRUCT, count, 0);
OVI_ASSERT_AT(FEATURE_PARAM_LIST_STRUCT, maxDepth, 4);
OVI_ASSERT_AT(FEATURE_PARAM_LIST_STRUCT, features, 8);

OVI_ASSERT_SIZE(oviMemTransferInfo, 40);
OVI_ASSERT_AT(oviMemTransferInfo, address, 0);
OVI_ASSERT_AT(oviMemTransferInfo, buffer, 8);
OVI_ASSERT_AT(oviMemTransferInfo, length, 16);
OVI_ASSERT_AT(oviMemTransferInfo, transferred, 24);
OVI_ASSERT_AT(oviMemTransferInfo, result, 32);
OVI_ASSERT_AT(oviMemTransferInfo, reserved, 36);

OVI_ASSERT_SIZE(oviDataStreamInfo, 1028);
OVI_ASSERT_AT(oviDataStreamInfo, id, 0);
OVI_ASSERT_AT(oviDataStreamInfo, name, 512);
OVI_ASSERT_AT(oviDataStreamInfo, index, 1024);

OVI_ASSERT_SIZE(oviEventData, 64);
OVI_ASSERT_AT(oviEventData, kind, 0);
OVI_ASSERT_AT(oviEventData, moduleHandle, 8);
OVI_ASSERT_AT(oviEventData, moduleSelector, 16);
OVI_ASSERT_AT(oviEventData, eventData, 24);
OVI_ASSERT_AT(oviEventData, eventDataSize, 32);
OVI_ASSERT_AT(oviEventData, value, 40);
OVI_ASSERT_AT(oviEventData, valueSize, 48);
OVI_ASSERT_AT(oviEventData, eventID, 56);

OVI_ASSERT_SIZE(oviNewBufferEventData, 128);
OVI_ASSERT_AT(oviNewBufferEventData, event, 0);
OVI_ASSERT_AT(oviNewBufferEventData, bufferHandle, 64);
OVI_ASSERT_AT(oviNewBufferEventData, frameID, 72);
OVI_ASSERT_AT(oviNewBufferEventData, rawEventData, 80);
OVI_ASSERT_AT(oviNewBufferEventData, timestampMs, 88);
OVI_ASSERT_AT(oviNewBufferEventData, timestampNs, 96);
OVI_ASSERT_AT(oviNewBufferEventData, width, 104);
OVI_ASSERT_AT(oviNewBufferEventData, height, 108);
OVI_ASSERT_AT(oviNewBufferEventData, linePitch, 112);
OVI_ASSERT_AT(oviNewBufferEventData, channels, 116);
OVI_ASSERT_AT(oviNewBufferEventData, pixelFormat, 120);
OVI_ASSERT_AT(oviNewBufferEventData, reserved, 124);

OVI_ASSERT_SIZE(oviImageInfo, 20);
OVI_ASSERT_AT(oviImageInfo, width, 0);
OVI_ASSERT_AT(oviImageInfo, height, 4);
OVI_ASSERT_AT(oviImageInfo, linePitch, 8);
OVI_ASSERT_AT(oviImageInfo, channels, 12);
OVI_ASSERT_AT(oviImageInfo, pixelFormat, 16);

OVI_ASSERT_SIZE(oviAcquistionStatistics, 40);
OVI_ASSERT_AT(oviAcquistionStatistics, underruns, 0);
OVI_ASSERT_AT(oviAcquistionStatistics, frameLoss, 8);
OVI_ASSERT_AT(oviAcquistionStatistics, delivered, 16);
OVI_ASSERT_AT(oviAcquistionStatistics, packetsReceived, 24);
OVI_ASSERT_AT(oviAcquistionStatistics, packetLoss, 32);

OVI_ASSERT_SIZE(oviFileTransferProgress, 536);
OVI_ASSERT_AT(oviFileTransferProgress, totalBytes, 0);
OVI_ASSERT_AT(oviFileTransferProgress, bytesDone, 8);
OVI_ASSERT_AT(oviFileTransferProgress, status, 16);
OVI_ASSERT_AT(oviFileTransferProgress, errorCode, 20);
OVI_ASSERT_AT(oviFileTransferProgress, message, 24);

#undef OVI_ASSERT_SIZE
#undef OVI_ASSERT_AT

#if defined(__cplusplus)
}
#endif
/** @endcond */

#endif
