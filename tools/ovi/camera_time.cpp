// The camera's own time stamps of images, in this machine's time.
#include "camera_time.h"

#include <algorithm>
#include <array>
#include <span>

#include "tool_error.h"

namespace tool {

namespace {

using Bytes = std::span<const std::uint8_t>;

std::uint64_t unsignedIn(Bytes bytes, bool bigEndian) {
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i)
    number = number << 8U | bytes[bigEndian ? i : bytes.size() - 1 - i];
  return number;
}

/// Calls found(bytes) for each chunk of an image, the last one first. Behind the bytes of a chunk lie its ID and its
/// length, in the byte order of the link; the image is the first chunk.
/// @return whether the image consists of chunks
template<class Found>
bool forEachChunk(Bytes image, bool bigEndian, Found&& found) {
  constexpr std::size_t kNumber = 4;
  constexpr std::size_t kTrailer = 2 * kNumber;
  std::size_t chunks = 0;
  while (image.size() >= kTrailer) {
    const std::uint64_t length = unsignedIn(image.last(kNumber), bigEndian);
    const Bytes rest = image.first(image.size() - kTrailer);
    if (length > rest.size())
      return false;
    found(rest.last(static_cast<std::size_t>(length)));
    image = rest.first(rest.size() - static_cast<std::size_t>(length));
    ++chunks;
  }
  return image.empty() && chunks > 1;
}

std::string readText(const ovi::Device& device, const char* feature) {
  std::array<char, 512> text{};
  return oviGetFeature(device.handle(), feature, text.data()) == OVI_SUCCESS ? std::string(text.data()) : std::string();
}

bool writeText(const ovi::Device& device, const char* feature, const std::string& value) {
  return oviSetFeature(device.handle(), feature, value.c_str()) == OVI_SUCCESS;
}

}  // namespace

CameraTime::CameraTime(const ovi::Device& device) : device_(device) {
  chooseClock();
  try {
    switchOn();
  } catch (...) {
    putBack();
    throw;
  }
}

CameraTime::~CameraTime() {
  putBack();
}

void CameraTime::switchOn() {
  wasActive_ = readText(device_, "ChunkModeActive");
  wasSelected_ = readText(device_, "ChunkSelector");
  if (wasActive_.empty() || wasSelected_.empty())
    throw ToolError("the camera sends no time stamps with its images: it has no chunk mode",
                    "stream without --camera-time");
  if (!writeText(device_, "ChunkModeActive", "1") || !writeText(device_, "ChunkSelector", "Timestamp"))
    throw ToolError("the camera sends no time stamps with its images: ChunkSelector has no entry Timestamp now",
                    "ovi features ChunkSelector ChunkModeActive");
  wasEnabled_ = readText(device_, "ChunkEnable");
  if (!writeText(device_, "ChunkEnable", "1"))
    throw ToolError("the camera does not let ChunkEnable be set for its time stamp", "ovi features ChunkEnable");
}

void CameraTime::putBack() {
  if (!wasEnabled_.empty())
    writeText(device_, "ChunkEnable", wasEnabled_);
  if (!wasSelected_.empty())
    writeText(device_, "ChunkSelector", wasSelected_);
  if (!wasActive_.empty())
    writeText(device_, "ChunkModeActive", wasActive_);
}

std::optional<CameraTime::Moment> CameraTime::compare(const Features& features) const {
  const Clock::time_point before = Clock::now();
  if (oviExecuteCommand(device_.handle(), features.latch, OVI_MODULE_REMOTE_DEVICE) != OVI_SUCCESS)
    return std::nullopt;
  const Clock::time_point after = Clock::now();
  std::int64_t ticks = 0;
  if (oviGetFeatureInt(device_.handle(), features.value, &ticks, OVI_MODULE_REMOTE_DEVICE) != OVI_SUCCESS)
    return std::nullopt;
  return Moment{before + (after - before) / 2, static_cast<std::uint64_t>(ticks), (after - before) / 2};
}

void CameraTime::chooseClock() {
  constexpr int kTries = 5;  // The quickest is the most exact.
  for (const Features& features : kFeatures) {
    std::int64_t frequency = 1000000000;
    if (features.frequency != nullptr &&
        (oviGetFeatureInt(device_.handle(), features.frequency, &frequency, OVI_MODULE_REMOTE_DEVICE) != OVI_SUCCESS ||
         frequency <= 0))
      continue;
    for (int i = 0; i < kTries; ++i) {
      const std::optional<Moment> moment = compare(features);
      if (!moment)
        break;
      if (features_ == nullptr || moment->uncertainty < moment_.uncertainty)
        moment_ = *moment;
      features_ = &features;
    }
    if (features_ != nullptr) {
      nanosecondsATick_ = 1e9 / static_cast<double>(frequency);
      return;
    }
  }
  throw ToolError("the camera's clock cannot be read: it has no TimestampLatch", "stream without --camera-time");
}

// A number that is no time of this acquisition is no time stamp.
std::optional<CameraTime::Clock::time_point> CameraTime::hereAt(std::uint64_t ticks) const {
  constexpr std::chrono::seconds kOldest{60};
  const double nanoseconds = static_cast<double>(static_cast<std::int64_t>(ticks - moment_.ticks)) * nanosecondsATick_;
  const std::chrono::duration<double, std::nano> since(nanoseconds);
  if (since < -kOldest || since > kOldest)
    return std::nullopt;
  const Clock::time_point here = moment_.here + std::chrono::duration_cast<Clock::duration>(since);
  return here <= Clock::now() + std::chrono::milliseconds(100) ? std::optional(here) : std::nullopt;
}

std::optional<CameraTime::Clock::time_point> CameraTime::of(const ovi::Image& image) {
  constexpr std::chrono::seconds kDrift{1};
  if (Clock::now() - moment_.here > kDrift)
    moment_ = compare(*features_).value_or(moment_);
  std::optional<Clock::time_point> found;
  for (const bool linkBigEndian : {true, false}) {
    const auto look = [&](Bytes chunk) {
      if (chunk.size() == sizeof(std::uint64_t))
        for (const bool bigEndian : {true, false})
          if (const auto here = hereAt(unsignedIn(chunk, bigEndian)))
            found = here;
    };
    if (image.data() != nullptr && forEachChunk({image.data(), image.size()}, linkBigEndian, look))
      return found;
  }
  return std::nullopt;
}

}  // namespace tool
