/// @file
/// The library in C++17: owners that close what they opened, results as exceptions, features with types, images as
/// ranges.
///
/// A thin layer over ovi.h: calls are those of the C interface, everything has its native handle at hand, and nothing
/// here can do what ovi.h cannot. Threads, lifetimes and results are those of the C functions.
///
/// Failures throw Error. Where a failure is an everyday outcome, as of a wait, there is a second form that reports it
/// in a std::error_code: `if (error == ovi::Errc::kTimeout)`.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>
#include <vector>

#include "ovi/ovi.h"

/// Everything of this layer.
namespace ovi {

// ---- Results ----

/// The category of the library's codes, for std::error_code.
inline const std::error_category& category() {
  class Category final : public std::error_category {
    const char* name() const noexcept override { return "ovi"; }
    std::string message(int code) const override {
      char text[512] = {};
      oviGetErrorDescription(code, text, sizeof(text));
      constexpr std::string_view noName = "ErrorNumber not yet defined";
      if (text != noName)
        return text;
      constexpr std::size_t prefixLength = 5;  // Of "NOK: IO-Error"; these codes have a sentence, but no name.
      if (get_error_string(code, text) == 0)
        return text + prefixLength;
      oviGetKitharaErrDescription(code, text, sizeof(text));
      return text != noName ? text : "error " + std::to_string(code);
    }
  };
  static const Category instance;
  return instance;
}

/// A result of the C interface as a std::error_code.
inline std::error_code makeErrorCode(oviErr code) {
  return {code, category()};
}

/// The codes that programs decide by; a std::error_code compares with them.
enum class Errc : oviErr {
  kNotFound = OVI_ERR_NOT_FOUND,
  kInvalidParameter = OVI_ERR_INVALID_PARAMETER,
  kTimeout = OVI_ERR_TIMEOUT,
  kAborted = OVI_ERR_ABORTED,
  kNoAccess = OVI_ERR_NO_ACCESS,
  kInvalidBuffer = OVI_ERR_INVALID_BUFFER,
  kResourceInUse = OVI_ERR_RESOURCE_IN_USE,
  kNotImplemented = OVI_ERR_NOT_IMPLEMENTED,
  kIo = OVI_ERR_IO,
  kBusy = OVI_ERR_BUSY
};
/// What makes `error == ovi::Errc::kTimeout` work.
inline std::error_code make_error_code(Errc code) {
  return makeErrorCode(static_cast<oviErr>(code));
}

}  // namespace ovi

/// @cond
template<>
struct std::is_error_code_enum<ovi::Errc> : std::true_type {};
/// @endcond

namespace ovi {

/// A function of the library failed; code() says how, what() names the function and the thing.
class Error : public std::system_error {
 public:
  /// The result, and the function with its subject.
  Error(oviErr code, const std::string& what) : std::system_error(makeErrorCode(code), what), result_(code) {}
  /// The result as the C interface gave it.
  oviErr result() const noexcept { return result_; }

 private:
  oviErr result_;
};

/// Throws Error unless the code is success. Also for calls of ovi.h that have no counterpart here.
inline void check(oviErr code, const char* function, std::string_view subject = {}) {
  if (code == OVI_SUCCESS)
    return;
  std::string text = function;
  if (!subject.empty())
    text.append("(").append(subject).append(")");
  throw Error(code, text);
}

/// Time-outs.
using Milliseconds = std::chrono::milliseconds;

/// A time-out that never passes.
inline constexpr Milliseconds kForever = Milliseconds::max();

/// @cond
namespace detail {

inline std::uint64_t timeoutValue(Milliseconds timeout) {
  if (timeout == kForever)
    return OVI_INFINITE_TIMEOUT;
  return timeout.count() < 0 ? 0U : static_cast<std::uint64_t>(timeout.count());
}

}  // namespace detail
/// @endcond

// ---- The library ----

/// Levels of the log; each one includes those before it.
enum class LogLevel : std::uint32_t { kNone = 0, kError = 1, kWarning = 2, kInfo = 4, kDebug = 8, kVerbose = 16 };

/// A camera of the latest discovery.
using DeviceInfo = oviDeviceInfo;
/// Receives a line of the log.
using LogFunction = std::function<void(LogLevel, std::string_view)>;
/// Receives the progress of a discovery.
using DiscoveryFunction = std::function<void(const oviDiscoveryInfo&)>;

/// Initialises the library and closes it again. One at a time in a process.
///
/// The log level of the first Library of a process stays in force for all later ones. The log function is called on
/// whatever thread logs, one call at a time; an exception that leaves it is dropped.
class Library {
 public:
  /// Initialises the library.
  explicit Library(LogLevel level = LogLevel::kWarning, LogFunction log = {}) {
    LogSlot& slot = logSlot();
    {
      const std::lock_guard<std::mutex> lock(slot.mutex);
      slot.function = std::move(log);
    }
    // The library appends its callback once more at every initialisation that names one, so it is named once a process.
    const bool first = !std::exchange(slot.attached, true);
    check(oviInit(static_cast<std::uint32_t>(level), first ? &Library::forwardLog : nullptr, nullptr), "oviInit");
  }
  ~Library() {
    oviClose();
    LogSlot& slot = logSlot();
    const std::lock_guard<std::mutex> lock(slot.mutex);
    slot.function = nullptr;
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  /// Finds cameras. The search path is added to the environment's, or replaces it. An exception of the progress
  /// function leaves the call once the discovery is over.
  std::vector<DeviceInfo> discover(Milliseconds timeout = Milliseconds(1000), const DiscoveryFunction& progress = {},
                                   const std::string& searchPath = {}, bool searchPathOnly = false) const {
    const auto info = std::make_unique<oviDiscoveryInfo>();
    Progress context{progress, nullptr};
    progressContext() = &context;
    const oviErr code = oviDiscoverDevices(
        info.get(), detail::timeoutValue(timeout), progress ? &forwardProgress : nullptr,
        searchPath.empty() && !searchPathOnly ? nullptr : searchPath.c_str(), searchPathOnly ? 1 : 0);
    progressContext() = nullptr;
    if (context.exception)
      std::rethrow_exception(context.exception);
    check(code, "oviDiscoverDevices");
    return devices();
  }

  /// The cameras of the latest discovery, all of them.
  std::vector<DeviceInfo> devices() const {
    std::vector<DeviceInfo> found;
    const auto record = std::make_unique<oviDeviceInfo>();
    for (std::uint32_t i = 0; oviGetDeviceInfo(i, record.get()) == OVI_SUCCESS; ++i)
      found.push_back(*record);
    return found;
  }

  /// Producer files on the search path, whether they load or not.
  std::vector<std::string> producers() const {
    std::uint32_t count = 0;
    check(oviGetNumberOfTLProducers(&count), "oviGetNumberOfTLProducers");
    std::vector<std::string> paths;
    for (std::uint32_t i = 0; i < count; ++i) {
      char path[4096] = {};
      if (oviGetTLProducerPathByIndex(path, sizeof(path), i) == OVI_SUCCESS)
        paths.emplace_back(path);
    }
    return paths;
  }

  /// The library's version, "1.2.3".
  static std::string version() {
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
    std::uint32_t patch = 0;
    std::uint32_t build = 0;
    oviGetLibraryVersion(&major, &minor, &patch, &build);
    return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(patch);
  }

 private:
  struct LogSlot {
    std::mutex mutex;
    LogFunction function;
    bool attached = false;
  };
  static LogSlot& logSlot() {
    static LogSlot slot;
    return slot;
  }
  static void OVI_CALL forwardLog(std::uint32_t level, const char* message, void* /*userData*/) {
    LogSlot& slot = logSlot();
    const std::lock_guard<std::mutex> lock(slot.mutex);
    try {
      if (slot.function)
        slot.function(static_cast<LogLevel>(level), message);
    } catch (...) {  // An exception must not reach the library.
    }
  }
  struct Progress {
    const DiscoveryFunction& function;
    std::exception_ptr exception;
  };
  // The C callback has no context; it runs on the thread that discovers, so each thread has a place of its own.
  static Progress*& progressContext() {
    static thread_local Progress* context = nullptr;
    return context;
  }
  static void OVI_CALL forwardProgress(oviDiscoveryInfo* info) {
    Progress* context = progressContext();
    if (context == nullptr || context->exception)
      return;
    try {
      context->function(*info);
    } catch (...) {
      context->exception = std::current_exception();
    }
  }
};

// ---- Features ----

/// Which module's features are meant.
enum class Module : std::uint32_t {
  kSystem = OVI_MODULE_SYSTEM,
  kInterface = OVI_MODULE_INTERFACE,
  kRemoteDevice = OVI_MODULE_REMOTE_DEVICE,
  kLocalDevice = OVI_MODULE_LOCAL_DEVICE,
  kDataStream = OVI_MODULE_DATA_STREAM,
  kBuffer = OVI_MODULE_BUFFER
};

/// Everything about one feature.
using FeatureParameter = oviFeatureParameter;

/// One feature by its name: a reference that costs nothing until it is used. Outlives neither its module nor the
/// library. `device["Width"].get<std::int64_t>()` reads it, `device["Width"].set(640)` writes it.
class Feature {
 public:
  /// The feature of that name of a module that is found from the handle.
  Feature(std::uint64_t handle, Module module, std::string name)
      : handle_(handle),
        module_(module),
        name_(std::move(name)) {}

  /// Its name.
  const std::string& name() const noexcept { return name_; }

  /// The value as the type that its kind of feature has: bool, an integer, a floating-point number, std::string (of
  /// enumerations too), or std::vector<std::uint8_t> of a register.
  template<class T>
  T get() const {
    if constexpr (std::is_same_v<T, bool>)
      return asBool();
    else if constexpr (std::is_integral_v<T>)
      return static_cast<T>(asInt());
    else if constexpr (std::is_floating_point_v<T>)
      return static_cast<T>(asFloat());
    else if constexpr (std::is_same_v<T, std::string>)
      return asString();
    else
      return T(asRegister());
  }
  /// An integer's value.
  std::int64_t asInt() const {
    std::int64_t value = 0;
    check(oviGetFeatureInt(handle_, name_.c_str(), &value, selector()), "oviGetFeatureInt", name_);
    return value;
  }
  /// A float's value.
  double asFloat() const {
    double value = 0;
    check(oviGetFeatureFloat(handle_, name_.c_str(), &value, selector()), "oviGetFeatureFloat", name_);
    return value;
  }
  /// A boolean's value.
  bool asBool() const {
    bool value = false;
    check(oviGetFeatureBool(handle_, name_.c_str(), &value, selector()), "oviGetFeatureBool", name_);
    return value;
  }
  /// A string's value, or the name of an enumeration's current entry.
  std::string asString() const {
    std::size_t size = 0;
    check(oviGetFeatureString(handle_, name_.c_str(), nullptr, &size, selector()), "oviGetFeatureString", name_);
    std::string value(size, '\0');
    check(oviGetFeatureString(handle_, name_.c_str(), value.data(), &size, selector()), "oviGetFeatureString", name_);
    value.resize(std::char_traits<char>::length(value.c_str()));
    return value;
  }
  /// The value of any kind of feature as text.
  std::string text() const {
    char value[512] = {};
    check(oviGetFeatureOnModule(handle_, name_.c_str(), value, selector()), "oviGetFeatureOnModule", name_);
    return value;
  }
  /// A register's bytes.
  std::vector<std::uint8_t> asRegister() const {
    std::int64_t length = 0;
    check(oviGetFeatureReg(handle_, name_.c_str(), nullptr, &length, selector()), "oviGetFeatureReg", name_);
    std::vector<std::uint8_t> value(static_cast<std::size_t>(length < 0 ? 0 : length));
    if (!value.empty())
      check(oviGetFeatureReg(handle_, name_.c_str(), value.data(), &length, selector()), "oviGetFeatureReg", name_);
    return value;
  }

  /// Writes a boolean, an integer or a float, as the argument is a bool, an integer or a floating-point number.
  template<class T, std::enable_if_t<std::is_arithmetic_v<T>, int> = 0>
  void set(T value) const {
    if constexpr (std::is_same_v<T, bool>)
      check(oviSetFeatureBool(handle_, name_.c_str(), value, selector()), "oviSetFeatureBool", name_);
    else if constexpr (std::is_integral_v<T>)
      check(oviSetFeatureInt(handle_, name_.c_str(), static_cast<std::int64_t>(value), selector()), "oviSetFeatureInt",
            name_);
    else
      check(oviSetFeatureFloat(handle_, name_.c_str(), static_cast<double>(value), selector()), "oviSetFeatureFloat",
            name_);
  }
  /// A string's value, or the name of an enumeration's entry.
  void set(const std::string& value) const {
    check(oviSetFeatureString(handle_, name_.c_str(), value.c_str(), selector()), "oviSetFeatureString", name_);
  }
  /// The same.
  void set(std::string_view value) const { set(std::string(value)); }
  /// The same.
  void set(const char* value) const { set(std::string(value)); }
  /// A register's bytes.
  void set(const std::vector<std::uint8_t>& value) const {
    check(oviSetFeatureReg(handle_, name_.c_str(), value.data(), static_cast<std::int64_t>(value.size()), selector()),
          "oviSetFeatureReg", name_);
  }

  /// Any kind of feature from text.
  void setText(const std::string& value) const {
    check(oviSetFeatureOnModule(handle_, name_.c_str(), value.c_str(), selector()), "oviSetFeatureOnModule", name_);
  }

  /// Executes a command; does not wait until it is done.
  void execute() const { check(oviExecuteCommand(handle_, name_.c_str(), selector()), "oviExecuteCommand", name_); }
  /// Whether a command is still being executed.
  bool isActive() const {
    bool active = false;
    check(oviIsCommandActive(handle_, name_.c_str(), &active, selector()), "oviIsCommandActive", name_);
    return active;
  }

  /// Kind, access, value, limits, texts.
  FeatureParameter parameter() const {
    FeatureParameter record{};
    check(oviGetFeatureParameter(handle_, name_.c_str(), &record, selector()), "oviGetFeatureParameter", name_);
    return record;
  }
  /// Whether the module has a feature of that name.
  bool exists() const {
    FeatureParameter record{};
    return oviGetFeatureParameter(handle_, name_.c_str(), &record, selector()) != OVI_ERR_NOT_FOUND;
  }
  /// The available entries of an enumeration.
  std::vector<FeatureParameter> entries() const {
    std::uint32_t count = 0;
    check(oviGetFeatureEnumEntryCount(handle_, name_.c_str(), &count, selector()), "oviGetFeatureEnumEntryCount",
          name_);
    std::vector<FeatureParameter> list;
    for (std::uint32_t i = 0; i < count; ++i) {
      FeatureParameter record{};
      if (oviGetFeatureEnumEntryByIndex(handle_, name_.c_str(), static_cast<std::int32_t>(i), &record, selector()) ==
          OVI_SUCCESS)
        list.push_back(record);
    }
    return list;
  }
  /// The features below a category or behind a selector.
  std::vector<std::string> children() const {
    std::vector<std::string> names;
    char name[512] = {};
    std::uint32_t type = 0;
    for (std::uint32_t i = 0;
         oviIterateFeatureTree(handle_, name_.c_str(), i, name, sizeof(name), &type, selector()) == OVI_SUCCESS; ++i)
      names.emplace_back(name);
    return names;
  }

 private:
  std::uint32_t selector() const noexcept { return static_cast<std::uint32_t>(module_); }

  std::uint64_t handle_;
  Module module_;
  std::string name_;
};

/// A feature and its place in the tree of a module's features.
struct TreeFeature {
  Feature feature;      ///< The feature
  std::uint32_t type;   ///< OVI_FEATURE_...
  std::uint32_t depth;  ///< 0 below "Root"
};

/// The features of a module in the order of its tree: categories, and after each what it contains. A category that is
/// in two others is opened once only.
inline std::vector<TreeFeature> featureTree(std::uint64_t handle, Module module) {
  struct Level {
    std::string parent;
    std::uint32_t next;
  };
  std::vector<TreeFeature> list;
  std::set<std::string> opened;
  std::vector<Level> levels = {{"Root", 0}};
  char name[512] = {};
  std::uint32_t type = 0;
  while (!levels.empty()) {
    Level& level = levels.back();
    if (oviIterateFeatureTree(handle, level.parent.c_str(), level.next++, name, sizeof(name), &type,
                              static_cast<std::uint32_t>(module)) != OVI_SUCCESS) {
      levels.pop_back();
      continue;
    }
    list.push_back({{handle, module, name}, type, static_cast<std::uint32_t>(levels.size() - 1)});
    if (type == OVI_FEATURE_CATEGORY && opened.insert(name).second)
      levels.push_back({name, 0});
  }
  return list;
}

/// Calls a function whenever a feature's value may have changed, until it is destroyed.
///
/// The function runs on the thread that changed the value or on the module's poller, one call at a time; an exception
/// that leaves it is dropped. The destructor waits for a call that is under way on another thread. A second watch of
/// the same feature replaces the first.
class FeatureWatch {
 public:
  /// What is called, with the feature's name.
  using Function = std::function<void(const char* name)>;

  /// Watches the feature of that name from now on.
  FeatureWatch(std::uint64_t handle, Module module, std::string name, Function changed)
      : handle_(handle),
        module_(module),
        name_(std::move(name)),
        target_(std::make_shared<Target>(std::move(changed))) {
    Targets& all = targets();
    {
      const std::lock_guard<std::mutex> lock(all.mutex);
      all.byContext[target_.get()] = target_;
    }
    const oviErr code = oviRegisterInvalidateCB(handle_, name_.c_str(), target_.get(), &FeatureWatch::forward,
                                                static_cast<std::uint32_t>(module_));
    if (code != OVI_SUCCESS)
      forget();
    check(code, "oviRegisterInvalidateCB", name_);
  }
  ~FeatureWatch() {
    if (!target_)
      return;
    oviUnRegisterInvalidateCB(handle_, name_.c_str(), static_cast<std::uint32_t>(module_));
    forget();
    const std::lock_guard<std::recursive_mutex> lock(target_->mutex);
    target_->ended = true;
  }
  /// The watch goes on from here.
  FeatureWatch(FeatureWatch&&) = default;
  FeatureWatch& operator=(FeatureWatch&&) = delete;

 private:
  struct Target {
    explicit Target(Function changed) : function(std::move(changed)) {}
    std::recursive_mutex mutex;  // held while the function runs, which may set features and so be called again
    bool ended = false;
    Function function;
  };
  // A call may be under way when the registration ends, so the context is a key only.
  struct Targets {
    std::mutex mutex;
    std::map<const void*, std::shared_ptr<Target>> byContext;
  };
  static Targets& targets() {
    static Targets all;
    return all;
  }
  static std::shared_ptr<Target> find(const void* context) {
    Targets& all = targets();
    const std::lock_guard<std::mutex> lock(all.mutex);
    const auto found = all.byContext.find(context);
    return found == all.byContext.end() ? nullptr : found->second;
  }
  void forget() const {
    Targets& all = targets();
    const std::lock_guard<std::mutex> lock(all.mutex);
    all.byContext.erase(target_.get());
  }
  static void OVI_CALL forward(const char* name, void* context) {
    try {
      if (const std::shared_ptr<Target> target = find(context)) {
        const std::lock_guard<std::recursive_mutex> lock(target->mutex);
        if (!target->ended)
          target->function(name);
      }
    } catch (...) {  // An exception must not reach the library.
    }
  }

  std::uint64_t handle_;
  Module module_;
  std::string name_;
  std::shared_ptr<Target> target_;
};

// ---- Images ----

/// A filled buffer, lent by the stream; given back when it is destroyed. Nothing of it may be asked for after release()
/// or after it was moved from.
class Image {
 public:
  /// Takes over a record of oviWaitForEvent.
  Image(std::uint64_t stream, oviNewBufferEventData* record) noexcept : stream_(stream), record_(record) {}
  ~Image() { release(); }
  /// The other one has nothing to give back any more.
  Image(Image&& other) noexcept : stream_(other.stream_), record_(std::exchange(other.record_, nullptr)) {}
  /// Gives back what was there before.
  Image& operator=(Image&& other) noexcept {
    if (this != &other) {
      release();
      stream_ = other.stream_;
      record_ = std::exchange(other.record_, nullptr);
    }
    return *this;
  }

  /// The pixels.
  const std::uint8_t* data() const noexcept { return static_cast<const std::uint8_t*>(record_->event.value); }
  /// Bytes that are filled.
  std::size_t size() const noexcept { return static_cast<std::size_t>(record_->event.valueSize); }
  std::uint32_t width() const noexcept { return record_->width; }          ///< Pixels
  std::uint32_t height() const noexcept { return record_->height; }        ///< Pixels
  std::uint32_t linePitch() const noexcept { return record_->linePitch; }  ///< Bytes a line
  std::uint32_t channels() const noexcept { return record_->channels; }    ///< 1, 3 or 4
  /// A code of the Pixel Format Naming Convention.
  std::uint32_t pixelFormat() const noexcept { return record_->pixelFormat; }
  std::uint64_t frameID() const noexcept { return record_->frameID; }  ///< A gap means lost images
  /// When it was delivered, on the library's monotonic clock.
  std::chrono::nanoseconds timestamp() const noexcept {
    return std::chrono::nanoseconds(static_cast<std::int64_t>(record_->timestampNs));
  }
  /// The record of the C interface.
  const oviNewBufferEventData& record() const noexcept { return *record_; }

  /// Gives the buffer back now.
  void release() noexcept {
    if (record_ != nullptr)
      oviReleaseImage(stream_, std::exchange(record_, nullptr));
  }

 private:
  std::uint64_t stream_;
  oviNewBufferEventData* record_;
};

/// A registered event.
class Event {
 public:
  /// Registers the event; the kind is OVI_EVENT_...
  Event(std::uint64_t moduleHandle, std::uint32_t kind, Module module) {
    check(oviRegisterEvent(moduleHandle, kind, &handle_, static_cast<std::uint32_t>(module)), "oviRegisterEvent");
  }
  ~Event() {
    if (handle_ != 0)
      oviUnregisterEvent(handle_);
  }
  /// The other one is not registered any more.
  Event(Event&& other) noexcept : handle_(std::exchange(other.handle_, 0)) {}
  Event& operator=(Event&&) = delete;

  std::uint64_t handle() const noexcept { return handle_; }  ///< For calls of the C interface
  /// The record of the next event; null when the time is over or the wait was ended. It belongs to the library.
  const oviEventData* wait(Milliseconds timeout) const {
    std::error_code error;
    const oviEventData* data = wait(timeout, error);
    if (error && error != Errc::kTimeout && error != Errc::kAborted)
      throw Error(error.value(), "oviWaitForEvent");
    return data;
  }
  /// The record of the next event, or null with the reason in error.
  const oviEventData* wait(Milliseconds timeout, std::error_code& error) const {
    void* data = nullptr;
    const oviErr code = oviWaitForEvent(handle_, detail::timeoutValue(timeout), &data);
    error = makeErrorCode(code);
    return code == OVI_SUCCESS ? static_cast<const oviEventData*>(data) : nullptr;
  }
  /// Ends the waits of other threads.
  void kill() const { check(oviEventKill(handle_), "oviEventKill"); }

 private:
  std::uint64_t handle_ = 0;
};

/// An open data stream with its buffers and its new-buffer event.
class Stream {
 public:
  /// Opens the stream; a buffer size of 0 lets the library ask the camera.
  Stream(std::uint64_t deviceHandle, std::uint32_t index, std::uint32_t bufferCount, std::uint64_t bufferSize = 0)
      : handle_(open(deviceHandle, index, bufferCount, bufferSize)),
        guard_{handle_},
        event_(handle_, OVI_EVENT_NEW_BUFFER, Module::kDataStream) {}
  /// The other one is not open any more.
  Stream(Stream&&) = default;
  Stream& operator=(Stream&&) = delete;

  std::uint64_t handle() const noexcept { return handle_; }  ///< For calls of the C interface
  const Event& event() const noexcept { return event_; }     ///< That a buffer was filled

  /// The next image. Throws Error with OVI_ERR_TIMEOUT, OVI_ERR_ABORTED, or OVI_ERR_INVALID_BUFFER for an incomplete
  /// one.
  Image next(Milliseconds timeout = Milliseconds(3000)) const {
    std::error_code error;
    oviNewBufferEventData* record = wait(timeout, error);
    if (error)
      throw Error(error.value(), "oviWaitForEvent");
    return {handle_, record};
  }
  /// The next image, or none with the reason in error.
  std::unique_ptr<Image> tryNext(Milliseconds timeout, std::error_code& error) const {
    oviNewBufferEventData* record = wait(timeout, error);
    return error ? nullptr : std::make_unique<Image>(handle_, record);
  }
  /// A feature of the stream, or of a module above it other than the camera.
  Feature feature(std::string name, Module module = Module::kDataStream) const {
    return {handle_, module, std::move(name)};
  }
  /// Counters of images and packets; -1 where the producer has none.
  oviAcquistionStatistics statistics() const {
    oviAcquistionStatistics counters{};
    check(oviGetAcquisitionStatistics(handle_, &counters), "oviGetAcquisitionStatistics");
    return counters;
  }

  /// Images one after the other: `for (ovi::Image& image : stream.images(100))`. Ends early when a wait is ended.
  class Images {
   public:
    /// So many images, each within the time.
    Images(const Stream& stream, std::uint64_t count, Milliseconds timeout)
        : stream_(&stream),
          count_(count),
          timeout_(timeout) {}
    struct End {};  ///< Behind the last image
    /// An input iterator: there is one position, that of the latest image.
    class Iterator {
     public:
      /// @cond
      using iterator_category = std::input_iterator_tag;
      using value_type = Image;
      using difference_type = std::ptrdiff_t;
      using pointer = Image*;
      using reference = Image&;

      explicit Iterator(Images& images) : images_(&images) { ++*this; }
      Image& operator*() const { return *images_->current_; }
      Image* operator->() const { return images_->current_.get(); }
      Iterator& operator++() {
        images_->advance();
        return *this;
      }
      void operator++(int) { ++*this; }
      friend bool operator==(const Iterator& at, End /*end*/) { return at.done(); }
      friend bool operator!=(const Iterator& at, End end) { return !(at == end); }
      /// @endcond

     private:
      bool done() const { return images_->current_ == nullptr; }
      Images* images_;
    };
    Iterator begin() { return Iterator(*this); }  ///< Waits for the first image
    End end() const { return {}; }                ///< Behind the last one

   private:
    void advance() {
      current_.reset();
      if (count_ == 0)
        return;
      --count_;
      std::error_code error;
      current_ = stream_->tryNext(timeout_, error);
      if (error && error != Errc::kAborted)
        throw Error(error.value(), "oviWaitForEvent");
    }

    const Stream* stream_;
    std::uint64_t count_;
    Milliseconds timeout_;
    std::unique_ptr<Image> current_;
  };
  /// So many images, each of which must come within the time.
  Images images(std::uint64_t count, Milliseconds timeout = Milliseconds(3000)) const {
    return {*this, count, timeout};
  }

 private:
  // Closes the stream after its event is gone and when registering the event fails.
  struct Guard {
    std::uint64_t handle;
    explicit Guard(std::uint64_t stream) noexcept : handle(stream) {}
    ~Guard() {
      if (handle != 0)
        oviCloseDataStream(handle);
    }
    Guard(Guard&& other) noexcept : handle(std::exchange(other.handle, 0)) {}
    Guard& operator=(Guard&&) = delete;
  };

  static std::uint64_t open(std::uint64_t device, std::uint32_t index, std::uint32_t count, std::uint64_t size) {
    std::uint64_t handle = 0;
    const oviErr code = oviCreateDataStream(device, index, &handle, count, size);
    if (code != OVI_SUCCESS && handle != 0)
      oviCloseDataStream(handle);
    check(code, "oviCreateDataStream");
    return handle;
  }
  oviNewBufferEventData* wait(Milliseconds timeout, std::error_code& error) const {
    void* data = nullptr;
    const oviErr code = oviWaitForEvent(event_.handle(), detail::timeoutValue(timeout), &data);
    error =
        code == OVI_SUCCESS && data == nullptr ? makeErrorCode(OVI_ERR_NO_IMAGE_DATA_AVAILABLE) : makeErrorCode(code);
    return static_cast<oviNewBufferEventData*>(data);
  }

  std::uint64_t handle_;
  Guard guard_;
  Event event_;
};

// ---- Devices ----

/// What others may do with the camera meanwhile.
enum class Access : std::uint32_t {
  kReadOnly = OVI_DEVICE_ACCESS_READ_ONLY,
  kControl = OVI_DEVICE_ACCESS_CONTROL,
  kExclusive = OVI_DEVICE_ACCESS_EXCLUSIVE
};

/// A running acquisition, stopped when it is destroyed.
class Acquisition {
 public:
  /// Starts the acquisition.
  Acquisition(std::uint64_t deviceHandle, std::uint32_t images) : device_(deviceHandle) {
    const oviErr code = oviStartAcquisition(device_, images);
    if (code != OVI_SUCCESS)
      oviStopAcquisition(device_);  // The streams may run already.
    check(code, "oviStartAcquisition");
  }
  ~Acquisition() {
    if (device_ != 0)
      oviStopAcquisition(device_);
  }
  /// The other one stops nothing any more.
  Acquisition(Acquisition&& other) noexcept : device_(std::exchange(other.device_, 0)) {}
  Acquisition& operator=(Acquisition&&) = delete;

  /// Stops now; throws what the destructor would keep to itself.
  void stop() {
    if (device_ != 0)
      check(oviStopAcquisition(std::exchange(device_, 0)), "oviStopAcquisition");
  }

 private:
  std::uint64_t device_;
};

/// Called during a file transfer; returns whether to go on.
using TransferFunction = std::function<bool(const oviFileTransferProgress&)>;

/// An open camera. Streams and features of it must not be used after it is gone.
class Device {
 public:
  /// Opens a camera of the latest discovery by its deviceID. The time is for each update of the producer's lists.
  explicit Device(const std::string& id, Access access = Access::kExclusive,
                  Milliseconds timeout = Milliseconds(1000)) {
    check(oviOpenDevice(id.c_str(), &handle_, detail::timeoutValue(timeout), static_cast<std::uint32_t>(access)),
          "oviOpenDevice", id);
  }
  ~Device() {
    if (handle_ != 0)
      oviCloseDevice(handle_);
  }
  /// The other one is not open any more.
  Device(Device&& other) noexcept : handle_(std::exchange(other.handle_, 0)) {}
  /// The other one closes what was open here.
  Device& operator=(Device&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }

  std::uint64_t handle() const noexcept { return handle_; }  ///< For calls of the C interface

  /// A feature of the camera, or of a module above it.
  Feature feature(std::string name, Module module = Module::kRemoteDevice) const {
    return {handle_, module, std::move(name)};
  }
  /// A feature of the camera.
  Feature operator[](std::string name) const { return feature(std::move(name)); }
  /// All features of the camera, or of a module above it.
  std::vector<TreeFeature> features(Module module = Module::kRemoteDevice) const {
    return featureTree(handle_, module);
  }
  /// Calls a function whenever the feature may have changed, until what it returns is destroyed.
  FeatureWatch watch(std::string name, FeatureWatch::Function changed, Module module = Module::kRemoteDevice) const {
    return {handle_, module, std::move(name), std::move(changed)};
  }

  /// Number of data streams.
  std::uint32_t streamCount() const {
    std::uint32_t count = 0;
    check(oviGetNumberOfDataStreams(handle_, &count), "oviGetNumberOfDataStreams");
    return count;
  }
  /// Opens a data stream; a buffer size of 0 lets the library ask the camera.
  Stream openStream(std::uint32_t bufferCount = 10, std::uint32_t index = 0, std::uint64_t bufferSize = 0) const {
    return {handle_, index, bufferCount, bufferSize};
  }
  /// An event of the device or of a module above it; those of streams and buffers are at their own handles.
  Event registerEvent(std::uint32_t kind, Module module) const { return {handle_, kind, module}; }

  /// Starts the acquisition until what it returns is destroyed.
  [[nodiscard]] Acquisition acquire(std::uint32_t images = OVI_INFINITE_IMAGES) const { return {handle_, images}; }
  /// Starts the acquisition.
  void start(std::uint32_t images = OVI_INFINITE_IMAGES) const {
    check(oviStartAcquisition(handle_, images), "oviStartAcquisition");
  }
  /// Stops it. Waits for images end.
  void stop() const { check(oviStopAcquisition(handle_), "oviStopAcquisition"); }
  /// Stops it without waiting for the image that is being transferred.
  void abort() const { check(oviAbortAcquisition(handle_), "oviAbortAcquisition"); }
  /// Gives the streams larger buffers when the images have grown.
  void reallocateBuffers() const { check(oviCheckAndReallocBuffers(handle_), "oviCheckAndReallocBuffers"); }
  /// Bytes of an image.
  std::uint64_t imageSize() const {
    std::int64_t size = 0;
    check(oviGetImageSize(handle_, &size), "oviGetImageSize");
    return static_cast<std::uint64_t>(size);
  }

  /// Reads bytes of the camera's register space.
  void readMemory(std::uint64_t address, std::uint8_t* to, std::uint64_t length) const {
    check(oviReadMemory(handle_, address, to, length), "oviReadMemory");
  }
  /// Writes bytes of the camera's register space.
  void writeMemory(std::uint64_t address, const std::uint8_t* from, std::uint64_t length) const {
    check(oviWriteMemory(handle_, address, from, length), "oviWriteMemory");
  }

  /// Which of the camera's files a host file is meant for; empty when it is of no known type.
  std::string fileTypeOf(const std::string& path) const {
    char type[512] = {};
    check(oviGetUpdateFileType(handle_, path.c_str(), type, sizeof(type)), "oviGetUpdateFileType", path);
    return type;
  }
  /// Writes a host file into a camera file. An exception of the progress function stops the transfer and leaves the
  /// call.
  void download(const std::string& path, const std::string& fileSelector, Milliseconds timeout,
                const TransferFunction& progress = {}) const {
    transfer(oviFileDownloadToDevice, "oviFileDownloadToDevice", path, fileSelector, timeout, progress);
  }
  /// Reads a camera file into a host file.
  void upload(const std::string& path, const std::string& fileSelector, Milliseconds timeout,
              const TransferFunction& progress = {}) const {
    transfer(oviFileUploadFromDevice, "oviFileUploadFromDevice", path, fileSelector, timeout, progress);
  }

 private:
  struct TransferContext {
    const TransferFunction& function;
    std::exception_ptr exception;
  };
  static std::uint8_t OVI_CALL forwardTransfer(const oviFileTransferProgress* progress, void* context) {
    auto& transfer = *static_cast<TransferContext*>(context);
    try {
      return !transfer.exception && transfer.function(*progress) ? 1 : 0;
    } catch (...) {
      transfer.exception = std::current_exception();
      return 0;
    }
  }
  template<class Function>
  void transfer(Function function, const char* name, const std::string& path, const std::string& selector,
                Milliseconds timeout, const TransferFunction& progress) const {
    TransferContext context{progress, nullptr};
    const oviErr code = function(handle_, path.c_str(), selector.c_str(), detail::timeoutValue(timeout),
                                 progress ? &Device::forwardTransfer : nullptr, &context);
    if (context.exception)
      std::rethrow_exception(context.exception);
    check(code, name, path);
  }

  std::uint64_t handle_ = 0;
};

}  // namespace ovi
