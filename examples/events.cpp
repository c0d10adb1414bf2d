// Callbacks and events: log lines, a feature that changes, the progress of a discovery, and what a stream reports.
#include <iostream>
#include <ovi/ovi.hpp>
#include <thread>

namespace {

void showLog(ovi::LogLevel /*level*/, std::string_view line) {
  std::cerr << "log: " << line << '\n';
}

// Waits for events of the stream until another thread ends the wait.
void listen(const ovi::Event& event) {
  try {
    std::error_code error;
    while (error != ovi::Errc::kAborted) {
      if (const oviEventData* data = event.wait(ovi::kForever, error))
        std::cout << "event: 0x" << std::hex << data->eventID << std::dec << '\n';
      else if (error != ovi::Errc::kAborted)
        throw ovi::Error(error.value(), "wait for an event");
    }
    std::cout << "listener: ended\n";
  } catch (const ovi::Error& error) {
    std::cerr << error.what() << '\n';
  }
}

void run(const ovi::Device& camera) {
  const ovi::FeatureWatch watch =
      camera.watch("ExposureTime", [](const char* name) { std::cout << "changed: " << name << '\n'; });
  camera["ExposureTime"].set(5000.0);

  const ovi::Stream stream = camera.openStream();
  const ovi::Event event(stream.handle(), OVI_EVENT_MODULE, ovi::Module::kDataStream);
  std::thread listener(listen, std::cref(event));
  try {
    ovi::Acquisition acquisition = camera.acquire();
    for (const ovi::Image& image : stream.images(3))
      std::cout << "frame: " << image.frameID() << '\n';
    acquisition.stop();
  } catch (...) {
    event.kill();
    listener.join();
    throw;
  }
  event.kill();
  listener.join();
}

}  // namespace

int main() {
  try {
    const ovi::Library library(ovi::LogLevel::kWarning, showLog);
    const auto cameras = library.discover(ovi::Milliseconds(1000), [](const oviDiscoveryInfo& info) {
      std::cout << "discovery: " << info.progress << " %, " << info.deviceCount << " cameras\n";
    });
    if (cameras.empty()) {
      std::cerr << "no camera was found\n";
      return 1;
    }
    run(ovi::Device(cameras.front().deviceID));
    return 0;
  } catch (const ovi::Error& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
