// Descriptions tried without a camera.
#include <gmock/gmock.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tool_run.h"

namespace tool_test {
namespace {

using testing::HasSubstr;

constexpr const char* kDescription = R"(<RegisterDescription ModelName="Box" VendorName="Maker" SchemaMajorVersion="1">
<Category Name="Root"><pFeature>Level</pFeature><pFeature>Nowhere</pFeature></Category>
<Integer Name="Level"><DisplayName>The level</DisplayName><pValue>LevelReg</pValue><Min>-2</Min><Max>9223372036854775807</Max></Integer>
<IntReg Name="LevelReg"><Address>0x10</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Signed</Sign></IntReg>
<SwissKnife Name="Broken"><Formula>1/0</Formula></SwissKnife>
<Enumeration Name="Mode"><EnumEntry Name="On"><Value>7</Value></EnumEntry><Value>7</Value></Enumeration>
<Port Name="Device"/>
</RegisterDescription>
)";

const nlohmann::json& nodeOf(const nlohmann::json& json, const char* name) {
  const auto& nodes = json["nodes"];
  return *std::find_if(nodes.begin(), nodes.end(), [&](const auto& node) { return node["name"] == name; });
}

TEST(Xml, TellsEveryAnswerOfEveryNode) {
  writeText("box.xml", kDescription);
  const Outcome run = ovi({"xml", "box.xml", "--json"});
  ASSERT_EQ(run.code, 0) << run.err;
  const nlohmann::json json = nlohmann::json::parse(run.out);
  const nlohmann::json& level = nodeOf(json, "Level");
  EXPECT_EQ(level["value"], 0);
  EXPECT_EQ(level["min"], -2);
  EXPECT_EQ(level["max"], INT64_MAX);
  EXPECT_EQ(level["access"], "RW");
  EXPECT_EQ(level["displayName"], "The level");
  EXPECT_EQ(nodeOf(json, "Mode")["value"], "On");
  EXPECT_EQ(nodeOf(json, "Mode")["entries"][0]["value"], 7);
  EXPECT_EQ(nodeOf(json, "Broken")["kind"], "SwissKnife");

  // The same seed, the same registers; none at all when every access fails.
  const std::string random = ovi({"xml", "box.xml", "--json", "--random", "5"}).out;
  EXPECT_EQ(random, ovi({"xml", "box.xml", "--json", "--random", "5"}).out);
  EXPECT_NE(nodeOf(nlohmann::json::parse(random), "LevelReg")["value"], 0);
  const nlohmann::json failing = nlohmann::json::parse(ovi({"xml", "box.xml", "--json", "--fail"}).out);
  EXPECT_THAT(nodeOf(failing, "LevelReg")["errors"]["value"].get<std::string>(), HasSubstr("fails on request"));
}

TEST(Xml, TellsFaultsWithTheirLines) {
  writeText("box.xml", kDescription);
  const Outcome run = ovi({"xml", "box.xml", "--check"});
  EXPECT_EQ(run.code, 1);
  EXPECT_THAT(run.out,
              HasSubstr("box.xml:2: warning: pFeature of 'Root' means 'Nowhere', which is not there\n    the "));
  writeText("text.xml", "This is no description.\n");
  const Outcome broken = ovi({"xml", "text.xml"});
  EXPECT_EQ(broken.code, 1);
  EXPECT_THAT(broken.err, HasSubstr("text.xml: no usable description: "));
}

}  // namespace
}  // namespace tool_test
