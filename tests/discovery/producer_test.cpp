// Which producers are found and loaded, and what they tell about themselves.
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "discovery_fixture.h"
#include "platform/platform.h"

namespace discovery_test {

namespace fs = std::filesystem;

class Producers : public DiscoveryTest {
 protected:
  static void touch(const fs::path& path) {
    fs::create_directories(path.parent_path());
    std::ofstream(path) << "no library";
  }
  std::uint32_t count(const std::string& searchPath) {
    oviDiscoveryInfo info;
    EXPECT_EQ(oviDiscoverDevices(&info, 10, nullptr, searchPath.c_str(), 1), OVI_SUCCESS);
    std::uint32_t files = 99;
    EXPECT_EQ(oviGetNumberOfTLProducers(&files), OVI_SUCCESS);
    return files;
  }
};

TEST_F(Producers, SearchPathIsSplitAndScanned) {
  fs::remove_all("paths");
  touch("paths/one/a.cti");
  touch("paths/one/upper.CTI");
  touch("paths/one/TLProxy.cti");
  touch("paths/one/TLSimu.cti");
  touch("paths/one/below/hidden.cti");
  touch("paths/one/cti");
  touch("paths/two/b.cti");
  fs::create_directories("paths/two/folder.cti");
  const struct {
    const char* searchPath;
    std::uint32_t files;
  } cases[] = {
      {"paths/one", 1},
      {"paths/one;paths/two", 2},
      {"paths/one;paths/two;paths/one", 2},
      {"paths/one/;paths/one", 1},
      {";;paths/two;", 1},
      {"paths/missing;paths/one/a.cti", 0},
      {"", 0},
      {"paths/one/below", 1},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.searchPath);
    EXPECT_EQ(count(test.searchPath), test.files);
  }

  // In the order of the search path, and as many as there are, loadable or not.
  EXPECT_EQ(count("paths/two;paths/one"), 2U);
  char path[64] = "unchanged";
  EXPECT_EQ(oviGetTLProducerPathByIndex(path, sizeof path, 0), OVI_SUCCESS);
  EXPECT_THAT(path, testing::HasSubstr("b.cti"));
  EXPECT_EQ(oviGetTLProducerPathByIndex(path, 6, 1), OVI_SUCCESS);
  EXPECT_STREQ(path, "paths");
  EXPECT_EQ(oviGetTLProducerPathByIndex(path, sizeof path, 2), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(oviGetTLProducerPathByIndex(nullptr, sizeof path, 0), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(oviGetNumberOfTLProducers(nullptr), OVI_ERR_INVALID_PARAMETER);
}

TEST_F(Producers, BadOnesAreLoggedAndPassedOver) {
  fs::remove_all("bad");
  touch("bad/broken.cti");
  auto info = std::make_unique<oviDiscoveryInfo>();
  const std::string both = "bad;" + folder();
  ASSERT_EQ(oviDiscoverDevices(info.get(), 100, nullptr, both.c_str(), 1), OVI_SUCCESS);
  EXPECT_EQ(info->deviceCount, 3U);
  std::vector<std::string> log = takeLog();
  EXPECT_TRUE(contains(log, "Loading TL from " + folder()));
  EXPECT_TRUE(contains(log, "Failed to load and initialize producer from "));
  EXPECT_TRUE(contains(log, "Failed to load CTI file; "));

  // What is loaded stays loaded; what failed is tried again.
  ASSERT_EQ(oviDiscoverDevices(info.get(), 100, nullptr, nullptr, 0), OVI_SUCCESS);
  log = takeLog();
  EXPECT_FALSE(contains(log, "Loading TL from " + folder()));
  EXPECT_TRUE(contains(log, "Loading TL from bad"));

  // One that does not open is closed again.
  oviClose();
  initialise();
  fail("TLOpen", GC_ERR_IO);
  takeCalls();
  ASSERT_EQ(discover(), OVI_SUCCESS);
  EXPECT_EQ(found(), 0U);
  EXPECT_TRUE(contains(takeLog(), "Error opening transport layer for producer from location" + file() + ". Error: "));
  EXPECT_THAT(takeCalls(), testing::ElementsAre("GCInitLib", "TLOpen", "GCCloseLib"));
  fail("", 0);
  ASSERT_EQ(discover(), OVI_SUCCESS);
  EXPECT_EQ(found(), 3U);

  // A folder given from the current one on.
  oviClose();
  initialise();
  ASSERT_EQ(oviDiscoverDevices(info.get(), 10, nullptr, fs::relative(folder()).string().c_str(), 1), OVI_SUCCESS);
  EXPECT_EQ(info->deviceCount, 3U);
}

TEST_F(Producers, InfoComesFromALoadedOneOrOneThatIsLoadedForIt) {
  oviTLProducerInfos info;
  const auto check = [&] {
    ASSERT_EQ(oviGetTLProducerInfobyFilePath(&info, file().c_str()), OVI_SUCCESS);
    EXPECT_STREQ(info.name, "TreeProducer.cti");
    EXPECT_STREQ(info.displayName, "tree info 7");
    EXPECT_STREQ(info.pathName, "/somewhere/TreeProducer.cti");
    EXPECT_EQ(info.filePath, file());
    EXPECT_EQ(info.reserved0[0], 0);
    EXPECT_EQ(info.reserved1, 0U);
  };
  check();
  EXPECT_THAT(takeCalls(), testing::ElementsAre("GCInitLib", "TLOpen", "TLClose", "GCCloseLib"));
  ASSERT_EQ(discover(), OVI_SUCCESS);
  takeCalls();
  check();
  EXPECT_EQ(oviGetTLProducerInfobyFilePath(&info, fs::relative(file()).string().c_str()), OVI_SUCCESS);
  EXPECT_STREQ(info.name, "TreeProducer.cti");
  EXPECT_THAT(takeCalls(), testing::IsEmpty()) << "the same file is not loaded and closed again";

  fail("GCGetInfo", GC_ERR_NOT_IMPLEMENTED, TL_INFO_DISPLAYNAME);
  takeLog();
  ASSERT_EQ(oviGetTLProducerInfobyFilePath(&info, file().c_str()), OVI_SUCCESS);
  EXPECT_STREQ(info.displayName, "");
  EXPECT_STREQ(info.pathName, "/somewhere/TreeProducer.cti");
  EXPECT_TRUE(
      contains(takeLog(), "Failed to get Transport layer info for  " + file() + "to display the producer info."));

  EXPECT_EQ(oviGetTLProducerInfobyFilePath(&info, "missing.cti"), -10001);
  EXPECT_STREQ(info.filePath, "missing.cti");
  EXPECT_TRUE(contains(takeLog(), "Failed to load transport layer TL [missing.cti]. Error: "));
  EXPECT_EQ(oviGetTLProducerInfobyFilePath(&info, nullptr), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(oviGetTLProducerInfobyFilePath(nullptr, file().c_str()), OVI_ERR_INVALID_PARAMETER);
}

class RealTimeProducer : public DiscoveryTest {
 protected:
  RealTimeProducer() : DiscoveryTest("my_lsgentlgevkithara_1"), settings_(*OVI::platform::publicDocuments()) {
    settings_ /= "Kestrova/Pelt/Hux.ini";
    fs::create_directories(settings_.parent_path());
    fs::remove(settings_);
  }
  ~RealTimeProducer() override { fs::remove(settings_); }

  void write(const std::string& text) { std::ofstream(settings_, std::ios::binary) << text; }
  std::string read() {
    std::ifstream file(settings_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  fs::path settings_;
};

TEST_F(RealTimeProducer, LoadsWhereTheMachineIsPreparedForIt) {
  const struct {
    const char* settings;
    oviErr result;
    const char* reason;
  } cases[] = {
      {"KitharaEnvironment = Success\nEnvironmentSet = 1\n", OVI_SUCCESS, ""},
      {"  kitharaENVIRONMENT\t=Success \r\nother=1\r\nenvironmentset=1", OVI_SUCCESS, ""},
      {"KitharaEnvironment=oviNoKitharaProcessorsErr\nEnvironmentSet=1", OVI_ERR_NO_KITHARA_PROCESSORS,
       "as Dedicated Kithara Producers are not allocated.,Error Code: -251659241"},
      {"EnvironmentSet=1\nKitharaEnvironment=oviHypervisorNotDisabledErr\n", OVI_ERR_HYPERVISOR_NOT_DISABLED,
       "as Hyper-V is not disabled.,Error Code: -251659240"},
      // Without leave to skip them the checks run; no query can be answered with "False" here.
      {"KitharaEnvironment=Success\nEnvironmentSet=0\nKeep = me\n", OVI_ERR_HYPERVISOR_NOT_DISABLED, ""},
      {"EnvironmentSet=1\nKitharaEnvironment=nonsense\nKeep = me", OVI_ERR_HYPERVISOR_NOT_DISABLED, ""},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.settings);
    write(test.settings);
    takeLog();
    oviTLProducerInfos info;
    EXPECT_EQ(oviGetTLProducerInfobyFilePath(&info, file().c_str()), test.result);
    const std::vector<std::string> log = takeLog();
    EXPECT_EQ(contains(log, "Cannot load and initialize kithara producer - "), test.result != OVI_SUCCESS);
    EXPECT_TRUE(contains(log, test.reason));
    takeCalls();
    ASSERT_EQ(discover(), OVI_SUCCESS);
    EXPECT_EQ(found(), test.result == OVI_SUCCESS ? 3U : 0U);
    EXPECT_EQ(takeCalls().empty(), test.result != OVI_SUCCESS);
    oviClose();
    initialise();
  }
  const std::string kept = read();
  EXPECT_THAT(kept, testing::HasSubstr("Keep = me"));
  EXPECT_THAT(kept, testing::HasSubstr("KitharaEnvironment = oviHypervisorNotDisabledErr"));
  EXPECT_THAT(kept, testing::HasSubstr("EnvironmentSet=1"));
}

TEST_F(RealTimeProducer, NeedsProcessorsOfItsOwnWhereNoHypervisorIs) {
  const fs::path folder = fs::absolute("shell");
  fs::create_directories(folder);
  std::ofstream(folder / "powershell")
      << "#!/bin/sh\n"
         "[ \"$*\" = '(gcim Win32_ComputerSystem).HypervisorPresent' ] && echo False\n";
  fs::permissions(folder / "powershell", fs::perms::owner_all);
  std::ofstream(folder / "powershell.bat") << "@echo False\n";
  const std::string before = std::getenv("PATH");
#ifdef _WIN32
  const auto setPath = [](const std::string& path) { _putenv_s("PATH", path.c_str()); };
  setPath(folder.string() + ";" + before);
#else
  const auto setPath = [](const std::string& path) { setenv("PATH", path.c_str(), 1); };
  setPath(folder.string() + ":" + before);
#endif
  oviTLProducerInfos info;
  EXPECT_EQ(oviGetTLProducerInfobyFilePath(&info, file().c_str()), OVI_ERR_NO_KITHARA_PROCESSORS);
  EXPECT_TRUE(contains(takeLog(), "SystemInfo.dll cannot be loaded to get PC's number of processors and cores "));
  EXPECT_EQ(read(), "KitharaEnvironment = oviNoKitharaProcessorsErr\n");
  setPath(before);
}

}  // namespace discovery_test
