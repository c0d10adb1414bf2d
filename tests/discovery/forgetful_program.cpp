// Opens a device of the producers in a folder and returns from main without closing anything. A child that it forks
// does the same first.
#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "ovi/ovi.h"

namespace {
bool inMain = true;

void log(std::uint32_t /*level*/, const char* /*message*/, void* /*userData*/) {
  if (!inMain)
    std::puts("callback after main");
}

/** A global object of an application, which uses the library when the library may have been taken down. */
struct LateCaller {
  ~LateCaller() {
    inMain = true;
    oviSetIgnoreSubnetEnabled(1);
    std::printf("late call: %d\n", oviCloseDevice(1) != OVI_SUCCESS);
  }
} lateCaller;
}  // namespace

int main(int argc, char** argv) {
#ifdef _WIN32
  _putenv_s("TREE_TRACE", "1");
#else
  setenv("TREE_TRACE", "1", 1);
#endif
  oviInit(OVI_LOG_LEVEL_DEBUG, log, nullptr);
  const auto info = std::make_unique<oviDiscoveryInfo>();
  std::uint64_t handle = 0;
  if (argc < 2 || oviDiscoverDevices(info.get(), 100, nullptr, argv[1], 1) != OVI_SUCCESS ||
      oviOpenDevice("cam0", &handle, 100, OVI_DEVICE_ACCESS_CONTROL) != OVI_SUCCESS) {
    std::puts("failed");
    return 1;
  }
  std::puts("ready");
  std::fflush(stdout);
  inMain = false;
#ifndef _WIN32
  const pid_t child = fork();
  if (child != 0)
    waitpid(child, nullptr, 0);
#endif
  return 0;
}
