// The library with tree producers behind it, and its log.
#include "discovery_fixture.h"

#include <mutex>

#include "platform/platform.h"

namespace discovery_test {

namespace {

std::mutex logMutex;
std::vector<std::string> logLines;

void keep(std::uint32_t /*level*/, const char* message, void* /*userData*/) {
  const std::lock_guard lock(logMutex);
  logLines.emplace_back(message);
}

}  // namespace

std::vector<std::string> takeLog() {
  const std::lock_guard lock(logMutex);
  return std::exchange(logLines, {});
}

bool contains(const std::vector<std::string>& log, std::string_view part) {
  for (const std::string& line : log)
    if (line.find(part) != std::string::npos)
      return true;
  return false;
}

void initialise() {
  static bool attached = false;  // A second callback would deliver every line twice.
  ASSERT_EQ(oviInit(OVI_LOG_LEVEL_DEBUG, attached ? nullptr : keep, nullptr), OVI_SUCCESS);
  attached = true;
}

std::string treeFolder(const std::string& producer) {
  return std::string(TREE_DIR) + "/" + producer;
}

DiscoveryTest::DiscoveryTest(const std::string& producer)
    : folder_(treeFolder(producer)),
      library_(OVI::platform::loadLibrary(folder_ + "/" + producer + ".cti")) {
  script_ = reinterpret_cast<tree::GetScript>(OVI::platform::resolve(library_, "treeScript"))();
  plantTree();
  initialise();
  takeCalls();
  takeLog();
}

DiscoveryTest::~DiscoveryTest() {
  fail("", 0);
  oviClose();
  OVI::platform::unload(library_);
}

std::string DiscoveryTest::file() const {
  // As the library names what it finds in a folder.
  return folder_ + OVI::platform::pathSeparator() + folder_.substr(folder_.find_last_of('/') + 1) + ".cti";
}

void DiscoveryTest::plantTree() {
  const std::lock_guard lock(script_->mutex);
  script_->interfaces.clear();
  script_->interfaces.resize(2);
  std::size_t number = 0;
  for (const std::size_t devices : {2, 1}) {
    tree::Interface& planted = script_->interfaces[2 - devices];
    planted.id = "if" + std::to_string(2 - devices);
    for (std::size_t i = 0; i < devices; ++i, ++number) {
      const std::string text = std::to_string(number);
      planted.devices.push_back({"cam" + text, tree::infosOf("Model" + text, "Kestrova"), 1, false});
    }
  }
}

oviErr DiscoveryTest::discover(oviDiscoveryCallback callback) {
  return oviDiscoverDevices(info_.get(), 1000, callback, folder_.c_str(), 1);
}

void DiscoveryTest::fail(std::string_view function, GC_ERROR code, int command) {
  const std::lock_guard lock(script_->mutex);
  if (code == GC_ERR_SUCCESS)
    script_->fault = nullptr;
  else
    script_->fault = [function = std::string(function), code, command](std::string_view called, int asked) {
      return called == function && (command < 0 || command == asked) ? code : GC_ERROR{GC_ERR_SUCCESS};
    };
}

std::vector<std::string> DiscoveryTest::takeCalls() {
  const std::lock_guard lock(script_->mutex);
  return std::exchange(script_->calls, {});
}

}  // namespace discovery_test
