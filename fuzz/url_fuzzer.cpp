// Any texts as the URLs of a camera's description, a line each; a NUL ends them and begins what the camera holds.
#include <cstdint>
#include <string>
#include <vector>

#include "camera.h"
#include "platform/platform.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMostUrls = 8;
  const std::string input(reinterpret_cast<const char*>(data), size);
  const std::size_t urlsEnd = std::min(input.find('\0'), input.size());
  std::vector<std::string> urls;
  for (std::size_t begin = 0; begin < urlsEnd && urls.size() < kMostUrls;) {
    const std::size_t end = std::min(input.find('\n', begin), urlsEnd);
    urls.push_back(input.substr(begin, end - begin));
    begin = end + 1;
  }
  for (const std::string& url : urls)
    OVI::platform::urlToPath(url);
  fuzz::cameraSpace().description = input.substr(std::min(urlsEnd + 1, input.size()));
  fuzz::descriptionBehind(urls);
  return 0;
}
