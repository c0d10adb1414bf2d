// What the arguments are made of.
#include "abuse_arguments.h"

#include <cstdio>
#include <cstdlib>

#include "outputs.h"

namespace proof {

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

void Arguments::harvest() const {
  for (const std::uint64_t* const out : outs_)
    if (*out != 0)
      handles.add(*out);
  for (const oviNewBufferEventData* const record : records_)
    if (record->bufferHandle != 0)
      handles.add(record->bufferHandle);
}

std::uint64_t Arguments::number(char role) {
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

std::uint64_t Arguments::handle() {
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

const char* Arguments::text(char role) {
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

void* Arguments::allocate(std::size_t size, bool filled) {
  memory_.push_back(std::make_unique<std::uint8_t[]>(size));
  if (filled)
    for (std::size_t i = 0; i < size; ++i)
      memory_.back()[i] = static_cast<std::uint8_t>(random_());
  return memory_.back().get();
}

void* Arguments::memory(char role, std::size_t objectSize, bool isHandle, bool isRecord) {
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

}  // namespace proof
