// Images from several cameras at once: one thread for each, and what each of them lost.
#include <iostream>
#include <mutex>
#include <ovi/ovi.hpp>
#include <thread>

namespace {

constexpr std::size_t kMostCameras = 3;
constexpr std::uint64_t kImages = 50;

std::mutex outputMutex;

void report(std::ostream& to, const std::string& line) {
  const std::lock_guard<std::mutex> lock(outputMutex);
  to << line << '\n';
}

void grab(const ovi::DeviceInfo& info, bool& succeeded) {
  try {
    const ovi::Device camera(info.deviceID);
    const ovi::Stream stream = camera.openStream(16);
    ovi::Acquisition acquisition = camera.acquire();
    std::uint64_t taken = 0;
    std::uint64_t missing = 0;
    std::uint64_t expected = 0;
    for (const ovi::Image& image : stream.images(kImages)) {
      if (taken++ > 0)
        missing += image.frameID() - expected;
      expected = image.frameID() + 1;
    }
    acquisition.stop();
    report(std::cout, std::string(info.model) + " " + info.serialNumber + ": " + std::to_string(taken) + " images, " +
                          std::to_string(missing) + " missing");
    succeeded = true;
  } catch (const ovi::Error& error) {
    report(std::cerr, std::string(info.model) + " " + info.serialNumber + ": " + error.what());
  }
}

}  // namespace

int main() {
  try {
    const ovi::Library library(ovi::LogLevel::kError);
    auto cameras = library.discover();
    if (cameras.empty()) {
      std::cerr << "no camera was found\n";
      return 1;
    }
    if (cameras.size() > kMostCameras)
      cameras.resize(kMostCameras);
    const auto succeeded = std::make_unique<bool[]>(cameras.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < cameras.size(); ++i)
      threads.emplace_back(grab, std::cref(cameras[i]), std::ref(succeeded[i]));
    for (std::thread& thread : threads)
      thread.join();  // before the library closes: nobody may be inside it then
    for (std::size_t i = 0; i < cameras.size(); ++i)
      if (!succeeded[i])
        return 1;
    return 0;
  } catch (const ovi::Error& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
