// The first images in C++: finds a camera and looks at ten images.
#include <cstdio>
#include <ovi/ovi.hpp>

int main() {
  try {
    const ovi::Library library(ovi::LogLevel::kError);
    const auto cameras = library.discover();
    if (cameras.empty()) {
      std::fputs("no camera was found: does GENICAM_GENTL64_PATH name the folder of a producer?\n", stderr);
      return 1;
    }
    const ovi::Device device(cameras.front().deviceID);
    const ovi::Stream stream = device.openStream();
    device.start();
    for (ovi::Image& image : stream.images(10))
      std::printf("frame %llu: %u x %u, %zu bytes\n", static_cast<unsigned long long>(image.frameID()), image.width(),
                  image.height(), image.size());
    device.stop();
    return 0;
  } catch (const ovi::Error& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
