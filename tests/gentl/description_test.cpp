// Descriptions through URLs of every form, and what broken ones lead to.
#include "gentl/description.h"

#include <miniz.h>

#include <filesystem>
#include <fstream>
#include <vector>

#include "binding_fixture.h"

namespace binding {
namespace {

using namespace GenTLCpp;

std::string zipped(const std::vector<std::pair<std::string, std::string>>& files) {
  mz_zip_archive archive{};
  mz_zip_writer_init_heap(&archive, 0, 0);
  for (const auto& [name, content] : files) {
    mz_zip_writer_add_mem(&archive, name.c_str(), content.data(), content.size(), MZ_BEST_COMPRESSION);
  }
  void* bytes = nullptr;
  std::size_t size = 0;
  mz_zip_writer_finalize_heap_archive(&archive, &bytes, &size);
  std::string result(static_cast<const char*>(bytes), size);
  mz_free(bytes);
  mz_zip_writer_end(&archive);
  return result;
}

class DescriptionTest : public BindingTest {
 protected:
  void SetUp() override {
    BindingTest::SetUp();
    openDevice();
  }
  void TearDown() override {
    script_->answers.clear();
    BindingTest::TearDown();
  }

  /** The description that the URLs lead to, or "! " and what was thrown. */
  std::string retrieve(const std::vector<std::string>& urls) {
    script_->urls = urls;
    try {
      const GenICam::gcstring xml = retrieveXML(*device_->getRemotePort(false));
      return {xml.c_str(), xml.size()};
    } catch (const std::exception& error) {
      return std::string("! ") + error.what();
    }
  }
};

TEST_F(DescriptionTest, FormsOfLocalUrls) {
  const std::string zip = zipped({{"a.xml", "<zipped/>"}, {"b.xml", "<second/>"}});
  script_->memory = std::string(0x10, ' ') + "<plain/>" + std::string(0x18, '\0') + zip + std::string(16, '\0');
  char zipUrl[64];
  std::snprintf(zipUrl, sizeof(zipUrl), "LOCAL:Camera.ZIP;30;%zx", zip.size());
  const std::string lengthOnly = zipUrl + std::string("?SchemaVersion=1.1.0");

  EXPECT_EQ(retrieve({"Local:x.xml;10;8"}), "<plain/>");
  EXPECT_EQ(retrieve({"Local:///x.xml;0x10;0X8"}), "<plain/>");
  EXPECT_EQ(retrieve({"local:a.b.zip.xml; 10; 8"}), "<plain/>");
  EXPECT_EQ(retrieve({"local:x.xml;10;20"}), "<plain/>") << "padding of zeros is no text";
  EXPECT_EQ(retrieve({"local:x.xml;10;FFFF"}), "<plain/>") << "a short read leaves zeros";
  EXPECT_EQ(retrieve({"local:x;10;8?SchemaVersion=1.1.0"}), "<plain/>");
  EXPECT_EQ(retrieve({zipUrl}), "<zipped/>");
  EXPECT_EQ(retrieve({lengthOnly}), "<zipped/>");
  EXPECT_EQ(retrieve({"http://host/x.xml", "", "local:x.xml;10;8"}), "<plain/>");
}

TEST_F(DescriptionTest, BrokenUrlsAndArchives) {
  script_->memory = std::string(64, '\0');
  const std::string unable = "! Unable to retrieve XML.";
  const std::string unzip = "! Unable to retrieve XML. Error during unzip operation!";
  EXPECT_EQ(retrieve({}), unable);
  for (const char* url : {"local:x.xml;10;8", "local:x.xml", "local:x.xml;10", "local:x.xml;;", "local:x.xml;zz;8",
                          "local:x.xml;0;FFFFFFFFFFFFFFFF", "local:x.xml;1FFFFFFFFFFFFFFFF;8", "ftp:x", "l", ""}) {
    EXPECT_EQ(retrieve({url}), unable) << url;
  }
  EXPECT_EQ(retrieve({"local:x.zip;0;20"}), unzip);
  script_->memory = zipped({});
  EXPECT_EQ(retrieve({"local:x.zip;0;" + std::string("16")}), unzip);
  std::string damaged = zipped({{"a.xml", std::string(1000, 'a')}});
  damaged[40] = static_cast<char>(~damaged[40]);
  script_->memory = damaged;
  char url[64];
  std::snprintf(url, sizeof(url), "local:x.zip;0;%zx", damaged.size());
  EXPECT_EQ(retrieve({url}), unzip);

  // One that cannot be read does not spoil the next; when none is left, the reason of the last one counts.
  script_->memory = "<plain/>";
  EXPECT_EQ(retrieve({"local:x.xml;99999;8", "local:x.xml;0;8"}), "<plain/>");
  EXPECT_EQ(retrieve({"local:x.xml;99999;8", "http://x"}).find("! Address is out of range or invalid. (Message"), 0U);
  script_->moreUrls = UINT32_MAX - 1;  // Nobody waits for all of them.
  EXPECT_EQ(retrieve({"http://x"}).find("! Provided index is out of range. (Message"), 0U);
  script_->moreUrls = 0;
  script_->answers["GCGetPortURLInfo"] = GC_ERR_NOT_IMPLEMENTED;
  EXPECT_EQ(retrieve({"local:x.xml;0;8"}).find("! Requested operation not implemented."), 0U);
}

TEST_F(DescriptionTest, TextOfTwoByteCharactersIsTakenByItsLength) {
  const std::string wide("\xFF\xFE<\0a\0/\0>\0", 10);
  script_->memory = wide;
  EXPECT_EQ(retrieve({"local:x.xml;0;a"}), wide);
}

TEST_F(DescriptionTest, FilesByUrlAndByPath) {
  std::ofstream("with blank.xml") << "<file/>";
  std::ofstream("packed.zip", std::ios::binary) << zipped({{"a.xml", "<packed/>"}});
  EXPECT_EQ(readDescriptionFile("with blank.xml"), GenICam::gcstring("<file/>"));
  EXPECT_EQ(readDescriptionFile("packed.zip"), GenICam::gcstring("<packed/>"));
  EXPECT_TRUE(readDescriptionFile("missing.xml").empty());
  const std::string here = std::filesystem::current_path().generic_string();
  const std::string folder = (here.starts_with('/') ? "file://" : "file:///") + here;
  EXPECT_EQ(retrieve({folder + "/with%20blank.xml"}), "<file/>");
  EXPECT_EQ(retrieve({"file:///missing/x.xml"}), "! Unable to retrieve XML.");
  std::remove("with blank.xml");
  std::remove("packed.zip");
}

TEST_F(DescriptionTest, ABadDescriptionIsTriedAgainAndCanBeReplaced) {
  describeModules("this is no XML");
  EXPECT_THROW(device_->getRemoteFeatureList(), GenICam::GenericException);
  describeModules(describe("", ""));
  script_->answers["GCGetPortURLInfo"] = GC_ERR_IO;
  EXPECT_THROW(device_->getRemoteFeatureList(), IoException);
  script_->answers.clear();
  const auto first = device_->getRemoteFeatureList();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(device_->getRemoteFeatureList(), first);

  std::ofstream("other.xml") << describe("<pFeature>Other</pFeature>",
                                         "<Integer Name=\"Other\"><Value>5</Value></Integer>");
  device_->setRemoteDeviceXMLFile("other.xml");
  EXPECT_NE(device_->getRemoteFeatureList()->getFeature("Other"), nullptr);
  EXPECT_EQ(first->getNode("Other"), nullptr) << "whoever holds the old list goes on with it";
  EXPECT_NE(first->getNode("Root"), nullptr);
  EXPECT_THROW(device_->setRemoteDeviceXMLFile("missing.xml"), GenICam::GenericException);
  std::ofstream("other.xml") << "<RegisterDescription><Category Name=\"Root\"/></RegisterDescription>";
  EXPECT_THROW(device_->setRemoteDeviceXMLFile("other.xml"), ErrorException) << "nothing to connect to";
  EXPECT_NE(device_->getRemoteFeatureList()->getFeature("Other"), nullptr);
  std::remove("other.xml");
}

}  // namespace
}  // namespace binding
