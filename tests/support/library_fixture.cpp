// The library with the scripted camera behind it, and its log.
#include "library_fixture.h"

#include <memory>
#include <mutex>

#include "platform/platform.h"

namespace scripted {
namespace {

struct Log {
  std::mutex mutex;
  std::vector<LogLine> lines;

  static Log& instance() {
    static Log log;
    return log;
  }
};

void keep(std::uint32_t level, const char* message, void* /*userData*/) {
  Log& log = Log::instance();
  const std::lock_guard lock(log.mutex);
  log.lines.emplace_back(level, message);
}

// A second oviInit with a callback would deliver every message twice.
void initialise() {
  static bool attached = false;
  ASSERT_EQ(oviInit(8, attached ? nullptr : keep, nullptr), OVI_SUCCESS);
  attached = true;
}

}  // namespace

std::vector<LogLine> takeLog(std::uint32_t level) {
  Log& log = Log::instance();
  const std::lock_guard lock(log.mutex);
  std::vector<LogLine> taken;
  for (LogLine& line : log.lines) {
    if (line.first <= level)
      taken.push_back(std::move(line));
  }
  log.lines.clear();
  return taken;
}

std::string findInLog(const std::vector<LogLine>& log, const std::string& part) {
  for (const auto& [level, text] : log) {
    if (text.find(part) != std::string::npos)
      return text;
  }
  return {};
}

std::string describe(const std::string& features, const std::string& nodes) {
  std::string list;
  for (std::size_t begin = 0; begin < features.size();) {
    const std::size_t end = std::min(features.find(' ', begin), features.size());
    list += "<pFeature>" + features.substr(begin, end - begin) + "</pFeature>";
    begin = end + 1;
  }
  return R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Scripted" VendorName="Kestrova" StandardNameSpace="None" SchemaMajorVersion="1"
 SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
 ProductGuid="1F3C7F9E-1111-4222-8333-444455556666" VersionGuid="1F3C7F9E-1111-4222-8333-444455556667"
 xmlns="http://www.genicam.org/GenApi/Version_1_1">
<Category Name="Root" NameSpace="Standard">)" +
         list + "</Category>\n" + nodes + R"(
<Integer Name="NotAvailable"><Value>0</Value></Integer>
<Port Name="Device" NameSpace="Standard"></Port>
</RegisterDescription>)";
}

void ScriptedCameraTest::SetUp() {
  const std::string directory = std::string(SCRIPTED_DIR) + "/" + producer_;
  library_ = OVI::platform::loadLibrary(directory + "/" + producer_ + ".cti");
  ASSERT_NE(library_, nullptr) << OVI::platform::lastErrorText();
  script_ = reinterpret_cast<GetScript>(OVI::platform::resolve(library_, "scriptedCamera"))();
  *script_ = {};
  const std::string plain = describe("Empty", R"(<Integer Name="Empty"><Value>0</Value></Integer>)");
  for (Space* const space : {&script_->camera, &script_->localDevice, &script_->interface, &script_->system})
    space->description = plain;
  initialise();
  const auto info = std::make_unique<oviDiscoveryInfo>();
  ASSERT_EQ(oviDiscoverDevices(info.get(), 1000, nullptr, directory.c_str(), 1), OVI_SUCCESS);
  ASSERT_EQ(info->deviceCount, 1U);
}

void ScriptedCameraTest::open() {
  if (device_ != 0)
    close();
  ASSERT_EQ(oviOpenDevice("ScriptedCamera", &device_, 1000, 3), OVI_SUCCESS);
  takeLog();
}

void ScriptedCameraTest::close() {
  EXPECT_EQ(oviCloseDevice(device_), OVI_SUCCESS);
  device_ = 0;
}

void ScriptedCameraTest::TearDown() {
  if (device_ != 0)
    close();
  oviClose();
  if (script_ != nullptr)
    *script_ = {};
  OVI::platform::unload(library_);
  takeLog();
}

}  // namespace scripted
