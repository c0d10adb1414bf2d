// The first images in C++: finds a camera and looks at ten images.
#include <iostream>
#include <ovi/ovi.hpp>

int main() {
  try {
    const ovi::Library library(ovi::LogLevel::kError);
    const auto cameras = library.discover();
    if (cameras.empty()) {
      std::cerr << "no camera was found: does GENICAM_GENTL64_PATH name the folder of a producer?\n";
      return 1;
    }
    const ovi::Device camera(cameras.front().deviceID);
    const ovi::Stream stream = camera.openStream();
    ovi::Acquisition acquisition = camera.acquire();
    for (const ovi::Image& image : stream.images(10))  // each goes back to the camera when the next one is asked for
      std::cout << "frame " << image.frameID() << ": " << image.width() << " x " << image.height() << ", "
                << image.size() << " bytes\n";
    acquisition.stop();
    return 0;
  } catch (const ovi::Error& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
