// The recording functions that only the build with the extension exports.
#include <ovi_virtual/recording.h>

#include "gentl/call.h"
#include "modules/recorder.h"

using namespace vcam;

namespace {

// Runs the work on the recorder of a producer that records.
template<class Work>
std::int32_t onRecorder(Function function, Work&& work) {
  return call(function, [&] {
    const std::shared_ptr<Recorder> recorder = Library::instance().recorder();
    if (!recorder) {
      fail(GC_ERR_NOT_AVAILABLE, "this producer does not record");
    }
    work(*recorder);
  });
}

}  // namespace

std::int32_t nimboStartRecording(void) {
  return onRecorder(Function::nimboStartRecording, [](Recorder& recorder) { recorder.start(); });
}

std::int32_t nimboStopRecording(void) {
  return onRecorder(Function::nimboStopRecording, [](Recorder& recorder) { recorder.stop(); });
}

std::int32_t nimboOpenRecordings(void* info) {
  return onRecorder(Function::nimboOpenRecordings, [&](Recorder& recorder) {
    requireIfGiven(info, "the records' info");
    recorder.open();
    if (info != nullptr) {
      *static_cast<OviVirtualRecordsInfo*>(info) = recorder.info();
    }
  });
}

std::int32_t nimboCloseRecordings(void) {
  return onRecorder(Function::nimboCloseRecordings, [](Recorder& recorder) { recorder.close(); });
}

std::int32_t nimboClearAllRecordings(void) {
  return onRecorder(Function::nimboClearAllRecordings, [](Recorder& recorder) { recorder.clear(); });
}

std::int32_t nimboGetRecordingData(std::uint32_t index, void* data) {
  return onRecorder(Function::nimboGetRecordingData, [&](Recorder& recorder) {
    store(static_cast<OviVirtualRecordingData*>(data), recorder.data(index), "the recording's data");
  });
}

std::int32_t nimboSelectRecording(std::uint32_t index) {
  return onRecorder(Function::nimboSelectRecording, [&](Recorder& recorder) { recorder.select(index); });
}

std::uint64_t nimboReadRecording(void* image) {
  std::uint64_t reference = 0;
  onRecorder(Function::nimboReadRecording, [&](Recorder& recorder) {
    require(image, "the image");
    reference = recorder.read(*static_cast<OviVirtualRecordedImage*>(image));
  });
  return reference;
}

std::int32_t nimboFreeRecordImage(void* image) {
  return onRecorder(Function::nimboFreeRecordImage, [&](Recorder& recorder) {
    recorder.free(static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(image)));
  });
}

bool nimboIsRecordingAvailable(void) {
  bool available = false;
  call(Function::nimboIsRecordingAvailable, [&] { available = Library::instance().recorder() != nullptr; });
  return available;
}

std::int32_t nimboGetRecordsInfo(void* info) {
  return onRecorder(Function::nimboGetRecordsInfo, [&](Recorder& recorder) {
    store(static_cast<OviVirtualRecordsInfo*>(info), recorder.info(), "the records' info");
  });
}

std::int32_t nimboSetFrameRate(std::uint32_t framesPerSecond) {
  return onRecorder(Function::nimboSetFrameRate, [&](Recorder& recorder) { recorder.setFrameRate(framesPerSecond); });
}

std::int32_t nimboSetRGBConversionEnabled(bool enabled) {
  return onRecorder(Function::nimboSetRGBConversionEnabled,
                    [&](Recorder& recorder) { recorder.setRgbConversion(enabled); });
}
