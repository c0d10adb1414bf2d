/**
 * Recording and playing back the images of virtual cameras, beside GenTL.
 *
 * A producer whose file name contains "nimbo_producer.cti" and that was built with this extension keeps the images that
 * its cameras deliver, on request, and hands them out again. One recording holds the images of one camera: of the one
 * whose image comes first after the start. Recordings live in memory until they are cleared or GCCloseLib.
 *
 * The functions return 0 or a GenTL error code, whose text GCGetLastError() has. They may be called from any thread
 * between GCInitLib and GCCloseLib.
 */
#ifndef OVI_VIRTUAL_RECORDING_H
#define OVI_VIRTUAL_RECORDING_H

#include <stdint.h>

#ifndef __cplusplus
#include <stdbool.h>
#endif

#if defined(_WIN32)
#ifdef OVI_VIRTUAL_PRODUCER
#define OVI_VIRTUAL_RECORDING_API __declspec(dllexport)
#else
#define OVI_VIRTUAL_RECORDING_API
#endif
#elif defined(__GNUC__)
#define OVI_VIRTUAL_RECORDING_API __attribute__((visibility("default")))
#else
#define OVI_VIRTUAL_RECORDING_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** What there is at this moment. */
typedef struct OviVirtualRecordsInfo {
  uint32_t recordings;    /**< Recordings that are finished */
  uint32_t isRecording;   /**< 1 between nimboStartRecording and nimboStopRecording */
  uint32_t isOpen;        /**< 1 between nimboOpenRecordings and nimboCloseRecordings */
  uint32_t frameRate;     /**< Images a second that a recording takes at most; 0: all */
  uint32_t rgbConversion; /**< 1: images are read as RGB8 */
  uint32_t reserved;
  uint64_t usedBytes;
  uint64_t capacityBytes; /**< A recording that would need more takes no further image */
} OviVirtualRecordsInfo;

/** One recording. */
typedef struct OviVirtualRecordingData {
  uint32_t images;
  uint32_t frameRate;   /**< As it was set at the start */
  uint32_t isTruncated; /**< 1: the memory did not hold all images */
  uint32_t width;       /**< Of the first image; 0 without images, also below */
  uint32_t height;
  uint32_t pixelFormat;      /**< PFNC code */
  uint64_t firstTimestampNs; /**< In the camera's time */
  uint64_t lastTimestampNs;
  uint64_t bytes;
  char deviceId[64];
} OviVirtualRecordingData;

/** The image that comes next, for OviVirtualRecordedImage::index. After the last one comes none. */
#define OVI_VIRTUAL_NEXT_IMAGE UINT32_MAX

/** One image of the selected recording. */
typedef struct OviVirtualRecordedImage {
  uint32_t index; /**< In: which image, from 0, or OVI_VIRTUAL_NEXT_IMAGE; out: which it is */
  uint32_t width; /**< Out, as all that follows */
  uint32_t height;
  uint32_t pixelFormat; /**< PFNC code of the data as they are handed out */
  uint64_t frameId;
  uint64_t timestampNs;
  uint64_t size;
  const void* data; /**< Lines without padding; valid until nimboFreeRecordImage */
} OviVirtualRecordedImage;

/** Begins a recording: images that are delivered from now on are kept. -1004 when one is under way. */
OVI_VIRTUAL_RECORDING_API int32_t nimboStartRecording(void);

/** Ends the recording and adds it as the last one, empty or not. -1004 when none is under way. */
OVI_VIRTUAL_RECORDING_API int32_t nimboStopRecording(void);

/** Opens the recordings for reading; the first one is selected. @param info  OviVirtualRecordsInfo to fill, or null */
OVI_VIRTUAL_RECORDING_API int32_t nimboOpenRecordings(void* info);

/** Ends the reading. Images that were read stay until they are given back. */
OVI_VIRTUAL_RECORDING_API int32_t nimboCloseRecordings(void);

/** Forgets all finished recordings, open or not. */
OVI_VIRTUAL_RECORDING_API int32_t nimboClearAllRecordings(void);

/** @param data  OviVirtualRecordingData to fill */
OVI_VIRTUAL_RECORDING_API int32_t nimboGetRecordingData(uint32_t index, void* data);

/** Chooses the recording that nimboReadRecording reads, from its first image on. */
OVI_VIRTUAL_RECORDING_API int32_t nimboSelectRecording(uint32_t index);

/**
 * Reads an image of the selected recording.
 * @param image  OviVirtualRecordedImage
 * @return a reference for nimboFreeRecordImage, never 0; 0 on failure
 */
OVI_VIRTUAL_RECORDING_API uint64_t nimboReadRecording(void* image);

/** @param image  the reference that nimboReadRecording returned, as a pointer */
OVI_VIRTUAL_RECORDING_API int32_t nimboFreeRecordImage(void* image);

/** Whether this producer records, under the name that it has. */
OVI_VIRTUAL_RECORDING_API bool nimboIsRecordingAvailable(void);

/** @param info  OviVirtualRecordsInfo to fill */
OVI_VIRTUAL_RECORDING_API int32_t nimboGetRecordsInfo(void* info);

/** Images a second that later recordings take at most; 0, as in the beginning, takes all. At most 100000. */
OVI_VIRTUAL_RECORDING_API int32_t nimboSetFrameRate(uint32_t framesPerSecond);

/** Whether images are handed out as RGB8 instead of the format in which they came; off in the beginning. */
OVI_VIRTUAL_RECORDING_API int32_t nimboSetRGBConversionEnabled(bool enabled);

#ifdef __cplusplus
}
#endif

#endif
