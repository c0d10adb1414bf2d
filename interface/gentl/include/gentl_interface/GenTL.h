/**
 * The GenTL 1.5 C interface, as producers export it and as consumers load it.
 *
 * A producer defines GENTL_PRODUCER before it includes this file; a consumer that loads producers at run time needs
 * only the types, the constants and the P<Name> function pointer types. The header is C11 and C++17 or newer.
 *
 * Every function returns a GC_ERROR. Strings are char arrays that end with a NUL; sizes of strings count it. Getters
 * with a size argument follow one rule: with a NULL buffer they report the size that is needed, otherwise the size goes
 * in as the capacity and comes back as what was written. Time-outs are milliseconds.
 */
#ifndef GENTL_INTERFACE_GENTL_H
#define GENTL_INTERFACE_GENTL_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32) && !defined(_WIN64) && !defined(_M_ARM) && !defined(__arm__)
#define GC_CALLTYPE __stdcall
#else
#define GC_CALLTYPE
#endif

#if defined(_WIN32)
#ifdef GENTL_PRODUCER
#define GC_IMPORT_EXPORT __declspec(dllexport)
#else
#define GC_IMPORT_EXPORT __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define GC_IMPORT_EXPORT __attribute__((visibility("default")))
#else
#define GC_IMPORT_EXPORT
#endif

/* An enumeration that lists the values of a 32-bit type; the type itself is always int32_t, whatever the compiler. */
#ifdef __cplusplus
#define GENTL_VALUES_OF(type) enum type##_LIST : int32_t
extern "C" {
#else
#define GENTL_VALUES_OF(type) enum type##_LIST
#endif

/* ---- Basic types ---------------------------------------------------------------------------------------------- */

typedef void* TL_HANDLE;       /**< System module */
typedef void* IF_HANDLE;       /**< Interface module */
typedef void* DEV_HANDLE;      /**< Local device module */
typedef void* DS_HANDLE;       /**< Data stream module */
typedef void* BUFFER_HANDLE;   /**< Buffer module */
typedef void* PORT_HANDLE;     /**< Any module with registers, or the remote device */
typedef void* EVENTSRC_HANDLE; /**< Any module, but not the remote device */
typedef void* EVENT_HANDLE;    /**< A registered event */

/** One byte; zero is false, anything else true. */
typedef uint8_t bool8_t;

#define GENTL_INVALID_HANDLE NULL
#define GENTL_INFINITE UINT64_C(0xFFFFFFFFFFFFFFFF)

/* Technology names of the ..._TLTYPE infos. */
#define TLTypeMixedName "Mixed"
#define TLTypeCustomName "Custom"
#define TLTypeGEVName "GEV"
#define TLTypeCLName "CL"
#define TLTypeIIDCName "IIDC"
#define TLTypeUVCName "UVC"
#define TLTypeCXPName "CXP"
#define TLTypeCLHSName "CLHS"
#define TLTypeU3VName "U3V"
#define TLTypeETHERNETName "Ethernet"
#define TLTypePCIName "PCI"

/* Module names of PORT_INFO_MODULE. */
#define GENTL_MODULE_SYSTEM "TLSystem"
#define GENTL_MODULE_INTERFACE "TLInterface"
#define GENTL_MODULE_DEVICE "TLDevice"
#define GENTL_MODULE_DATA_STREAM "TLDataStream"
#define GENTL_MODULE_BUFFER "TLBuffer"
#define GENTL_MODULE_REMOTE_DEVICE "Device"

/* ---- Result codes --------------------------------------------------------------------------------------------- */

typedef int32_t GC_ERROR;
GENTL_VALUES_OF(GC_ERROR){
    GC_ERR_SUCCESS = 0,
    GC_ERR_ERROR = -1001,
    GC_ERR_NOT_INITIALIZED = -1002,
    GC_ERR_NOT_IMPLEMENTED = -1003,
    GC_ERR_RESOURCE_IN_USE = -1004,
    GC_ERR_ACCESS_DENIED = -1005,
    GC_ERR_INVALID_HANDLE = -1006,
    GC_ERR_INVALID_ID = -1007,
    GC_ERR_NO_DATA = -1008,
    GC_ERR_INVALID_PARAMETER = -1009,
    GC_ERR_IO = -1010,
    GC_ERR_TIMEOUT = -1011,
    GC_ERR_ABORT = -1012,
    GC_ERR_INVALID_BUFFER = -1013,
    GC_ERR_NOT_AVAILABLE = -1014,
    GC_ERR_INVALID_ADDRESS = -1015,
    GC_ERR_BUFFER_TOO_SMALL = -1016,
    GC_ERR_INVALID_INDEX = -1017,
    GC_ERR_PARSING_CHUNK_DATA = -1018,
    GC_ERR_INVALID_VALUE = -1019,
    GC_ERR_RESOURCE_EXHAUSTED = -1020,
    GC_ERR_OUT_OF_MEMORY = -1021,
    GC_ERR_BUSY = -1022,
    GC_ERR_AMBIGUOUS = -1023,  /**< Newer than 1.5 */
    GC_ERR_CUSTOM_ID = -10000, /**< This and below: vendor codes */
};

/* ---- Info commands and values --------------------------------------------------------------------------------- */

typedef int32_t INFO_DATATYPE;
GENTL_VALUES_OF(INFO_DATATYPE){
    INFO_DATATYPE_UNKNOWN = 0,      INFO_DATATYPE_STRING = 1, INFO_DATATYPE_STRINGLIST = 2, /**< Strings back to back,
                                                                                               one more NUL at the end
                                                                                             */
    INFO_DATATYPE_INT16 = 3,        INFO_DATATYPE_UINT16 = 4, INFO_DATATYPE_INT32 = 5,      INFO_DATATYPE_UINT32 = 6,
    INFO_DATATYPE_INT64 = 7,        INFO_DATATYPE_UINT64 = 8, INFO_DATATYPE_FLOAT64 = 9,    INFO_DATATYPE_PTR = 10,
    INFO_DATATYPE_BOOL8 = 11,       INFO_DATATYPE_SIZET = 12, INFO_DATATYPE_BUFFER = 13,    INFO_DATATYPE_PTRDIFF = 14,
    INFO_DATATYPE_CUSTOM_ID = 1000,
};

typedef int32_t TL_CHAR_ENCODING;
GENTL_VALUES_OF(TL_CHAR_ENCODING){
    TL_CHAR_ENCODING_ASCII = 0,
    TL_CHAR_ENCODING_UTF8 = 1,
};

typedef int32_t TL_INFO_CMD;
GENTL_VALUES_OF(TL_INFO_CMD){
    TL_INFO_ID = 0,               /**< STRING */
    TL_INFO_VENDOR = 1,           /**< STRING */
    TL_INFO_MODEL = 2,            /**< STRING */
    TL_INFO_VERSION = 3,          /**< STRING */
    TL_INFO_TLTYPE = 4,           /**< STRING */
    TL_INFO_NAME = 5,             /**< STRING, file name with extension */
    TL_INFO_PATHNAME = 6,         /**< STRING, full path with file name */
    TL_INFO_DISPLAYNAME = 7,      /**< STRING */
    TL_INFO_CHAR_ENCODING = 8,    /**< INT32, TL_CHAR_ENCODING */
    TL_INFO_GENTL_VER_MAJOR = 9,  /**< UINT32 */
    TL_INFO_GENTL_VER_MINOR = 10, /**< UINT32 */
    TL_INFO_CUSTOM_ID = 1000,
};

typedef int32_t INTERFACE_INFO_CMD;
GENTL_VALUES_OF(INTERFACE_INFO_CMD){
    INTERFACE_INFO_ID = 0,          /**< STRING */
    INTERFACE_INFO_DISPLAYNAME = 1, /**< STRING */
    INTERFACE_INFO_TLTYPE = 2,      /**< STRING */
    INTERFACE_INFO_CUSTOM_ID = 1000,
};

typedef int32_t DEVICE_INFO_CMD;
GENTL_VALUES_OF(DEVICE_INFO_CMD){
    DEVICE_INFO_ID = 0,                  /**< STRING */
    DEVICE_INFO_VENDOR = 1,              /**< STRING */
    DEVICE_INFO_MODEL = 2,               /**< STRING */
    DEVICE_INFO_TLTYPE = 3,              /**< STRING */
    DEVICE_INFO_DISPLAYNAME = 4,         /**< STRING */
    DEVICE_INFO_ACCESS_STATUS = 5,       /**< INT32, DEVICE_ACCESS_STATUS */
    DEVICE_INFO_USER_DEFINED_NAME = 6,   /**< STRING */
    DEVICE_INFO_SERIAL_NUMBER = 7,       /**< STRING */
    DEVICE_INFO_VERSION = 8,             /**< STRING */
    DEVICE_INFO_TIMESTAMP_FREQUENCY = 9, /**< UINT64, ticks per second */
    DEVICE_INFO_CUSTOM_ID = 1000,
};

typedef int32_t DEVICE_ACCESS_FLAGS;
GENTL_VALUES_OF(DEVICE_ACCESS_FLAGS){
    DEVICE_ACCESS_UNKNOWN = 0, DEVICE_ACCESS_NONE = 1,      DEVICE_ACCESS_READONLY = 2,
    DEVICE_ACCESS_CONTROL = 3, DEVICE_ACCESS_EXCLUSIVE = 4, DEVICE_ACCESS_CUSTOM_ID = 1000,
};

typedef int32_t DEVICE_ACCESS_STATUS;
GENTL_VALUES_OF(DEVICE_ACCESS_STATUS){
    DEVICE_ACCESS_STATUS_UNKNOWN = 0,       DEVICE_ACCESS_STATUS_READWRITE = 1,
    DEVICE_ACCESS_STATUS_READONLY = 2,      DEVICE_ACCESS_STATUS_NOACCESS = 3,
    DEVICE_ACCESS_STATUS_BUSY = 4,          DEVICE_ACCESS_STATUS_OPEN_READWRITE = 5,
    DEVICE_ACCESS_STATUS_OPEN_READONLY = 6, DEVICE_ACCESS_STATUS_CUSTOM_ID = 1000,
};

typedef int32_t STREAM_INFO_CMD;
GENTL_VALUES_OF(STREAM_INFO_CMD){
    STREAM_INFO_ID = 0,                         /**< STRING */
    STREAM_INFO_NUM_DELIVERED = 1,              /**< UINT64, since the last start */
    STREAM_INFO_NUM_UNDERRUN = 2,               /**< UINT64, since the stream was opened */
    STREAM_INFO_NUM_ANNOUNCED = 3,              /**< SIZET */
    STREAM_INFO_NUM_QUEUED = 4,                 /**< SIZET, input pool and being filled */
    STREAM_INFO_NUM_AWAIT_DELIVERY = 5,         /**< SIZET, output queue */
    STREAM_INFO_NUM_STARTED = 6,                /**< UINT64, since the stream was opened */
    STREAM_INFO_PAYLOAD_SIZE = 7,               /**< SIZET */
    STREAM_INFO_IS_GRABBING = 8,                /**< BOOL8 */
    STREAM_INFO_DEFINES_PAYLOADSIZE = 9,        /**< BOOL8 */
    STREAM_INFO_TLTYPE = 10,                    /**< STRING */
    STREAM_INFO_NUM_CHUNKS_MAX = 11,            /**< SIZET */
    STREAM_INFO_BUF_ANNOUNCE_MIN = 12,          /**< SIZET */
    STREAM_INFO_BUF_ALIGNMENT = 13,             /**< SIZET */
    STREAM_INFO_FLOW_TABLE = 14,                /**< BUFFER; newer than 1.5 */
    STREAM_INFO_GENDC_PREFETCH_DESCRIPTOR = 15, /**< BUFFER; newer than 1.5 */
    STREAM_INFO_CUSTOM_ID = 1000,
};

typedef int32_t BUFFER_INFO_CMD;
GENTL_VALUES_OF(BUFFER_INFO_CMD){
    BUFFER_INFO_BASE = 0,                        /**< PTR */
    BUFFER_INFO_SIZE = 1,                        /**< SIZET */
    BUFFER_INFO_USER_PTR = 2,                    /**< PTR */
    BUFFER_INFO_TIMESTAMP = 3,                   /**< UINT64, device ticks */
    BUFFER_INFO_NEW_DATA = 4,                    /**< BOOL8 */
    BUFFER_INFO_IS_QUEUED = 5,                   /**< BOOL8 */
    BUFFER_INFO_IS_ACQUIRING = 6,                /**< BOOL8 */
    BUFFER_INFO_IS_INCOMPLETE = 7,               /**< BOOL8 */
    BUFFER_INFO_TLTYPE = 8,                      /**< STRING */
    BUFFER_INFO_SIZE_FILLED = 9,                 /**< SIZET */
    BUFFER_INFO_WIDTH = 10,                      /**< SIZET, pixels */
    BUFFER_INFO_HEIGHT = 11,                     /**< SIZET, lines */
    BUFFER_INFO_XOFFSET = 12,                    /**< SIZET, pixels */
    BUFFER_INFO_YOFFSET = 13,                    /**< SIZET, lines */
    BUFFER_INFO_XPADDING = 14,                   /**< SIZET, bytes */
    BUFFER_INFO_YPADDING = 15,                   /**< SIZET, bytes */
    BUFFER_INFO_FRAMEID = 16,                    /**< UINT64 */
    BUFFER_INFO_IMAGEPRESENT = 17,               /**< BOOL8 */
    BUFFER_INFO_IMAGEOFFSET = 18,                /**< SIZET, bytes */
    BUFFER_INFO_PAYLOADTYPE = 19,                /**< SIZET, PAYLOADTYPE_INFO_ID */
    BUFFER_INFO_PIXELFORMAT = 20,                /**< UINT64 */
    BUFFER_INFO_PIXELFORMAT_NAMESPACE = 21,      /**< UINT64, PIXELFORMAT_NAMESPACE_ID */
    BUFFER_INFO_DELIVERED_IMAGEHEIGHT = 22,      /**< SIZET, lines */
    BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE = 23, /**< SIZET */
    BUFFER_INFO_CHUNKLAYOUTID = 24,              /**< UINT64 */
    BUFFER_INFO_FILENAME = 25,                   /**< STRING, UTF-8 */
    BUFFER_INFO_PIXEL_ENDIANNESS = 26,           /**< INT32, PIXELENDIANNESS_ID */
    BUFFER_INFO_DATA_SIZE = 27,                  /**< SIZET */
    BUFFER_INFO_TIMESTAMP_NS = 28,               /**< UINT64 */
    BUFFER_INFO_DATA_LARGER_THAN_BUFFER = 29,    /**< BOOL8 */
    BUFFER_INFO_CONTAINS_CHUNKDATA = 30,         /**< BOOL8 */
    BUFFER_INFO_IS_COMPOSITE = 31,               /**< BOOL8; newer than 1.5 */
    BUFFER_INFO_CUSTOM_ID = 1000,
};

typedef int32_t BUFFER_PART_INFO_CMD;
GENTL_VALUES_OF(BUFFER_PART_INFO_CMD){
    BUFFER_PART_INFO_BASE = 0,                   /**< PTR */
    BUFFER_PART_INFO_DATA_SIZE = 1,              /**< SIZET */
    BUFFER_PART_INFO_DATA_TYPE = 2,              /**< SIZET, PARTDATATYPE_ID */
    BUFFER_PART_INFO_DATA_FORMAT = 3,            /**< UINT64 */
    BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE = 4,  /**< UINT64, PIXELFORMAT_NAMESPACE_ID */
    BUFFER_PART_INFO_WIDTH = 5,                  /**< SIZET */
    BUFFER_PART_INFO_HEIGHT = 6,                 /**< SIZET */
    BUFFER_PART_INFO_XOFFSET = 7,                /**< SIZET */
    BUFFER_PART_INFO_YOFFSET = 8,                /**< SIZET */
    BUFFER_PART_INFO_XPADDING = 9,               /**< SIZET */
    BUFFER_PART_INFO_SOURCE_ID = 10,             /**< UINT64 */
    BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT = 11, /**< SIZET */
    BUFFER_PART_INFO_REGION_ID = 12,             /**< UINT64; newer than 1.5 */
    BUFFER_PART_INFO_DATA_PURPOSE_ID = 13,       /**< UINT64; newer than 1.5 */
    BUFFER_PART_INFO_CUSTOM_ID = 1000,
};

typedef int32_t PARTDATATYPE_ID;
GENTL_VALUES_OF(PARTDATATYPE_ID){
    PART_DATATYPE_UNKNOWN = 0,
    PART_DATATYPE_2D_IMAGE = 1,
    PART_DATATYPE_2D_PLANE_BIPLANAR = 2,
    PART_DATATYPE_2D_PLANE_TRIPLANAR = 3,
    PART_DATATYPE_2D_PLANE_QUADPLANAR = 4,
    PART_DATATYPE_3D_IMAGE = 5,
    PART_DATATYPE_3D_PLANE_BIPLANAR = 6,
    PART_DATATYPE_3D_PLANE_TRIPLANAR = 7,
    PART_DATATYPE_3D_PLANE_QUADPLANAR = 8,
    PART_DATATYPE_CONFIDENCE_MAP = 9,
    PART_DATATYPE_JPEG = 10,     /**< Newer than 1.5 */
    PART_DATATYPE_JPEG2000 = 11, /**< Newer than 1.5 */
    PART_DATATYPE_CUSTOM_ID = 1000,
};

typedef int32_t PAYLOADTYPE_INFO_ID;
GENTL_VALUES_OF(PAYLOADTYPE_INFO_ID){
    PAYLOAD_TYPE_UNKNOWN = 0,      PAYLOAD_TYPE_IMAGE = 1,
    PAYLOAD_TYPE_RAW_DATA = 2,     PAYLOAD_TYPE_FILE = 3,
    PAYLOAD_TYPE_CHUNK_DATA = 4,   PAYLOAD_TYPE_JPEG = 5,
    PAYLOAD_TYPE_JPEG2000 = 6,     PAYLOAD_TYPE_H264 = 7,
    PAYLOAD_TYPE_CHUNK_ONLY = 8,   PAYLOAD_TYPE_DEVICE_SPECIFIC = 9,
    PAYLOAD_TYPE_MULTI_PART = 10,  PAYLOAD_TYPE_GENDC = 11, /**< Newer than 1.5 */
    PAYLOAD_TYPE_CUSTOM_ID = 1000,
};

typedef int32_t PIXELFORMAT_NAMESPACE_ID;
GENTL_VALUES_OF(PIXELFORMAT_NAMESPACE_ID){
    PIXELFORMAT_NAMESPACE_UNKNOWN = 0,    PIXELFORMAT_NAMESPACE_GEV = 1,        PIXELFORMAT_NAMESPACE_IIDC = 2,
    PIXELFORMAT_NAMESPACE_PFNC_16BIT = 3, PIXELFORMAT_NAMESPACE_PFNC_32BIT = 4, PIXELFORMAT_NAMESPACE_CUSTOM_ID = 1000,
};

typedef int32_t PIXELENDIANNESS_ID;
GENTL_VALUES_OF(PIXELENDIANNESS_ID){
    PIXELENDIANNESS_UNKNOWN = 0,
    PIXELENDIANNESS_LITTLE = 1,
    PIXELENDIANNESS_BIG = 2,
};

typedef int32_t ACQ_QUEUE_TYPE;
GENTL_VALUES_OF(ACQ_QUEUE_TYPE){
    ACQ_QUEUE_INPUT_TO_OUTPUT = 0,   ACQ_QUEUE_OUTPUT_DISCARD = 1, ACQ_QUEUE_ALL_TO_INPUT = 2,
    ACQ_QUEUE_UNQUEUED_TO_INPUT = 3, ACQ_QUEUE_ALL_DISCARD = 4,    ACQ_QUEUE_CUSTOM_ID = 1000,
};

typedef int32_t ACQ_START_FLAGS;
GENTL_VALUES_OF(ACQ_START_FLAGS){
    ACQ_START_FLAGS_DEFAULT = 0,
    ACQ_START_FLAGS_CUSTOM_ID = 1000,
};

typedef int32_t ACQ_STOP_FLAGS;
GENTL_VALUES_OF(ACQ_STOP_FLAGS){
    ACQ_STOP_FLAGS_DEFAULT = 0, /**< Finish the buffer that is being filled */
    ACQ_STOP_FLAGS_KILL = 1,    /**< Stop at once; that buffer is delivered incomplete */
    ACQ_STOP_FLAGS_CUSTOM_ID = 1000,
};

typedef int32_t PORT_INFO_CMD;
GENTL_VALUES_OF(PORT_INFO_CMD){
    PORT_INFO_ID = 0,            /**< STRING */
    PORT_INFO_VENDOR = 1,        /**< STRING */
    PORT_INFO_MODEL = 2,         /**< STRING */
    PORT_INFO_TLTYPE = 3,        /**< STRING */
    PORT_INFO_MODULE = 4,        /**< STRING */
    PORT_INFO_LITTLE_ENDIAN = 5, /**< BOOL8 */
    PORT_INFO_BIG_ENDIAN = 6,    /**< BOOL8 */
    PORT_INFO_ACCESS_READ = 7,   /**< BOOL8 */
    PORT_INFO_ACCESS_WRITE = 8,  /**< BOOL8 */
    PORT_INFO_ACCESS_NA = 9,     /**< BOOL8 */
    PORT_INFO_ACCESS_NI = 10,    /**< BOOL8 */
    PORT_INFO_VERSION = 11,      /**< STRING */
    PORT_INFO_PORTNAME = 12,     /**< STRING, the Port node to connect to */
    PORT_INFO_CUSTOM_ID = 1000,
};

typedef int32_t URL_INFO_CMD;
GENTL_VALUES_OF(URL_INFO_CMD){
    URL_INFO_URL = 0,                   /**< STRING */
    URL_INFO_SCHEMA_VER_MAJOR = 1,      /**< INT32 */
    URL_INFO_SCHEMA_VER_MINOR = 2,      /**< INT32 */
    URL_INFO_FILE_VER_MAJOR = 3,        /**< INT32 */
    URL_INFO_FILE_VER_MINOR = 4,        /**< INT32 */
    URL_INFO_FILE_VER_SUBMINOR = 5,     /**< INT32 */
    URL_INFO_FILE_SHA1_HASH = 6,        /**< BUFFER, 20 bytes */
    URL_INFO_FILE_REGISTER_ADDRESS = 7, /**< UINT64 */
    URL_INFO_FILE_SIZE = 8,             /**< UINT64 */
    URL_INFO_SCHEME = 9,                /**< INT32, URL_SCHEME_ID */
    URL_INFO_FILENAME = 10,             /**< STRING */
    URL_INFO_CUSTOM_ID = 1000,
};

typedef int32_t URL_SCHEME_ID;
GENTL_VALUES_OF(URL_SCHEME_ID){
    URL_SCHEME_LOCAL = 0,
    URL_SCHEME_HTTP = 1,
    URL_SCHEME_FILE = 2,
    URL_SCHEME_CUSTOM_ID = 1000,
};

typedef int32_t EVENT_TYPE;
GENTL_VALUES_OF(EVENT_TYPE){
    EVENT_ERROR = 0,         EVENT_NEW_BUFFER = 1,       EVENT_FEATURE_INVALIDATE = 2, EVENT_FEATURE_CHANGE = 3,
    EVENT_REMOTE_DEVICE = 4, EVENT_FEATURE_DEVEVENT = 4, /**< Older name of EVENT_REMOTE_DEVICE */
    EVENT_MODULE = 5,        EVENT_CUSTOM_ID = 1000,
};

typedef int32_t EVENT_INFO_CMD;
GENTL_VALUES_OF(EVENT_INFO_CMD){
    EVENT_EVENT_TYPE = 0,         /**< INT32, EVENT_TYPE */
    EVENT_NUM_IN_QUEUE = 1,       /**< SIZET */
    EVENT_NUM_FIRED = 2,          /**< UINT64 */
    EVENT_SIZE_MAX = 3,           /**< SIZET */
    EVENT_INFO_DATA_SIZE_MAX = 4, /**< SIZET */
    EVENT_INFO_CUSTOM_ID = 1000,
};

typedef int32_t EVENT_DATA_INFO_CMD;
GENTL_VALUES_OF(EVENT_DATA_INFO_CMD){
    EVENT_DATA_ID = 0,    /**< Depends on the event type */
    EVENT_DATA_VALUE = 1, /**< Depends on the event type */
    EVENT_DATA_NUMID = 2, /**< UINT64 */
    EVENT_DATA_CUSTOM_ID = 1000,
};

/* ---- Structures ----------------------------------------------------------------------------------------------- */

#pragma pack(push, 1)

/** What EventGetData copies out for EVENT_NEW_BUFFER. */
typedef struct EVENT_NEW_BUFFER_DATA {
  BUFFER_HANDLE BufferHandle;
  void* pUserPointer; /**< The private pointer of the announcement */
} EVENT_NEW_BUFFER_DATA;

/** One access of GCReadPortStacked and GCWritePortStacked. */
typedef struct PORT_REGISTER_STACK_ENTRY {
  uint64_t Address;
  void* pBuffer;
  size_t Size;
} PORT_REGISTER_STACK_ENTRY;

/** One chunk of a buffer, as DSGetBufferChunkData lists it. */
typedef struct SINGLE_CHUNK_DATA {
  uint64_t ChunkID;
  ptrdiff_t ChunkOffset; /**< From the buffer's base, bytes */
  size_t ChunkLength;    /**< Bytes */
} SINGLE_CHUNK_DATA;

#pragma pack(pop)

/* ---- Functions ------------------------------------------------------------------------------------------------ */

/* Library */

GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE GCInitLib(void);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE GCCloseLib(void);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE GCGetInfo(TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE GCGetLastError(GC_ERROR* code, char* text, size_t* size);

/* Port */

GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE GCReadPort(PORT_HANDLE port, uint64_t address, void* buf, size_t* size);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE GCWritePort(PORT_HANDLE port, uint64_t address, const void* buf, size_t* size);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE GCGetPortURL(PORT_HANDLE port, char* url, size_t* size);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE GCGetPortInfo(PORT_HANDLE port, PORT_INFO_CMD cmd, INFO_DATATYPE* type, void* buf,
                                                    size_t* size);
/** Since 1.1. */
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE GCGetNumPortURLs(PORT_HANDLE port, uint32_t* count);
/** Since 1.1. */
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE GCGetPortURLInfo(PORT_HANDLE port, uint32_t index, URL_INFO_CMD cmd,
                                                       INFO_DATATYPE* type, void* buf, size_t* size);
/** Since 1.1. */
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE GCReadPortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries,
                                                        size_t* count);
/** Since 1.1. */
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE GCWritePortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries,
                                                         size_t* count);

/* Events */

GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE GCRegisterEvent(EVENTSRC_HANDLE module, EVENT_TYPE event, EVENT_HANDLE* out);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE GCUnregisterEvent(EVENTSRC_HANDLE module, EVENT_TYPE event);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE EventGetData(EVENT_HANDLE event, void* buf, size_t* size, uint64_t timeoutMs);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE EventGetDataInfo(EVENT_HANDLE event, const void* in, size_t inSize,
                                                       EVENT_DATA_INFO_CMD cmd, INFO_DATATYPE* type, void* out,
                                                       size_t* outSize);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE EventGetInfo(EVENT_HANDLE event, EVENT_INFO_CMD cmd, INFO_DATATYPE* type,
                                                   void* buf, size_t* size);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE EventFlush(EVENT_HANDLE event);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE EventKill(EVENT_HANDLE event);

/* System */

GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE TLOpen(TL_HANDLE* out);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE TLClose(TL_HANDLE tl);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE TLGetInfo(TL_HANDLE tl, TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buf,
                                                size_t* size);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE TLGetNumInterfaces(TL_HANDLE tl, uint32_t* count);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE TLGetInterfaceID(TL_HANDLE tl, uint32_t index, char* id, size_t* size);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE TLGetInterfaceInfo(TL_HANDLE tl, const char* id, INTERFACE_INFO_CMD cmd,
                                                         INFO_DATATYPE* type, void* buf, size_t* size);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE TLOpenInterface(TL_HANDLE tl, const char* id, IF_HANDLE* out);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE TLUpdateInterfaceList(TL_HANDLE tl, bool8_t* changed, uint64_t timeoutMs);

/* Interface */

GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE IFClose(IF_HANDLE iface);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE IFGetInfo(IF_HANDLE iface, INTERFACE_INFO_CMD cmd, INFO_DATATYPE* type, void* buf,
                                                size_t* size);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE IFGetNumDevices(IF_HANDLE iface, uint32_t* count);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE IFGetDeviceID(IF_HANDLE iface, uint32_t index, char* id, size_t* size);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE IFUpdateDeviceList(IF_HANDLE iface, bool8_t* changed, uint64_t timeoutMs);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE IFGetDeviceInfo(IF_HANDLE iface, const char* id, DEVICE_INFO_CMD cmd,
                                                      INFO_DATATYPE* type, void* buf, size_t* size);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE IFOpenDevice(IF_HANDLE iface, const char* id, DEVICE_ACCESS_FLAGS access,
                                                   DEV_HANDLE* out);
/** Since 1.4. */
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE IFGetParentTL(IF_HANDLE iface, TL_HANDLE* out);

/* Device */

GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DevClose(DEV_HANDLE dev);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DevGetInfo(DEV_HANDLE dev, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type, void* buf,
                                                 size_t* size);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DevGetPort(DEV_HANDLE dev, PORT_HANDLE* out);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DevGetNumDataStreams(DEV_HANDLE dev, uint32_t* count);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DevGetDataStreamID(DEV_HANDLE dev, uint32_t index, char* id, size_t* size);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DevOpenDataStream(DEV_HANDLE dev, const char* id, DS_HANDLE* out);
/** Since 1.4. */
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DevGetParentIF(DEV_HANDLE dev, IF_HANDLE* out);

/* Data stream and buffer */

GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DSAnnounceBuffer(DS_HANDLE ds, void* memory, size_t size, void* priv,
                                                       BUFFER_HANDLE* out);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DSAllocAndAnnounceBuffer(DS_HANDLE ds, size_t size, void* priv,
                                                               BUFFER_HANDLE* out);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DSRevokeBuffer(DS_HANDLE ds, BUFFER_HANDLE buffer, void** memoryOut,
                                                     void** privOut);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DSQueueBuffer(DS_HANDLE ds, BUFFER_HANDLE buffer);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DSFlushQueue(DS_HANDLE ds, ACQ_QUEUE_TYPE operation);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DSStartAcquisition(DS_HANDLE ds, ACQ_START_FLAGS flags, uint64_t numToAcquire);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DSStopAcquisition(DS_HANDLE ds, ACQ_STOP_FLAGS flags);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DSGetInfo(DS_HANDLE ds, STREAM_INFO_CMD cmd, INFO_DATATYPE* type, void* buf,
                                                size_t* size);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferID(DS_HANDLE ds, uint32_t index, BUFFER_HANDLE* out);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferInfo(DS_HANDLE ds, BUFFER_HANDLE buffer, BUFFER_INFO_CMD cmd,
                                                      INFO_DATATYPE* type, void* buf, size_t* size);
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DSClose(DS_HANDLE ds);
/** Since 1.3. */
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferChunkData(DS_HANDLE ds, BUFFER_HANDLE buffer,
                                                           SINGLE_CHUNK_DATA* chunks, size_t* count);
/** Since 1.4. */
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DSGetParentDev(DS_HANDLE ds, DEV_HANDLE* out);
/** Since 1.5. */
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DSGetNumBufferParts(DS_HANDLE ds, BUFFER_HANDLE buffer, uint32_t* count);
/** Since 1.5. */
GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferPartInfo(DS_HANDLE ds, BUFFER_HANDLE buffer, uint32_t part,
                                                          BUFFER_PART_INFO_CMD cmd, INFO_DATATYPE* type, void* buf,
                                                          size_t* size);

/* ---- Function pointer types, for consumers that load producers ---------------------------------------------- */

/* Library */

typedef GC_ERROR(GC_CALLTYPE* PGCInitLib)(void);
typedef GC_ERROR(GC_CALLTYPE* PGCCloseLib)(void);
typedef GC_ERROR(GC_CALLTYPE* PGCGetInfo)(TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size);
typedef GC_ERROR(GC_CALLTYPE* PGCGetLastError)(GC_ERROR* code, char* text, size_t* size);

/* Port */

typedef GC_ERROR(GC_CALLTYPE* PGCReadPort)(PORT_HANDLE port, uint64_t address, void* buf, size_t* size);
typedef GC_ERROR(GC_CALLTYPE* PGCWritePort)(PORT_HANDLE port, uint64_t address, const void* buf, size_t* size);
typedef GC_ERROR(GC_CALLTYPE* PGCGetPortURL)(PORT_HANDLE port, char* url, size_t* size);
typedef GC_ERROR(GC_CALLTYPE* PGCGetPortInfo)(PORT_HANDLE port, PORT_INFO_CMD cmd, INFO_DATATYPE* type, void* buf,
                                              size_t* size);
typedef GC_ERROR(GC_CALLTYPE* PGCGetNumPortURLs)(PORT_HANDLE port, uint32_t* count);
typedef GC_ERROR(GC_CALLTYPE* PGCGetPortURLInfo)(PORT_HANDLE port, uint32_t index, URL_INFO_CMD cmd,
                                                 INFO_DATATYPE* type, void* buf, size_t* size);
typedef GC_ERROR(GC_CALLTYPE* PGCReadPortStacked)(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count);
typedef GC_ERROR(GC_CALLTYPE* PGCWritePortStacked)(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count);

/* Events */

typedef GC_ERROR(GC_CALLTYPE* PGCRegisterEvent)(EVENTSRC_HANDLE module, EVENT_TYPE event, EVENT_HANDLE* out);
typedef GC_ERROR(GC_CALLTYPE* PGCUnregisterEvent)(EVENTSRC_HANDLE module, EVENT_TYPE event);
typedef GC_ERROR(GC_CALLTYPE* PEventGetData)(EVENT_HANDLE event, void* buf, size_t* size, uint64_t timeoutMs);
typedef GC_ERROR(GC_CALLTYPE* PEventGetDataInfo)(EVENT_HANDLE event, const void* in, size_t inSize,
                                                 EVENT_DATA_INFO_CMD cmd, INFO_DATATYPE* type, void* out,
                                                 size_t* outSize);
typedef GC_ERROR(GC_CALLTYPE* PEventGetInfo)(EVENT_HANDLE event, EVENT_INFO_CMD cmd, INFO_DATATYPE* type, void* buf,
                                             size_t* size);
typedef GC_ERROR(GC_CALLTYPE* PEventFlush)(EVENT_HANDLE event);
typedef GC_ERROR(GC_CALLTYPE* PEventKill)(EVENT_HANDLE event);

/* System */

typedef GC_ERROR(GC_CALLTYPE* PTLOpen)(TL_HANDLE* out);
typedef GC_ERROR(GC_CALLTYPE* PTLClose)(TL_HANDLE tl);
typedef GC_ERROR(GC_CALLTYPE* PTLGetInfo)(TL_HANDLE tl, TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size);
typedef GC_ERROR(GC_CALLTYPE* PTLGetNumInterfaces)(TL_HANDLE tl, uint32_t* count);
typedef GC_ERROR(GC_CALLTYPE* PTLGetInterfaceID)(TL_HANDLE tl, uint32_t index, char* id, size_t* size);
typedef GC_ERROR(GC_CALLTYPE* PTLGetInterfaceInfo)(TL_HANDLE tl, const char* id, INTERFACE_INFO_CMD cmd,
                                                   INFO_DATATYPE* type, void* buf, size_t* size);
typedef GC_ERROR(GC_CALLTYPE* PTLOpenInterface)(TL_HANDLE tl, const char* id, IF_HANDLE* out);
typedef GC_ERROR(GC_CALLTYPE* PTLUpdateInterfaceList)(TL_HANDLE tl, bool8_t* changed, uint64_t timeoutMs);

/* Interface */

typedef GC_ERROR(GC_CALLTYPE* PIFClose)(IF_HANDLE iface);
typedef GC_ERROR(GC_CALLTYPE* PIFGetInfo)(IF_HANDLE iface, INTERFACE_INFO_CMD cmd, INFO_DATATYPE* type, void* buf,
                                          size_t* size);
typedef GC_ERROR(GC_CALLTYPE* PIFGetNumDevices)(IF_HANDLE iface, uint32_t* count);
typedef GC_ERROR(GC_CALLTYPE* PIFGetDeviceID)(IF_HANDLE iface, uint32_t index, char* id, size_t* size);
typedef GC_ERROR(GC_CALLTYPE* PIFUpdateDeviceList)(IF_HANDLE iface, bool8_t* changed, uint64_t timeoutMs);
typedef GC_ERROR(GC_CALLTYPE* PIFGetDeviceInfo)(IF_HANDLE iface, const char* id, DEVICE_INFO_CMD cmd,
                                                INFO_DATATYPE* type, void* buf, size_t* size);
typedef GC_ERROR(GC_CALLTYPE* PIFOpenDevice)(IF_HANDLE iface, const char* id, DEVICE_ACCESS_FLAGS access,
                                             DEV_HANDLE* out);
typedef GC_ERROR(GC_CALLTYPE* PIFGetParentTL)(IF_HANDLE iface, TL_HANDLE* out);

/* Device */

typedef GC_ERROR(GC_CALLTYPE* PDevClose)(DEV_HANDLE dev);
typedef GC_ERROR(GC_CALLTYPE* PDevGetInfo)(DEV_HANDLE dev, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type, void* buf,
                                           size_t* size);
typedef GC_ERROR(GC_CALLTYPE* PDevGetPort)(DEV_HANDLE dev, PORT_HANDLE* out);
typedef GC_ERROR(GC_CALLTYPE* PDevGetNumDataStreams)(DEV_HANDLE dev, uint32_t* count);
typedef GC_ERROR(GC_CALLTYPE* PDevGetDataStreamID)(DEV_HANDLE dev, uint32_t index, char* id, size_t* size);
typedef GC_ERROR(GC_CALLTYPE* PDevOpenDataStream)(DEV_HANDLE dev, const char* id, DS_HANDLE* out);
typedef GC_ERROR(GC_CALLTYPE* PDevGetParentIF)(DEV_HANDLE dev, IF_HANDLE* out);

/* Data stream and buffer */

typedef GC_ERROR(GC_CALLTYPE* PDSAnnounceBuffer)(DS_HANDLE ds, void* memory, size_t size, void* priv,
                                                 BUFFER_HANDLE* out);
typedef GC_ERROR(GC_CALLTYPE* PDSAllocAndAnnounceBuffer)(DS_HANDLE ds, size_t size, void* priv, BUFFER_HANDLE* out);
typedef GC_ERROR(GC_CALLTYPE* PDSRevokeBuffer)(DS_HANDLE ds, BUFFER_HANDLE buffer, void** memoryOut, void** privOut);
typedef GC_ERROR(GC_CALLTYPE* PDSQueueBuffer)(DS_HANDLE ds, BUFFER_HANDLE buffer);
typedef GC_ERROR(GC_CALLTYPE* PDSFlushQueue)(DS_HANDLE ds, ACQ_QUEUE_TYPE operation);
typedef GC_ERROR(GC_CALLTYPE* PDSStartAcquisition)(DS_HANDLE ds, ACQ_START_FLAGS flags, uint64_t numToAcquire);
typedef GC_ERROR(GC_CALLTYPE* PDSStopAcquisition)(DS_HANDLE ds, ACQ_STOP_FLAGS flags);
typedef GC_ERROR(GC_CALLTYPE* PDSGetInfo)(DS_HANDLE ds, STREAM_INFO_CMD cmd, INFO_DATATYPE* type, void* buf,
                                          size_t* size);
typedef GC_ERROR(GC_CALLTYPE* PDSGetBufferID)(DS_HANDLE ds, uint32_t index, BUFFER_HANDLE* out);
typedef GC_ERROR(GC_CALLTYPE* PDSGetBufferInfo)(DS_HANDLE ds, BUFFER_HANDLE buffer, BUFFER_INFO_CMD cmd,
                                                INFO_DATATYPE* type, void* buf, size_t* size);
typedef GC_ERROR(GC_CALLTYPE* PDSClose)(DS_HANDLE ds);
typedef GC_ERROR(GC_CALLTYPE* PDSGetBufferChunkData)(DS_HANDLE ds, BUFFER_HANDLE buffer, SINGLE_CHUNK_DATA* chunks,
                                                     size_t* count);
typedef GC_ERROR(GC_CALLTYPE* PDSGetParentDev)(DS_HANDLE ds, DEV_HANDLE* out);
typedef GC_ERROR(GC_CALLTYPE* PDSGetNumBufferParts)(DS_HANDLE ds, BUFFER_HANDLE buffer, uint32_t* count);
typedef GC_ERROR(GC_CALLTYPE* PDSGetBufferPartInfo)(DS_HANDLE ds, BUFFER_HANDLE buffer, uint32_t part,
                                                    BUFFER_PART_INFO_CMD cmd, INFO_DATATYPE* type, void* buf,
                                                    size_t* size);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
