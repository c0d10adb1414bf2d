// The library with tree producers behind it, and its log.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "ovi/ovi.h"
#include "tree_script.h"

namespace discovery_test {

/** What was logged since the last call, without levels. */
std::vector<std::string> takeLog();
bool contains(const std::vector<std::string>& log, std::string_view part);

/** Initialises the library with the log at debug level, once per oviClose. */
void initialise();

/** The folder of a tree producer: "TreeProducer", or one that the library treats specially. */
std::string treeFolder(const std::string& producer);

class DiscoveryTest : public testing::Test {
 protected:
  explicit DiscoveryTest(const std::string& producer = "TreeProducer");
  ~DiscoveryTest() override;

  tree::Script& script() { return *script_; }
  const std::string& folder() const { return folder_; }
  std::string file() const;

  /** Two interfaces: "if0" with "cam0" and "cam1", "if1" with "cam2". */
  void plantTree();
  oviErr discover(oviDiscoveryCallback callback = nullptr);
  std::uint32_t found() const { return info_->deviceCount; }
  const oviDeviceInfo& device(std::size_t index) const { return info_->devices[index]; }
  oviErr open(const char* id, std::uint64_t& handle) { return oviOpenDevice(id, &handle, 1000, 3); }
  /** Every call of the function fails so; none does with 0. */
  void fail(std::string_view function, GC_ERROR code, int command = -1);
  /** The opening, updating and closing calls since the last call of this. */
  std::vector<std::string> takeCalls();

 private:
  std::string folder_;
  void* library_;
  tree::Script* script_;
  std::unique_ptr<oviDiscoveryInfo> info_ = std::make_unique<oviDiscoveryInfo>();
};

}  // namespace discovery_test
