// Any bytes as the settings file that keeps the outcome of the environment check: what is kept in it is found again,
// and all else in it stays.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "discovery/environment.h"
#include "settings_file.h"
#include "support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fuzz::ScratchFile file("Kestrova/Pelt/Hux.ini");
  static const int pointed = ::setenv("XDG_PUBLICSHARE_DIR", file.folder().c_str(), 1);
  fuzz::require(pointed == 0);
  file.write(data, size);
  OVI::SettingsFile settings(file.path());
  settings.value("KitharaEnvironment");
  settings.set("Kept", "by the fuzzer");
  settings.set("EnvironmentSet", "1");
  settings.set("KitharaEnvironment", "oviNoKitharaProcessorsErr");
  fuzz::require(settings.write().empty());
  fuzz::require(OVI::isKitharaEnvironmentSet() == OVI_ERR_NO_KITHARA_PROCESSORS);

  const std::string written = fuzz::contentOf(file.path());
  OVI::SettingsFile again(file.path());
  fuzz::require(again.value("kept") == "by the fuzzer");
  fuzz::require(again.write().empty());
  fuzz::require(fuzz::contentOf(file.path()) == written);
  return 0;
}
