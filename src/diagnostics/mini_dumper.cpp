// The crash handler of the process: who installs it, and where its reports go.
#include "diagnostics/mini_dumper.h"

#include "platform/platform.h"

namespace OVI {

namespace {

constexpr const char* kSupportAddress = "support@kestrova.example";

}  // namespace

MiniDumper::MiniDumper(const std::string& directory, bool quiet)
    : active_(platform::installCrashHandler({directory, kSupportAddress, quiet})) {}

std::int32_t oviRegisterDebugExceptionHandler() {
  static const MiniDumper dumper(platform::tempDirectory());
  return 0;
}

}  // namespace OVI
