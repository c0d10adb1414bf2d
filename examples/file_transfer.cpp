// Files of a camera: writes one, reads it back, shows the progress, and compares.
#include <fstream>
#include <iostream>
#include <iterator>
#include <ovi/ovi.hpp>

namespace {

constexpr const char* kCameraFile = "UserData";  // an entry of the camera's FileSelector
constexpr const char* kSent = "user_data_sent.bin";
constexpr const char* kReceived = "user_data_received.bin";
constexpr ovi::Milliseconds kTimeout(5000);  // that the camera may be silent

std::string contentOf(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

bool writeFile(const char* path, std::size_t size) {
  std::ofstream file(path, std::ios::binary);
  for (std::size_t i = 0; i < size; ++i)
    file.put(static_cast<char>(i * 31 % 251));
  return static_cast<bool>(file.flush());
}

// Returning false would stop the transfer.
bool showProgress(const oviFileTransferProgress& progress) {
  std::cout << progress.bytesDone << " of " << progress.totalBytes << " bytes " << progress.message << '\n';
  return true;
}

}  // namespace

int main() {
  try {
    const ovi::Library library(ovi::LogLevel::kError);
    const auto cameras = library.discover();
    if (cameras.empty()) {
      std::cerr << "no camera was found\n";
      return 1;
    }
    if (!writeFile(kSent, 5000)) {
      std::cerr << kSent << " cannot be written\n";
      return 1;
    }
    const ovi::Device camera(cameras.front().deviceID);
    std::cout << "to the camera\n";
    camera.download(kSent, kCameraFile, kTimeout, showProgress);
    std::cout << "from the camera\n";
    camera.upload(kReceived, kCameraFile, kTimeout, showProgress);
    if (contentOf(kReceived) != contentOf(kSent)) {
      std::cerr << "the camera gave back something else\n";
      return 1;
    }
    std::cout << "both files are the same\n";
    return 0;
  } catch (const ovi::Error& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
