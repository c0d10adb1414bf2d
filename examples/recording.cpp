// Recording with a producer that can: images are kept by it and read back later. The records that it fills are its own;
// these are those of the virtual camera's variant nimbo_producer.cti.
#include <ovi_virtual/recording.h>
#include <cinttypes>
#include <cstdio>
#include <ovi/ovi.hpp>
#include <stdexcept>

namespace {

void record(const ovi::Device& camera, std::uint64_t images) {
  const ovi::Stream stream = camera.openStream();
  ovi::check(oviNimboSetFrameRate(camera.handle(), 0), "set the rate of recording");  // 0: every image
  ovi::check(oviNimboStartRecording(camera.handle()), "start recording");
  ovi::Acquisition acquisition = camera.acquire();
  for (const ovi::Image& image : stream.images(images))
    std::printf("live: frame %" PRIu64 "\n", image.frameID());
  acquisition.stop();
  ovi::check(oviNimboStopRecording(camera.handle()), "stop recording");
}

void play(const ovi::Device& camera) {
  OviVirtualRecordsInfo info{};
  OviVirtualRecordingData recording{};
  ovi::check(oviNimboOpenRecordings(camera.handle(), &info), "open the recordings");
  ovi::check(oviNimboSelectRecording(camera.handle(), info.recordings - 1), "select the last recording");
  ovi::check(oviNimboGetRecordingData(camera.handle(), info.recordings - 1, &recording), "describe the recording");
  for (std::uint32_t i = 0; i < recording.images; ++i) {
    OviVirtualRecordedImage image{};
    image.index = OVI_VIRTUAL_NEXT_IMAGE;
    const std::uint64_t reference = oviNimboReadRecording(camera.handle(), &image);
    if (reference == 0)
      throw std::runtime_error("an image of the recording cannot be read");
    std::printf("recorded: frame %" PRIu64 ", %u x %u\n", image.frameId, image.width, image.height);
    ovi::check(oviNimboFreeRecordImage(camera.handle(), reinterpret_cast<void*>(reference)), "give the image back");
  }
  ovi::check(oviNimboCloseRecordings(camera.handle()), "close the recordings");
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
    if (!oviNimboIsRecordingAvailable(camera.handle())) {
      std::fprintf(stderr, "the producer of %s cannot record\n", cameras.front().displayName);
      return 1;
    }
    record(camera, 5);
    play(camera);
    return 0;
  } catch (const std::exception& error) {  // ovi::Error, and what the recording functions throw without a producer
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
