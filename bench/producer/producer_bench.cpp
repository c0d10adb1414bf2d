// What a frame costs the virtual camera in its speed mode.
//
// The loop takes a buffer with EventGetData and gives it back with DSQueueBuffer, and nothing else; the same loop with
// the seven questions that a consumer asks about an image comes second. Time is that of the calling thread, which does
// all the work in this mode; an empty loop's time is not subtracted, it is below a nanosecond.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "gentl_interface/GenTL.h"
#include "platform/platform.h"
#include "report.h"

namespace {

constexpr int kRounds = 9;
constexpr std::uint64_t kFrames = 200000;
constexpr int kBuffers = 8;

[[noreturn]] void fail(const std::string& what) {
  std::fprintf(stderr, "producer_bench: %s\n", what.c_str());
  std::exit(1);
}

void check(GC_ERROR code, const char* what) {
  if (code != GC_ERR_SUCCESS) {
    fail(std::string(what) + " answers " + std::to_string(code));
  }
}

/** CPU time of this thread where the system tells it, else of the process; nanoseconds. */
double now() {
#ifdef CLOCK_THREAD_CPUTIME_ID
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
#else
  return static_cast<double>(std::clock()) * (1e9 / CLOCKS_PER_SEC);
#endif
}

class Producer {
 public:
  explicit Producer(const std::string& path) : library_(OVI::platform::loadLibrary(path)) {
    if (library_ == nullptr) {
      fail("cannot load " + path + ": " + OVI::platform::lastErrorText());
    }
    open();
  }
  ~Producer() {
    find<PDSStopAcquisition>("DSStopAcquisition")(stream_, ACQ_STOP_FLAGS_KILL);
    find<PGCCloseLib>("GCCloseLib")();
    OVI::platform::unload(library_);
  }
  Producer(const Producer&) = delete;
  Producer& operator=(const Producer&) = delete;

  double measure(bool askingToo) {
    const double begin = now();
    for (std::uint64_t i = 0; i < kFrames; ++i) {
      EVENT_NEW_BUFFER_DATA data{};
      std::size_t size = sizeof(data);
      check(eventGetData_(event_, &data, &size, 5000), "EventGetData");
      if (askingToo) {
        ask(data.BufferHandle);
      }
      check(queueBuffer_(stream_, data.BufferHandle), "DSQueueBuffer");
    }
    return (now() - begin) / static_cast<double>(kFrames);
  }

 private:
  template<class Function>
  Function find(const char* name) {
    const auto function = reinterpret_cast<Function>(OVI::platform::resolve(library_, name));
    if (function == nullptr) {
      fail(std::string("no ") + name);
    }
    return function;
  }

  void ask(BUFFER_HANDLE buffer) {
    for (const BUFFER_INFO_CMD command :
         {BUFFER_INFO_BASE, BUFFER_INFO_FRAMEID, BUFFER_INFO_PIXELFORMAT, BUFFER_INFO_HEIGHT, BUFFER_INFO_WIDTH,
          BUFFER_INFO_SIZE_FILLED, BUFFER_INFO_SIZE}) {
      INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
      std::uint64_t value = 0;
      std::size_t size = sizeof(value);
      check(bufferInfo_(stream_, buffer, command, &type, &value, &size), "DSGetBufferInfo");
    }
  }

  void open() {
    check(find<PGCInitLib>("GCInitLib")(), "GCInitLib");
    TL_HANDLE system = nullptr;
    check(find<PTLOpen>("TLOpen")(&system), "TLOpen");
    bool8_t changed = 0;
    check(find<PTLUpdateInterfaceList>("TLUpdateInterfaceList")(system, &changed, 1000), "TLUpdateInterfaceList");
    char id[512];
    std::size_t size = sizeof(id);
    check(find<PTLGetInterfaceID>("TLGetInterfaceID")(system, 0, id, &size), "TLGetInterfaceID");
    IF_HANDLE interface = nullptr;
    check(find<PTLOpenInterface>("TLOpenInterface")(system, id, &interface), "TLOpenInterface");
    check(find<PIFUpdateDeviceList>("IFUpdateDeviceList")(interface, &changed, 1000), "IFUpdateDeviceList");
    size = sizeof(id);
    check(find<PIFGetDeviceID>("IFGetDeviceID")(interface, 0, id, &size), "IFGetDeviceID");
    DEV_HANDLE device = nullptr;
    check(find<PIFOpenDevice>("IFOpenDevice")(interface, id, DEVICE_ACCESS_CONTROL, &device), "IFOpenDevice");
    PORT_HANDLE port = nullptr;
    check(find<PDevGetPort>("DevGetPort")(device, &port), "DevGetPort");
    size = sizeof(id);
    check(find<PDevGetDataStreamID>("DevGetDataStreamID")(device, 0, id, &size), "DevGetDataStreamID");
    check(find<PDevOpenDataStream>("DevOpenDataStream")(device, id, &stream_), "DevOpenDataStream");
    check(find<PGCRegisterEvent>("GCRegisterEvent")(stream_, EVENT_NEW_BUFFER, &event_), "GCRegisterEvent");
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    std::size_t payload = 0;
    size = sizeof(payload);
    check(find<PDSGetInfo>("DSGetInfo")(stream_, STREAM_INFO_PAYLOAD_SIZE, &type, &payload, &size), "DSGetInfo");
    queueBuffer_ = find<PDSQueueBuffer>("DSQueueBuffer");
    eventGetData_ = find<PEventGetData>("EventGetData");
    bufferInfo_ = find<PDSGetBufferInfo>("DSGetBufferInfo");
    for (int i = 0; i < kBuffers; ++i) {
      BUFFER_HANDLE buffer = nullptr;
      check(find<PDSAllocAndAnnounceBuffer>("DSAllocAndAnnounceBuffer")(stream_, payload, nullptr, &buffer),
            "DSAllocAndAnnounceBuffer");
      check(queueBuffer_(stream_, buffer), "DSQueueBuffer");
    }
    check(find<PDSStartAcquisition>("DSStartAcquisition")(stream_, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE),
          "DSStartAcquisition");
    startCamera(port);
  }

  // The register of the command lies where the description says.
  void startCamera(PORT_HANDLE port) {
    char url[512];
    std::size_t size = sizeof(url);
    check(find<PGCGetPortURL>("GCGetPortURL")(port, url, &size), "GCGetPortURL");
    const std::string place(url);
    const std::size_t first = place.find(';');
    const std::uint64_t address = std::stoull(place.substr(first + 1), nullptr, 16);
    std::string text(std::stoull(place.substr(place.find(';', first + 1) + 1), nullptr, 16), '\0');
    size = text.size();
    check(find<PGCReadPort>("GCReadPort")(port, address, text.data(), &size), "GCReadPort");
    const std::size_t command = text.find("Name=\"AcquisitionStart\"");
    const std::string named = between(text, command, "<pValue>", "</pValue>");
    const std::size_t node = text.find("Name=\"" + named + "\"");
    const std::uint64_t at = std::stoull(between(text, node, "<Address>", "</Address>"), nullptr, 0);
    const std::string length = between(text, node, "<Length>", "</Length>");
    std::uint64_t one = 1;
    size = std::stoull(length);
    check(find<PGCWritePort>("GCWritePort")(port, at, &one, &size), "GCWritePort");
  }

  static std::string between(const std::string& text, std::size_t from, const char* before, const char* after) {
    const std::size_t begin = text.find(before, from);
    if (from == std::string::npos || begin == std::string::npos) {
      fail(std::string("the description has no ") + before);
    }
    const std::size_t start = begin + std::string(before).size();
    return text.substr(start, text.find(after, start) - start);
  }

  OVI::platform::LibraryHandle library_;
  DS_HANDLE stream_ = nullptr;
  EVENT_HANDLE event_ = nullptr;
  PDSQueueBuffer queueBuffer_ = nullptr;
  PEventGetData eventGetData_ = nullptr;
  PDSGetBufferInfo bufferInfo_ = nullptr;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    fail("usage: OVI_VIRTUAL_SPEED_MODE=1 producer_bench <VirtualCamera.cti>");
  }
  Producer producer(argv[1]);
  double frame = 1e9;
  double asked = 1e9;
  for (int round = 0; round < kRounds; ++round) {
    frame = std::min(frame, producer.measure(false));
    asked = std::min(asked, producer.measure(true));
  }
  bench::Report report("producer_bench");
  report.atMost("the virtual camera's ns a frame", frame, 150);
  report.plain("the same with seven questions about it", asked);
  return report.result();
}
