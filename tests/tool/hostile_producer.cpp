// The virtual camera with an order to misbehave, which the environment gives: one line of words, as in the tests'
// table. The functions of a producer are found in the library that this one depends on, or passed on to it by name.
#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif
#include <gentl_interface/GenTL.h>
#include <ovi_virtual/hostility.h>

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

namespace {

// Nobody has memory there, and no sanitizer looks for it as it does for null.
volatile std::uintptr_t nowhere = 16;

void crash() {
  *reinterpret_cast<volatile int*>(nowhere) = 0;
}

template<class Pointer>
Pointer next(const char* function) {
#ifdef _WIN32
  return reinterpret_cast<Pointer>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("VirtualCamera.cti"), function)));
#else
  return reinterpret_cast<Pointer>(dlsym(RTLD_NEXT, function));
#endif
}

struct Orders {
  Orders() {
    const char* const text = std::getenv("OVI_TEST_ORDER");
    std::istringstream words(text == nullptr ? "" : text);
    std::string order;
    std::string function;
    long number = 0;
    words >> order;
    const OviVirtualHostility& hostility = *oviVirtualHostility();
    std::uint64_t from = 1;
    if (order == "fail" && words >> function >> number) {
      words >> from;  // With its first call, when the order names none.
      hostility.fail(function.c_str(), static_cast<std::int32_t>(number), from == 0 ? 1 : from, UINT64_MAX);
    }
    if (order == "block" && words >> function)
      hostility.block(function.c_str(), 1, UINT64_MAX);
    if (order == "text" && words >> function >> number)
      hostility.spoilText(function.c_str(), -1, static_cast<OviVirtualText>(number), UINT64_MAX);
    if (order == "type" && words >> function >> number)
      hostility.spoilType(function.c_str(), -1, static_cast<std::int32_t>(number), UINT64_MAX);
    if (order == "short")
      hostility.shortReads(1, 1, UINT64_MAX);
    if (order == "frames" && words >> number)
      hostility.spoilFrames(nullptr, static_cast<std::uint32_t>(number), 3, 1);
    if (order == "allframes" && words >> number)
      hostility.spoilFrames(nullptr, static_cast<std::uint32_t>(number), 3, UINT64_MAX);
    if (order == "pause")
      hostility.pauseFrames(nullptr, 1);
    if (order == "slow" && words >> number)
      hostility.slowUpdates(static_cast<std::uint64_t>(number));
    if (order == "exit")
      std::_Exit(3);
    if (order == "crash" && !(words >> function))
      crash();
  }
};

const Orders orders;

}  // namespace

// Cameras, which commands belong to, are there only afterwards.
GC_ERROR GC_CALLTYPE GCInitLib(void) {
  const auto real = next<PGCInitLib>("GCInitLib");
  const GC_ERROR code = real();
  const char* const text = std::getenv("OVI_TEST_ORDER");
  if (text != nullptr && std::string(text) == "crash GCInitLib")
    crash();
  if (text != nullptr && std::string(text) == "busy")
    oviVirtualHostility()->busyCommands(nullptr, 5);
  return code;
}

// A cable that is pulled while the camera is open.
GC_ERROR GC_CALLTYPE IFOpenDevice(IF_HANDLE handle, const char* device, DEVICE_ACCESS_FLAGS access, DEV_HANDLE* out) {
  const auto real = next<PIFOpenDevice>("IFOpenDevice");
  const GC_ERROR code = real(handle, device, access, out);
  const char* const text = std::getenv("OVI_TEST_ORDER");
  if (text != nullptr && std::string(text) == "lose")
    oviVirtualHostility()->loseDevice(device);
  return code;
}

// Other programs, which the virtual camera knows nothing of, may hold its cameras.
GC_ERROR GC_CALLTYPE IFGetDeviceInfo(IF_HANDLE handle, const char* device, DEVICE_INFO_CMD command, INFO_DATATYPE* type,
                                     void* buffer, size_t* size) {
  const auto real = next<PIFGetDeviceInfo>("IFGetDeviceInfo");
  const GC_ERROR code = real(handle, device, command, type, buffer, size);
  const char* const text = std::getenv("OVI_TEST_ORDER");
  if (text != nullptr && std::string(text).rfind("access ", 0) == 0 && command == DEVICE_INFO_ACCESS_STATUS &&
      code == GC_ERR_SUCCESS && buffer != nullptr)
    *static_cast<std::int32_t*>(buffer) = std::stoi(text + 7);
  return code;
}
