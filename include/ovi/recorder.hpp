/// @file
/// Recording in C++, with producers that can record.
#pragma once

#include <cstdint>

#include "ovi/device.hpp"
#include "ovi/ovi.h"
#include "ovi/result.hpp"

namespace ovi {

/// Records images with the camera's producer and plays them back. What the records hold is the producer's matter: see
/// its documentation. A function that the producer lacks throws std::runtime_error, so ask isAvailable() first.
class Recorder {
 public:
  /// Of an open camera, which must outlive it.
  explicit Recorder(const Device& device) noexcept : device_(device.handle()) {}

  /// Whether the camera's producer can record.
  bool isAvailable() const noexcept { return oviNimboIsRecordingAvailable(device_); }

  /// Images a second that are recorded; the virtual camera records all with 0.
  void setFrameRate(std::uint32_t rate) const { check(oviNimboSetFrameRate(device_, rate), "oviNimboSetFrameRate"); }
  /// Whether recorded images are converted to RGB.
  void setRgbConversion(bool enabled) const {
    check(oviNimboSetRGBConversionEnabled(device_, enabled), "oviNimboSetRGBConversionEnabled");
  }
  /// Starts recording.
  void start() const { check(oviNimboStartRecording(device_), "oviNimboStartRecording"); }
  /// Ends recording.
  void stop() const { check(oviNimboStopRecording(device_), "oviNimboStopRecording"); }

  /// Opens what was recorded; the argument is handed to the producer, and may be null.
  void open(void* argument = nullptr) const {
    check(oviNimboOpenRecordings(device_, argument), "oviNimboOpenRecordings");
  }
  /// Tells what was recorded, in a record of the producer's.
  void readInfo(void* info) const { check(oviNimboGetRecordsInfo(device_, info), "oviNimboGetRecordsInfo"); }
  /// Selects a recording by its position, from 0.
  void select(std::uint32_t index) const { check(oviNimboSelectRecording(device_, index), "oviNimboSelectRecording"); }
  /// Describes a recording in a record of the producer's.
  void readDescription(std::uint32_t index, void* data) const {
    check(oviNimboGetRecordingData(device_, index, data), "oviNimboGetRecordingData");
  }
  /// Reads the next image of the selected recording. @return a reference to it, for release(); null when there is none
  void* readImage(void* argument) const {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(oviNimboReadRecording(device_, argument)));
  }
  /// Gives an image back.
  void release(void* image) const { check(oviNimboFreeRecordImage(device_, image), "oviNimboFreeRecordImage"); }
  /// Closes what was recorded.
  void close() const { check(oviNimboCloseRecordings(device_), "oviNimboCloseRecordings"); }
  /// Deletes what was recorded.
  void clear() const { check(oviNimboClearAllRecordings(device_), "oviNimboClearAllRecordings"); }

 private:
  std::uint64_t device_;
};

}  // namespace ovi
