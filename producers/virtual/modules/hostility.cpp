// Keeps the orders and decides call by call which of them applies.
#include "modules/hostility.h"

#include <algorithm>
#include <cstddef>
#include <new>

#include "camera/camera_model.h"

namespace vcam {

namespace {

// The function that this thread is in, for the answers that are written on its way out.
thread_local Function currentFunction = Function::GCInitLib;

std::string nameFrom(const char* text) {
  return text == nullptr ? std::string() : std::string(text);
}

// Whether orders can be about this device; an empty ID stands for all.
bool isDevice(const std::string& id) {
  const std::vector<CameraModel> models = defaultModels();
  return id.empty() || std::ranges::any_of(models, [&](const CameraModel& model) { return model.identity.id == id; });
}

}  // namespace

// Never destroyed: calls may be under way while the process ends.
Hostility& Hostility::instance() {
  alignas(Hostility) static std::array<std::byte, sizeof(Hostility)> place;
  static Hostility& instance = *new (place.data()) Hostility;
  return instance;
}

GC_ERROR Hostility::enter(Function function) {
  currentFunction = function;
  const auto index = static_cast<std::size_t>(function);
  std::unique_lock lock(mutex_);
  if (counting_) {
    ++counts_[index];
  }
  bool blocks = false;
  for (Blocking& order : blocking_) {
    blocks = (order.function == function && order.span.hits()) || blocks;
  }
  if (blocks) {
    const std::uint64_t ticket = releases_[index];
    ++blockedCalls_;
    released_.wait(lock, [&] { return releases_[index] != ticket; });
    --blockedCalls_;
  }
  GC_ERROR code = GC_ERR_SUCCESS;
  for (Failing& order : failing_) {
    if (order.function == function && order.span.hits() && code == GC_ERR_SUCCESS) {
      code = order.code;
    }
  }
  return code;
}

std::optional<OviVirtualText> Hostility::textSpoiler(std::int32_t command) {
  const std::lock_guard lock(mutex_);
  for (SpoiledText& order : texts_) {
    if (order.function == currentFunction && (order.command == -1 || order.command == command) && order.span.hits()) {
      return order.how;
    }
  }
  return std::nullopt;
}

std::optional<INFO_DATATYPE> Hostility::typeSpoiler(std::int32_t command) {
  const std::lock_guard lock(mutex_);
  for (SpoiledType& order : types_) {
    if (order.function == currentFunction && (order.command == -1 || order.command == command) && order.span.hits()) {
      return order.type;
    }
  }
  return std::nullopt;
}

std::size_t Hostility::missingBytes() {
  const std::lock_guard lock(mutex_);
  return shortReads_.hits() ? missing_ : 0;
}

std::uint32_t Hostility::nextFrame(const std::string& device) {
  const std::lock_guard lock(mutex_);
  std::uint32_t how = 0;
  for (SpoiledFrames& order : frames_) {
    if (matches(order.device, device) && order.span.hits()) {
      how |= order.how;
    }
  }
  return how;
}

bool Hostility::isPaused(const std::string& device) {
  const std::lock_guard lock(mutex_);
  return std::ranges::find(paused_, device) != paused_.end();
}

std::uint64_t Hostility::updateDelayMs() const {
  const std::lock_guard lock(mutex_);
  return updateDelayMs_;
}

std::optional<Function> Hostility::find(const char* name) {
  const auto* found = std::ranges::find(kFunctionNames, nameFrom(name));
  if (found == kFunctionNames.end()) {
    return std::nullopt;
  }
  return static_cast<Function>(found - kFunctionNames.begin());
}

bool Hostility::fail(const char* function, GC_ERROR code, std::uint64_t from, std::uint64_t calls) {
  const std::optional<Function> found = find(function);
  if (!found || code == GC_ERR_SUCCESS || from == 0) {
    return false;
  }
  const std::lock_guard lock(mutex_);
  failing_.push_back({*found, code, {from, calls}});
  arm();
  return true;
}

bool Hostility::block(const char* function, std::uint64_t from, std::uint64_t calls) {
  const std::optional<Function> found = find(function);
  if (!found || from == 0) {
    return false;
  }
  const std::lock_guard lock(mutex_);
  blocking_.push_back({*found, {from, calls}});
  arm();
  return true;
}

bool Hostility::release(const char* function) {
  const std::optional<Function> found = find(function);
  if (!found) {
    return false;
  }
  const std::lock_guard lock(mutex_);
  std::erase_if(blocking_, [&](const Blocking& order) { return order.function == *found; });
  ++releases_[static_cast<std::size_t>(*found)];
  released_.notify_all();
  return true;
}

std::uint32_t Hostility::blocked() const {
  const std::lock_guard lock(mutex_);
  return blockedCalls_;
}

bool Hostility::spoilText(const char* function, std::int32_t command, OviVirtualText how, std::uint64_t calls) {
  const std::optional<Function> found = find(function);
  if (!found || how < OVI_VIRTUAL_TEXT_UNTERMINATED || how > OVI_VIRTUAL_TEXT_FULL) {
    return false;
  }
  const std::lock_guard lock(mutex_);
  texts_.push_back({*found, command, how, {1, calls}});
  arm();
  return true;
}

bool Hostility::spoilType(const char* function, std::int32_t command, INFO_DATATYPE type, std::uint64_t calls) {
  const std::optional<Function> found = find(function);
  if (!found) {
    return false;
  }
  const std::lock_guard lock(mutex_);
  types_.push_back({*found, command, type, {1, calls}});
  arm();
  return true;
}

void Hostility::shortReads(std::uint32_t missing, std::uint64_t from, std::uint64_t calls) {
  const std::lock_guard lock(mutex_);
  missing_ = missing;
  shortReads_ = {from, calls};
  arm();
}

bool Hostility::spoilFrames(const char* device, std::uint32_t how, std::uint64_t from, std::uint64_t frames) {
  constexpr std::uint32_t kAll = OVI_VIRTUAL_FRAME_INCOMPLETE | OVI_VIRTUAL_FRAME_NO_GEOMETRY | OVI_VIRTUAL_FRAME_LATE |
                                 OVI_VIRTUAL_FRAME_LOST | OVI_VIRTUAL_FRAME_STUCK;
  if (how == 0 || (how & ~kAll) != 0 || from == 0 || !isDevice(nameFrom(device))) {
    return false;
  }
  const std::lock_guard lock(mutex_);
  frames_.push_back({nameFrom(device), how, {from, frames}});
  arm();
  return true;
}

bool Hostility::pauseFrames(const char* device, bool paused) {
  const std::string name = nameFrom(device);
  bool known = false;
  const std::lock_guard lock(mutex_);
  for (const CameraModel& model : defaultModels()) {
    const std::string& id = model.identity.id;
    if (name.empty() || name == id) {
      known = true;
      std::erase(paused_, id);
      if (paused) {
        paused_.push_back(id);
        arm();
      }
    }
  }
  return known;
}

void Hostility::slowUpdates(std::uint64_t milliseconds) {
  const std::lock_guard lock(mutex_);
  updateDelayMs_ = milliseconds;
  arm();
}

void Hostility::startCounting() {
  const std::lock_guard lock(mutex_);
  counts_.fill(0);
  counting_ = true;
  arm();
}

std::uint64_t Hostility::calls(const char* function) {
  const std::optional<Function> found = find(function);
  const std::lock_guard lock(mutex_);
  return found ? counts_[static_cast<std::size_t>(*found)] : 0;
}

void Hostility::reset() {
  const std::lock_guard lock(mutex_);
  armed_.store(false, std::memory_order_relaxed);
  // Nothing may be left behind when the producer is unloaded.
  failing_ = std::vector<Failing>();
  blocking_ = std::vector<Blocking>();
  texts_ = std::vector<SpoiledText>();
  types_ = std::vector<SpoiledType>();
  frames_ = std::vector<SpoiledFrames>();
  paused_ = std::vector<std::string>();
  shortReads_ = {};
  updateDelayMs_ = 0;
  counting_ = false;
  for (std::uint64_t& ticket : releases_) {
    ++ticket;
  }
  released_.notify_all();
}

}  // namespace vcam
