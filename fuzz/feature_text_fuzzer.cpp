// Any texts for features of every kind. The first line is what the camera's registers hold, over and over; each further
// line "name=text" sets a feature and reads it back.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "camera.h"
#include "features/feature_parameter.h"
#include "features/feature_text.h"
#include "support.h"

namespace {

constexpr std::size_t kTextSize = 512;
constexpr std::size_t kRegisterBytes = 0x1000;  // All registers of the description lie below it.

// In memory of exactly the promised size, so that a byte behind it is noticed.
using Text = std::unique_ptr<char[]>;

Text textOf(const std::string& text) {
  Text buffer = std::make_unique<char[]>(kTextSize);
  text.copy(buffer.get(), kTextSize - 1);
  return buffer;
}

oviErr get(const fuzz::Camera& camera, const std::string& name, Text& text) {
  std::memset(text.get(), 'x', kTextSize);
  const oviErr code = OVI::oviGetFeature(camera.handle(), name.c_str(), text.get());
  fuzz::require(std::memchr(text.get(), '\0', kTextSize) != nullptr);
  fuzz::require(code == OVI_SUCCESS || *text.get() == '\0');
  return code;
}

// Floats are rounded by their text, commands and registers have no text that says all.
bool isExact(const fuzz::Camera& camera, const std::string& name) {
  oviFeatureParameter record;
  return OVI::oviGetFeatureParameter(camera.handle(), name.c_str(), &record, OVI_MODULE_REMOTE_DEVICE) == OVI_SUCCESS &&
         (record.featureType == OVI_FEATURE_INTEGER || record.featureType == OVI_FEATURE_BOOLEAN ||
          record.featureType == OVI_FEATURE_ENUMERATION || record.featureType == OVI_FEATURE_STRING);
}

// What a feature says of itself it must take, and say again.
void setAndGet(const fuzz::Camera& camera, const std::string& name, const std::string& value) {
  Text text = textOf(value);
  OVI::oviSetFeature(camera.handle(), name.c_str(), text.get());
  if (get(camera, name, text) != OVI_SUCCESS)
    return;
  const std::string before = text.get();
  text = textOf(before);
  if (OVI::oviSetFeature(camera.handle(), name.c_str(), text.get()) == OVI_SUCCESS && isExact(camera, name) &&
      get(camera, name, text) == OVI_SUCCESS)
    fuzz::require(before == text.get());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string description = fuzz::contentOf(OVI_FUZZ_DESCRIPTION);
  const std::string input(reinterpret_cast<const char*>(data), size);
  const std::string registers = input.substr(0, input.find('\n'));
  scripted::Space& space = fuzz::cameraSpace();
  space.description = description;
  for (std::size_t i = 0; i < kRegisterBytes; ++i)
    space.memory[i] = registers.empty() ? std::uint8_t{0} : static_cast<std::uint8_t>(registers[i % registers.size()]);
  const fuzz::Camera camera;
  for (std::size_t begin = registers.size() + 1; begin < input.size();) {
    const std::size_t end = std::min(input.find('\n', begin), input.size());
    const std::string line = input.substr(begin, end - begin);
    const std::size_t equals = std::min(line.find('='), line.size());
    setAndGet(camera, line.substr(0, equals), line.substr(std::min(equals + 1, line.size())));
    begin = end + 1;
  }
  return 0;
}
