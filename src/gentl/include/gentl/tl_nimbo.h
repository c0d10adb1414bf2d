// The recording extension that one family of producers offers beyond the standard.
#pragma once

#include <cstdint>
#include <type_traits>

#include "gentl/export_table.h"

namespace GenTLCpp {

struct NimboFunctions {
  using Command = std::int32_t(GC_CALLTYPE*)();
  using WithPointer = std::int32_t(GC_CALLTYPE*)(void*);
  using WithNumber = std::int32_t(GC_CALLTYPE*)(std::uint32_t);
  using WithRecord = std::int32_t(GC_CALLTYPE*)(std::uint32_t, void*);
  using ReadImage = std::uint64_t(GC_CALLTYPE*)(void*);
  using Question = std::uint8_t(GC_CALLTYPE*)();
  using WithFlag = std::int32_t(GC_CALLTYPE*)(std::uint8_t);

  explicit NimboFunctions(LibraryHandle handle) : library(handle) {}

  LibraryHandle library;
  Export<Command> startRecording{library, "nimboStartRecording"};
  Export<Command> stopRecording{library, "nimboStopRecording"};
  Export<WithPointer> openRecordings{library, "nimboOpenRecordings"};
  Export<Command> closeRecordings{library, "nimboCloseRecordings"};
  Export<Command> clearAllRecordings{library, "nimboClearAllRecordings"};
  Export<WithRecord> getRecordingData{library, "nimboGetRecordingData"};
  Export<WithNumber> selectRecording{library, "nimboSelectRecording"};
  Export<ReadImage> readRecording{library, "nimboReadRecording"};
  Export<WithPointer> freeRecordImage{library, "nimboFreeRecordImage"};
  Export<Question> isRecordingAvailable{library, "nimboIsRecordingAvailable"};
  Export<WithPointer> getRecordsInfo{library, "nimboGetRecordsInfo"};
  Export<WithNumber> setFrameRate{library, "nimboSetFrameRate"};
  Export<WithFlag> setRGBConversionEnabled{library, "nimboSetRGBConversionEnabled"};
};

/** The extension as one producer has it. Every call of a missing function throws std::runtime_error. */
class TLNimbo {
 public:
  explicit TLNimbo(LibraryHandle library) : functions_(library) {}

  std::int32_t startRecording() const { return call(functions_.startRecording); }
  std::int32_t stopRecording() const { return call(functions_.stopRecording); }
  std::int32_t openRecordings(void* argument) const { return call(functions_.openRecordings, argument); }
  std::int32_t closeRecordings() const { return call(functions_.closeRecordings); }
  std::int32_t clearAllRecordings() const { return call(functions_.clearAllRecordings); }
  std::int32_t getRecordingData(std::uint32_t index, void* data) const {
    return call(functions_.getRecordingData, index, data);
  }
  std::int32_t selectRecording(std::uint32_t index) const { return call(functions_.selectRecording, index); }
  /** The producer's reference to an image. */
  std::uint64_t readRecording(void* argument) const { return call(functions_.readRecording, argument); }
  std::int32_t freeRecordImage(void* image) const { return call(functions_.freeRecordImage, image); }
  bool isRecordingAvailable() const { return call(functions_.isRecordingAvailable) != 0; }
  std::int32_t getRecordsInfo(void* info) const { return call(functions_.getRecordsInfo, info); }
  std::int32_t setFrameRate(std::uint32_t frameRate) const { return call(functions_.setFrameRate, frameRate); }
  std::int32_t setRGBConversionEnabled(bool enabled) const {
    return call(functions_.setRGBConversionEnabled, static_cast<std::uint8_t>(enabled));
  }

 private:
  [[noreturn]] static void throwMissing();

  template<class Function, class... Args>
  static std::invoke_result_t<Function, Args...> call(const Export<Function>& function, Args... args) {
    if (function.get() == nullptr) {
      throwMissing();
    }
    return function.get()(args...);
  }

  NimboFunctions functions_;
};

}  // namespace GenTLCpp
