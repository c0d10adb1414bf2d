/**
 * How a test makes the virtual camera producer misbehave the way a real producer or a real camera does.
 *
 * The producer exports one function more than GenTL asks for, oviVirtualHostility(). It returns a table of functions
 * that give orders to the loaded producer. Every order works at once, from any thread, before and after GCInitLib too,
 * and until reset() or until its calls are used up. Without orders the producer pays one relaxed atomic load a call.
 *
 * Functions are named as GenTL exports them ("GCReadPort"); devices by their ID; NULL or "" as a device's name means
 * every device. Calls are counted from the order on, the first is 1. UINT64_MAX as a number of calls means "from then
 * on". The functions return 0, or -1 when a name or a value means nothing to the producer; then nothing changed.
 */
#ifndef OVI_VIRTUAL_HOSTILITY_H
#define OVI_VIRTUAL_HOSTILITY_H

#include <stdint.h>

#if defined(_WIN32)
#ifdef OVI_VIRTUAL_PRODUCER
#define OVI_VIRTUAL_API __declspec(dllexport)
#else
#define OVI_VIRTUAL_API
#endif
#elif defined(__GNUC__)
#define OVI_VIRTUAL_API __attribute__((visibility("default")))
#else
#define OVI_VIRTUAL_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** What happens to a text that a function hands out. */
typedef enum OviVirtualText {
  OVI_VIRTUAL_TEXT_UNTERMINATED = 0, /**< The text without its NUL; the reported size is one less */
  OVI_VIRTUAL_TEXT_EMPTY = 1,        /**< Just the NUL */
  OVI_VIRTUAL_TEXT_FULL = 2 /**< The whole buffer full of 'x' without a NUL; the reported size is its capacity */
} OviVirtualText;

/** What happens to a frame. Values may be added up. */
typedef enum OviVirtualFrame {
  OVI_VIRTUAL_FRAME_INCOMPLETE = 1,  /**< Half of the data, flagged incomplete */
  OVI_VIRTUAL_FRAME_NO_GEOMETRY = 2, /**< Width, height and pixel format answer "not implemented" (-1003) */
  OVI_VIRTUAL_FRAME_LATE = 4,        /**< The frame is delivered after the one that follows it */
  OVI_VIRTUAL_FRAME_LOST = 8,        /**< The frame never arrives; its frame ID is skipped */
  OVI_VIRTUAL_FRAME_STUCK = 16       /**< Half of the data, then the transfer hangs until reset(), a stop or a flush */
} OviVirtualFrame;

/** The orders. A pointer to it stays valid while the producer is loaded. */
typedef struct OviVirtualHostility {
  /** Version of this table, 1. Later versions only append. */
  uint32_t version;

  /** The function returns the code, which must not be 0, without doing anything, from its call number `from` on,
   * `calls` times. */
  int32_t (*fail)(const char* function, int32_t code, uint64_t from, uint64_t calls);

  /** Calls number `from` and later, `calls` of them, do not come back before release() or reset(); then they do their
   * work. */
  int32_t (*block)(const char* function, uint64_t from, uint64_t calls);

  /** Ends block() for the function and lets its blocked calls go on. */
  int32_t (*release)(const char* function);

  /** Number of calls that block() holds at this moment. */
  uint32_t (*blocked)(void);

  /** Spoils the texts that the function hands out, for one info command or for all (-1). */
  int32_t (*spoilText)(const char* function, int32_t command, OviVirtualText how, uint64_t calls);

  /** Reports another INFO_DATATYPE than that of the value, for one info command or for all (-1). */
  int32_t (*spoilType)(const char* function, int32_t command, int32_t type, uint64_t calls);

  /** GCReadPort moves this many bytes less than asked (never less than none) and yet reports success. */
  int32_t (*shortReads)(uint32_t missing, uint64_t from, uint64_t calls);

  /** Spoils frames of all streams of the device; `how` is a sum of OviVirtualFrame. Frames are counted like calls. */
  int32_t (*spoilFrames)(const char* device, uint32_t how, uint64_t from, uint64_t frames);

  /** Non-zero: the cameras go on, but no frame arrives any more; zero: frames arrive again. */
  int32_t (*pauseFrames)(const char* device, int32_t paused);

  /** Pulls the cable. The open device answers IO errors until it is closed; it leaves the list with its next update. */
  int32_t (*loseDevice)(const char* device);

  /** Plugs the device in again. It comes back into the list with its next update and can be opened then. */
  int32_t (*returnDevice)(const char* device);

  /** A command of the device's description reads as not yet done for this many polls after each execution. */
  int32_t (*busyCommands)(const char* device, uint32_t polls);

  /** List updates take this long, in milliseconds; a shorter time-out ends with TIMEOUT (-1011) and the old list. */
  int32_t (*slowUpdates)(uint64_t milliseconds);

  /** Starts counting the calls of every function, from zero. */
  void (*startCounting)(void);

  /** Calls of the function since startCounting(); 0 for a name that is none. */
  uint64_t (*calls)(const char* function);

  /** Withdraws all orders, lets blocked calls go on, plugs every device in and ends the counting. */
  void (*reset)(void);
} OviVirtualHostility;

/** The one export. */
OVI_VIRTUAL_API const OviVirtualHostility* oviVirtualHostility(void);
typedef const OviVirtualHostility* (*POviVirtualHostility)(void);

#ifdef __cplusplus
}
#endif

#endif
