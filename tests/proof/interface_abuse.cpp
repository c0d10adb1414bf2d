// Calls every function of the library with every kind of wrong argument, in every state of the library and from eight
// threads at once, and shows that nothing crashes or hangs and that everything works afterwards.
//
//   interface_abuse [--seconds N] [--seed N]
//
// The calls are made from one table. A function that is declared in the public header and missing in the table, or the
// other way round, is a failure.
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <mutex>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "journeys.h"
#include "outputs.h"
#include "ovi/ovi.h"
#include "watchdog.h"

namespace proof {

namespace {

constexpr std::size_t kThreads = 8;
constexpr std::size_t kImageRoom = std::size_t{8} * 1024 * 1024;
constexpr std::size_t kFeatureRoom = 2000;

std::string producers;  // The folder of the virtual camera.

/** All handles that were ever given out, whether they still mean something or not. */
class Handles {
 public:
  void add(std::uint64_t handle) {
    const std::lock_guard lock(mutex_);
    handles_[next_++ % handles_.size()] = handle;
  }
  std::uint64_t at(std::size_t index) {
    const std::lock_guard lock(mutex_);
    return handles_[index % handles_.size()];
  }

 private:
  std::mutex mutex_;
  std::array<std::uint64_t, 24> handles_{};
  std::size_t next_ = 0;
};

Handles handles;
std::atomic<std::size_t> calls{0};
std::atomic<std::size_t> failedSteps{0};

void report(const std::string& what) {
  ++failedSteps;
  std::fprintf(results, "FAILED %s\n", what.c_str());
  std::fflush(results);
}

void OVI_CALL onLog(std::uint32_t /*level*/, const char* message, void* /*userData*/) {
  if (std::strlen(message) == std::size_t(-1))
    std::abort();
}
void OVI_CALL onDiscovery(oviDiscoveryInfo* info) {
  if (info->deviceCount > 16)
    report("a report about more devices than it has room for");
}
void OVI_CALL onInvalidate(const char* /*featureName*/, void* context) {
  ++*static_cast<std::atomic<int>*>(context);
}
void OVI_CALL onImage(std::uint8_t* /*imageData*/, oviImageInfo* /*info*/, std::uint8_t /*ok*/) {}
std::uint8_t OVI_CALL onTransfer(const oviFileTransferProgress* progress, void* /*context*/) {
  return progress->bytesDone < 5000 ? 1 : 0;
}

/** Makes arguments, one after the other, and keeps what they point to until the call is over. */
class Arguments {
 public:
  explicit Arguments(std::uint32_t seed) : random_(seed) {}

  std::size_t any(std::size_t count) { return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_); }

  void begin() {
    memory_.clear();
    outs_.clear();
    records_.clear();
    hasUnknownHandle_ = false;
  }

  /** After a call that succeeded: what it gave out can be used. */
  void harvest() const {
    for (const std::uint64_t* const out : outs_)
      if (*out != 0)
        handles.add(*out);
    for (const oviNewBufferEventData* const record : records_)
      if (record->bufferHandle != 0)
        handles.add(record->bufferHandle);
  }

  /** Whether the call was given a handle that was never issued. */
  bool hasUnknownHandle() const noexcept { return hasUnknownHandle_; }

  /**
   * An argument of type T. Its role:
   *   h a handle; E a variable with one     n a name or a value as text; D a device's ID; p a path; q a producer's; A a
   * search path w a value as text in memory of at least 512 bytes, which are what a register is written from o memory
   * of the size that follows in z (or in the variable of Z); B the same to read from T a text of 512 bytes; X one of
   * 300; S room for an image; L a list with room for features; P room for images e one object to be filled; O the same,
   * never null; R a record with anything in it c a callback; x its context; 0 null s a module selector; t a time-out; i
   * a number; C, Q number and size of buffers; j, u, m, k arguments of scans
   */
  template<class T>
  T make(char role) {
    if constexpr (std::is_same_v<T, double>) {
      constexpr double kValues[] = {0,
                                    -1,
                                    1.5,
                                    1e300,
                                    -1e-300,
                                    std::numeric_limits<double>::infinity(),
                                    std::numeric_limits<double>::quiet_NaN()};
      return kValues[any(std::size(kValues))];
    } else if constexpr (!std::is_pointer_v<T>) {
      return static_cast<T>(number(role));
    } else if constexpr (std::is_function_v<std::remove_pointer_t<T>>) {
      return role == '0' || any(4) == 0 ? nullptr : callback(T{});
    } else {
      return role != 'O' && (role == '0' || any(8) == 0) ? nullptr : pointer<T>(role);
    }
  }

 private:
  std::uint64_t number(char role) {
    constexpr std::uint64_t kAny[] = {0, 1, 2, 3, 31, 255, 0x10000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, UINT64_MAX};
    constexpr std::uint64_t kSizes[] = {0, 1, 1000, 100000, UINT64_MAX / 2, UINT64_MAX};
    switch (role) {
      case 'h':
        return handle();
      case 'z':
        return size_;
      case 's':
        return any(8) == 0 ? kAny[any(std::size(kAny))] : any(8);
      case 't':
        return any(20);
      case 'C':
        return any(6);
      case 'Q':
        return kSizes[any(std::size(kSizes))];
      case 'j':
        return any(5) - 1;
      case 'u':
        return any(8);
      case 'm':
        return 0 - any(2);
      case 'k':
        return any(3);
      default:
        return any(3) == 0 ? random_() : kAny[any(std::size(kAny))];
    }
  }

  std::uint64_t handle() {
    switch (any(8)) {
      case 0:
        hasUnknownHandle_ = true;
        return 0;
      case 1:
        hasUnknownHandle_ = true;
        return (std::uint64_t{random_()} << 32) | 0x8000000000000000;
      default:
        return handles.at(any(1000));
    }
  }

  const char* text(char role) {
    static const std::string kLong(100000, 'x');
    static const std::string kCamera = producers + "/VirtualCamera.cti";
    static const std::array kNames = {"",
                                      "Width",
                                      "PixelFormat",
                                      "Mono8",
                                      "Root",
                                      "DeviceUserID",
                                      "LUTValueAll",
                                      "LUTValue",
                                      "AcquisitionStart",
                                      "AcquisitionStop",
                                      "ExposureTime",
                                      "TestPattern",
                                      "UserData",
                                      "EventAcquisitionStart",
                                      "no such thing",
                                      "%s%n%s%d",
                                      "\xff\xfe\x80",
                                      "1",
                                      "-1",
                                      "x10000",
                                      "1e400",
                                      "nan",
                                      "Std::Width",
                                      "oviDeviceInfo",
                                      kLong.c_str()};
    static const std::array kDevices = {"VC-KV032003", "VC-KV080004", "", "VC", kLong.c_str()};
    static const std::array kPaths = {"", ".", "/", "interface_abuse.bin", "no/such/file", "\xff\xfe", kLong.c_str()};
    static const std::array kProducers = {kCamera.c_str(), "", "interface_abuse.bin", "no.cti", kLong.c_str()};
    static const std::array kSearch = {producers.c_str(), producers.c_str(), "", ";;;", "/no;.", kLong.c_str()};
    const auto one = [this](const auto& texts) { return texts[any(texts.size())]; };
    return role == 'D'   ? one(kDevices)
           : role == 'p' ? one(kPaths)
           : role == 'q' ? one(kProducers)
           : role == 'A' ? one(kSearch)
                         : one(kNames);
  }

  /** Memory of exactly that size, so that a sanitizer sees what goes beyond it. */
  void* allocate(std::size_t size, bool filled = false) {
    memory_.push_back(std::make_unique<std::uint8_t[]>(size));
    if (filled)
      for (std::size_t i = 0; i < size; ++i)
        memory_.back()[i] = static_cast<std::uint8_t>(random_());
    return memory_.back().get();
  }

  template<class T>
  T pointer(char role) {
    using Object = std::remove_cv_t<std::remove_pointer_t<T>>;
    if constexpr (std::is_same_v<T, const char*>) {
      if (role != 'w')
        return text(role);
      const char* const value = text(role);
      const std::size_t length = std::strlen(value);
      return static_cast<T>(std::memcpy(allocate(std::max<std::size_t>(512, length + 1)), value, length));
    } else if constexpr (std::is_same_v<Object, FEATURE_PARAM_LIST_STRUCT>) {
      features_.resize(kFeatureRoom);
      auto* const list = static_cast<T>(allocate(sizeof(Object)));
      list->features = any(4) == 0 ? nullptr : features_.data();
      return list;
    } else if constexpr (std::is_same_v<Object, std::uint8_t*>) {
      image_.resize(kImageRoom);
      auto* const rooms = static_cast<std::uint8_t**>(allocate(sizeof(std::uint8_t*) * 3));
      std::fill_n(rooms, 3, any(4) == 0 ? nullptr : image_.data());
      return rooms;
    } else if constexpr (std::is_same_v<Object, oviImageInfo>) {
      return static_cast<T>(allocate(sizeof(Object) * 3, role == 'R'));
    } else {
      return static_cast<T>(memory(role, objectSize<Object>(), std::is_same_v<Object, std::uint64_t>,
                                   std::is_same_v<Object, oviNewBufferEventData>));
    }
  }

  template<class Object>
  static constexpr std::size_t objectSize() {
    if constexpr (std::is_void_v<Object>)
      return 64;
    else
      return sizeof(Object);
  }

  void* memory(char role, std::size_t objectSize, bool isHandle, bool isRecord) {
    constexpr std::size_t kSizes[] = {0, 1, 4, 5, 64, 512, 4096};
    switch (role) {
      case 'o':
      case 'B':
        size_ = kSizes[any(std::size(kSizes))];
        return allocate(size_, true);
      case 'T':
        return allocate(512);
      case 'X':
        return allocate(300);
      case 'S':
        image_.resize(kImageRoom);
        return image_.data();
      case 'x': {
        static std::atomic<int> context{0};
        return &context;
      }
      case 'Z': {
        void* const size = allocate(sizeof(std::uint64_t));
        std::memcpy(size, &size_, sizeof size_);
        return size;
      }
      default:
        break;
    }
    void* const object = allocate(objectSize, role == 'R');
    if (isHandle && role == 'E') {
      const std::uint64_t value = handle();
      std::memcpy(object, &value, sizeof value);
    } else if (isHandle) {
      outs_.push_back(static_cast<std::uint64_t*>(object));
    } else if (isRecord) {
      records_.push_back(static_cast<oviNewBufferEventData*>(object));
    }
    return object;
  }

  static oviLogCallback callback(oviLogCallback) { return onLog; }
  static oviDiscoveryCallback callback(oviDiscoveryCallback) { return onDiscovery; }
  static oviInvalidateCallback callback(oviInvalidateCallback) { return onInvalidate; }
  static oviScanCallback callback(oviScanCallback) { return onImage; }
  static oviFileTransferCallback callback(oviFileTransferCallback) { return onTransfer; }

  std::mt19937 random_;
  std::size_t size_ = 0;
  bool hasUnknownHandle_ = false;
  std::vector<std::unique_ptr<std::uint8_t[]>> memory_;
  std::vector<const std::uint64_t*> outs_;
  std::vector<const oviNewBufferEventData*> records_;
  std::vector<std::uint8_t> image_;
  std::vector<oviFeatureParameter> features_;
};

enum class Kind {
  Quick,
  Slow,      // Waits, or works for longer: called less often.
  Ours,      // Called by this program alone, at its time.
  Tolerant,  // As slow, and succeeds also with a handle that nobody knows.
};

struct Function {
  std::string name;
  Kind kind;
  std::function<void(Arguments& arguments)> call;
};

/** The arguments of a call, made from left to right: a size follows the memory that it is of. */
template<class... Parameters, std::size_t... Positions>
std::tuple<Parameters...> makeAll(Arguments& arguments, const char* roles, std::index_sequence<Positions...>) {
  return std::tuple<Parameters...>{arguments.make<Parameters>(roles[Positions])...};
}

template<class Result, class... Parameters>
Function entry(const char* name, Result(OVI_CALL* function)(Parameters...), const char* roles, Kind kind) {
  if (std::strlen(roles) != sizeof...(Parameters))
    throw std::logic_error(std::string(name) + " has another number of parameters");
  const auto call = [=](Arguments& arguments) {
    arguments.begin();
    const auto made = makeAll<Parameters...>(arguments, roles, std::index_sequence_for<Parameters...>());
    ++calls;
    try {
      const Result result = std::apply(function, made);
      if constexpr (std::is_same_v<Result, std::int32_t>) {
        if (result == OVI_SUCCESS && arguments.hasUnknownHandle() && kind != Kind::Tolerant)
          report(std::string(name) + " succeeds with an unknown handle");
        if (result == OVI_SUCCESS)
          arguments.harvest();
      }
    } catch (const std::runtime_error& error) {  // Only recording functions that the producer lacks may throw.
      if (std::string(name).rfind("oviNimbo", 0) != 0)
        report(std::string(name) + " throws: " + error.what());
    }
  };
  return {name, kind, call};
}

#define FUNCTION(name, roles, ...) entry(#name, &(name), roles, Kind::__VA_ARGS__)

std::vector<Function> allFunctions() {
  return {
      FUNCTION(oviInit, "i00", Ours),
      FUNCTION(oviClose, "", Ours),
      FUNCTION(oviGetLibraryVersion, "eeee", Quick),
      FUNCTION(oviSetIgnoreSubnetEnabled, "i", Quick),
      FUNCTION(oviSetFeatureCachingDisabled, "i", Quick),
      FUNCTION(oviIsFeatureCachingDisabled, "O", Quick),
      FUNCTION(oviGetErrorDescription, "ioz", Quick),
      FUNCTION(get_error_string, "iX", Quick),
      FUNCTION(oviGetStructSize, "nO", Quick),
      FUNCTION(get_struct_size, "n", Quick),
      FUNCTION(oviGetKitharaErrDescription, "ioz", Quick),
      FUNCTION(oviGetEuresysErrDescription, "ioz", Quick),
      FUNCTION(oviRegisterDebugExceptionHandler, "", Ours),
      FUNCTION(oviGetNumberOfTLProducers, "e", Quick),
      FUNCTION(oviGetTLProducerPathByIndex, "ozi", Quick),
      FUNCTION(oviGetTLProducerInfobyFilePath, "eq", Slow),
      FUNCTION(oviDiscoverDevices, "etcAi", Slow),
      FUNCTION(oviGetDeviceInfo, "ie", Quick),
      FUNCTION(oviOpenDevice, "Deti", Quick),
      FUNCTION(oviCloseDevice, "h", Slow),
      FUNCTION(oviIsUsingS2iTL, "he", Quick),
      FUNCTION(oviIsUsingKitharaTL, "he", Quick),
      FUNCTION(oviIsUsingNimboTL, "he", Quick),
      FUNCTION(oviSetRemoteDeviceXMLFile, "hp", Slow),
      FUNCTION(oviGetFeatureInt, "hnes", Quick),
      FUNCTION(oviGetFeatureFloat, "hnes", Quick),
      FUNCTION(oviGetFeatureBool, "hnes", Quick),
      FUNCTION(oviGetFeatureString, "hnoZs", Quick),
      FUNCTION(oviSetFeatureInt, "hnis", Quick),
      FUNCTION(oviSetFeatureFloat, "hnis", Quick),
      FUNCTION(oviSetFeatureBool, "hnks", Quick),
      FUNCTION(oviSetFeatureString, "hnns", Quick),
      FUNCTION(oviSetFeatureEnum, "hnns", Quick),
      FUNCTION(oviGetFeatureEnum, "hnes", Quick),
      FUNCTION(oviExecuteCommand, "hns", Quick),
      FUNCTION(oviIsCommandActive, "hnes", Quick),
      FUNCTION(oviGetFeatureReg, "hnoZs", Quick),
      FUNCTION(oviSetFeatureReg, "hnBzs", Quick),
      FUNCTION(oviGetFeatureParameter, "hnes", Quick),
      FUNCTION(oviGetFeatureAccessMode, "hnes", Quick),
      FUNCTION(oviGetFeatureEnumEntryCount, "hnes", Quick),
      FUNCTION(oviGetFeatureEnumEntryByIndex, "hnies", Quick),
      FUNCTION(oviGetFeatureEnumEntryByName, "hnnes", Quick),
      FUNCTION(oviGetFeatureAllEnums, "hnSi", Quick),
      FUNCTION(oviIterateFeatureTree, "hniozOs", Quick),
      FUNCTION(oviGetFeatureList, "hLi", Tolerant),
      FUNCTION(oviGetFeature, "hnT", Quick),
      FUNCTION(oviSetFeature, "hnw", Quick),
      FUNCTION(oviGetFeatureOnModule, "hnTs", Quick),
      FUNCTION(oviSetFeatureOnModule, "hnws", Quick),
      FUNCTION(oviReadMemory, "hioz", Quick),
      FUNCTION(oviWriteMemory, "hiBz", Quick),
      FUNCTION(oviGetRegisterValue, "hnTi", Quick),
      FUNCTION(oviSetRegisterValue, "hnni", Quick),
      FUNCTION(oviIsModuleLittleEndian, "hse", Quick),
      FUNCTION(oviRegisterInvalidateCB, "hnxcs", Quick),
      FUNCTION(oviUnRegisterInvalidateCB, "hns", Quick),
      FUNCTION(oviCreateDataStream, "hkeCQ", Quick),
      FUNCTION(oviCloseDataStream, "h", Slow),
      FUNCTION(oviGetNumberOfDataStreams, "he", Quick),
      FUNCTION(oviGetDataStreamInfo, "hke", Quick),
      FUNCTION(oviCheckAndReallocBuffers, "h", Slow),
      FUNCTION(oviStartAcquisition, "hi", Quick),
      FUNCTION(oviStopAcquisition, "h", Quick),
      FUNCTION(oviAbortAcquisition, "h", Quick),
      FUNCTION(oviRegisterEvent, "hkes", Quick),
      FUNCTION(oviWaitForEvent, "hte", Quick),
      FUNCTION(oviGetNextImage, "het", Quick),
      FUNCTION(oviReleaseImage, "hR", Tolerant),
      FUNCTION(oviEventKill, "h", Quick),
      FUNCTION(oviUnregisterEvent, "h", Slow),
      FUNCTION(oviGetImageSize, "he", Quick),
      FUNCTION(oviGetAcquisitionStatistics, "he", Quick),
      FUNCTION(oviBitsPerPixelFromFormat, "i", Quick),
      FUNCTION(oviSetImageParameter, "hRtkk", Quick),
      FUNCTION(oviSetDeviceMaxPacketSize, "h", Quick),
      FUNCTION(oviGetMaintenanceMode, "he", Quick),
      FUNCTION(oviSetMaintenanceMode, "hkii", Slow),
      FUNCTION(oviScanImg, "hcjum", Slow),
      FUNCTION(oviScanImgStop, "h", Tolerant),
      FUNCTION(oviScanImage, "hS", Slow),
      FUNCTION(oviScanImageCont, "hkEER", Tolerant),
      FUNCTION(oviScanStreamImage, "hkPe", Slow),
      FUNCTION(oviGetLastImageInfo, "e", Quick),
      FUNCTION(oviFileDownloadToDevice, "hpntcx", Slow),
      FUNCTION(oviFileUploadFromDevice, "hpntcx", Slow),
      FUNCTION(oviGetUpdateFileType, "hpoz", Quick),
      FUNCTION(oviNimboStartRecording, "h", Quick),
      FUNCTION(oviNimboStopRecording, "h", Quick),
      FUNCTION(oviNimboOpenRecordings, "he", Quick),
      FUNCTION(oviNimboCloseRecordings, "h", Quick),
      FUNCTION(oviNimboClearAllRecordings, "h", Quick),
      FUNCTION(oviNimboGetRecordingData, "hie", Quick),
      FUNCTION(oviNimboSelectRecording, "hi", Quick),
      FUNCTION(oviNimboReadRecording, "he", Quick),
      FUNCTION(oviNimboFreeRecordImage, "he", Quick),
      FUNCTION(oviNimboIsRecordingAvailable, "h", Quick),
      FUNCTION(oviNimboGetRecordsInfo, "he", Quick),
      FUNCTION(oviNimboSetFrameRate, "hi", Quick),
      FUNCTION(oviNimboSetRGBConversionEnabled, "hk", Quick),
  };
}

/** The functions that the public header declares. */
std::set<std::string> declaredFunctions() {
  std::ifstream file(HEADER);
  const std::string header{std::istreambuf_iterator<char>(file), {}};
  const std::string mark = "OVI_CALL ";
  std::set<std::string> names;
  for (std::size_t at = header.find(mark); at != std::string::npos; at = header.find(mark, at)) {
    at += mark.size();
    const std::size_t end =
        header.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_", at);
    if (end != std::string::npos && header[end] == '(' && end > at)
      names.insert(header.substr(at, end - at));
  }
  return names;
}

bool checkTable(const std::vector<Function>& functions) {
  std::set<std::string> names = declaredFunctions();
  bool isRight = !names.empty();
  for (const Function& function : functions)
    if (names.erase(function.name) == 0) {
      report(function.name + " is in the table, but not declared, or twice");
      isRight = false;
    }
  for (const std::string& name : names) {
    report(name + " is declared, but not in the table");
    isRight = false;
  }
  return isRight;
}

using Clock = std::chrono::steady_clock;

/** Calls functions at random until it is told to stop. */
void abuse(const std::vector<Function>& functions, std::size_t thread, std::uint32_t seed,
           const std::atomic<bool>& stop) {
  Arguments arguments(seed);
  while (!stop) {
    const Function& function = functions[arguments.any(functions.size())];
    if (function.kind == Kind::Ours || (function.kind != Kind::Quick && arguments.any(25) != 0))
      continue;
    Watchdog::doing(thread, function.name.c_str());
    function.call(arguments);
  }
  Watchdog::doing(thread, nullptr);
}

/** Every function a few times, one after the other, in the state that the library is in. */
void walk(const std::vector<Function>& functions, std::uint32_t seed, int times) {
  Arguments arguments(seed);
  for (const Function& function : functions) {
    if (function.kind == Kind::Ours)
      continue;
    Watchdog::doing(0, function.name.c_str());
    for (int i = 0; i < times; ++i)
      function.call(arguments);
  }
  Watchdog::doing(0, nullptr);
}

/** A library with cameras found, some of them open and one acquiring. */
void setUp() {
  const auto found = std::make_unique<oviDiscoveryInfo>();
  oviInit(OVI_LOG_LEVEL_ERROR, nullptr, nullptr);
  oviDiscoverDevices(found.get(), 100, nullptr, producers.c_str(), 1);
  std::uint64_t device = 0;
  std::uint64_t stream = 0;
  std::uint64_t event = 0;
  for (const char* const id : {"VC-KV080004", "VC-KV032003"}) {
    oviOpenDevice(id, &device, 100, OVI_DEVICE_ACCESS_CONTROL);
    handles.add(device);
  }
  oviCreateDataStream(device, 0, &stream, 4, 0);
  oviRegisterEvent(stream, OVI_EVENT_NEW_BUFFER, &event, OVI_MODULE_DATA_STREAM);
  oviStartAcquisition(device, OVI_INFINITE_IMAGES);
  handles.add(stream);
  handles.add(event);
}

/** Everything that an application does works: the library has lost nothing by what was done to it. */
void expectHealthy() {
  Watchdog::doing(0, "the journeys afterwards");
  World world;
  world.producers = producers;
  for (const Journey& journey : kJourneys) {
    Verdict verdict;
    journey.prepare(world, verdict);
    journey.run(world, verdict);
    if (!verdict.good())
      report(std::string(journey.name) + " fails afterwards: " + verdict.firstFailure());
  }
  Watchdog::doing(0, nullptr);
}

int run(double seconds, std::uint32_t seed) {
  const std::vector<Function> functions = allFunctions();
  if (!checkTable(functions))
    return 1;
  std::ofstream("interface_abuse.bin", std::ios::binary) << std::string(20000, 'b');
  walk(functions, seed, 20);  // Before the first initialisation.
  const std::size_t before = calls;

  setUp();
  oviInit(0, onLog, nullptr);
  walk(functions, seed + 1, 5);
  const std::size_t alone = calls;
  std::atomic<bool> stop{false};
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < kThreads; ++i)
    threads.emplace_back([&, i] { abuse(functions, i + 1, seed + static_cast<std::uint32_t>(i) + 2, stop); });
  const auto part = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds / 10));
  std::this_thread::sleep_for(5 * part);
  const std::size_t open = calls;
  for (int i = 0; i < 5; ++i) {  // The others go on calling while the library closes and starts anew.
    Watchdog::doing(0, "oviClose");
    oviClose();
    std::this_thread::sleep_for(part / 4);
    Watchdog::doing(0, "setting up again");
    setUp();
    Watchdog::doing(0, nullptr);
    std::this_thread::sleep_for(part / 2);
  }
  stop = true;
  for (std::thread& thread : threads)
    thread.join();
  const std::size_t closing = calls;
  oviClose();
  walk(functions, seed + 100, 20);
  const std::size_t after = calls;
  expectHealthy();
  oviClose();
  std::fprintf(results,
               "seed %u: %zu functions; %zu calls before the start, %zu by one thread, %zu by %zu threads, %zu around "
               "closings, %zu after the end; %zu failures\n",
               seed, functions.size(), before, alone - before, open - alone, kThreads, closing - open, after - closing,
               failedSteps.load());
  return failedSteps == 0 ? 0 : 1;
}

}  // namespace

}  // namespace proof

int main(int argc, char** argv) {
  double seconds = 10;
  std::uint32_t seed = 1;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string argument = argv[i];
    if (argument == "--seconds")
      seconds = std::atof(argv[i + 1]);
    else if (argument == "--seed")
      seed = static_cast<std::uint32_t>(std::strtoul(argv[i + 1], nullptr, 10));
  }
  if (!proof::separateOutputs())
    return 1;
  proof::Watchdog::start(std::chrono::seconds(60));
  proof::producers = std::filesystem::absolute(argv[0]).parent_path().string();
  return proof::run(seconds, seed);
}
