// Recording with a producer that can: images are kept by it and read back later. The records that it fills are its own;
// these are those of the virtual camera's variant nimbo_producer.cti.
#include <ovi_virtual/recording.h>
#include <cinttypes>
#include <cstdio>
#include <ovi/ovi.hpp>
#include <stdexcept>

namespace {

void record(const ovi::Device& camera, const ovi::Recorder& recorder, std::uint64_t images) {
  const ovi::Stream stream = camera.openStream();
  recorder.setFrameRate(0);  // every image
  recorder.start();
  ovi::Acquisition acquisition = camera.acquire();
  for (const ovi::Image& image : stream.images(images))
    std::printf("live: frame %" PRIu64 "\n", image.frameID());
  acquisition.stop();
  recorder.stop();
}

void play(const ovi::Recorder& recorder) {
  OviVirtualRecordsInfo info{};
  OviVirtualRecordingData recording{};
  recorder.open(&info);
  recorder.select(info.recordings - 1);  // the last one
  recorder.readDescription(info.recordings - 1, &recording);
  for (std::uint32_t i = 0; i < recording.images; ++i) {
    OviVirtualRecordedImage image{};
    image.index = OVI_VIRTUAL_NEXT_IMAGE;
    void* const reference = recorder.readImage(&image);
    if (reference == nullptr)
      throw std::runtime_error("an image of the recording cannot be read");
    std::printf("recorded: frame %" PRIu64 ", %u x %u\n", image.frameId, image.width, image.height);
    recorder.release(reference);
  }
  recorder.close();
}

}  // namespace

int main() {
  try {
    const ovi::Library library(ovi::LogLevel::kError);
    const auto cameras = library.discover();
    if (cameras.empty()) {
      std::fprintf(stderr, "no camera was found\n");
      return 1;
    }
    const ovi::Device camera(cameras.front().deviceID);
    const ovi::Recorder recorder(camera);
    if (!recorder.isAvailable()) {
      std::fprintf(stderr, "the producer of %s cannot record; the virtual camera's in the folder \"recording\" can\n",
                   cameras.front().displayName);
      return 1;
    }
    record(camera, recorder, 5);
    play(recorder);
    return 0;
  } catch (const std::exception& error) {  // ovi::Error, and what the recording functions throw without a producer
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
