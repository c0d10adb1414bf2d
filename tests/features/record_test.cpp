// The feature record byte by byte, enumerations and the feature tree.
#include "feature_camera.h"
#include "gmock/gmock.h"

namespace scripted {
namespace {

using Record = FeatureTest;

oviFeatureParameter named(const char* name, std::uint32_t type, std::uint32_t access, std::uint32_t visibility = 1) {
  oviFeatureParameter record;
  std::memset(&record, 0, sizeof record);
  record.featureType = type;
  record.accessMode = access;
  record.visibility = visibility;
  std::snprintf(record.name, sizeof record.name, "%s", name);
  std::snprintf(record.displayName, sizeof record.displayName, "%s", name);
  record.isFeature = true;
  record.littleEndian = true;
  return record;
}

void expectEqual(const oviFeatureParameter& have, const oviFeatureParameter& want) {
  const auto* const left = reinterpret_cast<const unsigned char*>(&have);
  const auto* const right = reinterpret_cast<const unsigned char*>(&want);
  for (std::size_t i = 0; i < sizeof have; ++i)
    ASSERT_EQ(left[i], right[i]) << want.name << " differs at offset " << i;
}

TEST_F(Record, IsFilledToTheByte) {
  oviFeatureParameter integer = named("Int", 2, 3, 3);
  std::strcpy(integer.displayName, "Whole number");
  std::strcpy(integer.toolTip, "A number.");
  std::strcpy(integer.unit, "px");
  integer.representation = 1;
  integer.intValue = 40;
  integer.intInc = 5;
  integer.intMax = 100;

  oviFeatureParameter writeOnly = named("WriteOnly", 2, 4);
  oviFeatureParameter unavailable = named("Unavailable", 2, 1);
  oviFeatureParameter notAFeature = named("NotAFeature", 2, 3);
  notAFeature.isFeature = false;
  oviFeatureParameter hidden = named("Hidden", 2, 3, 5);
  hidden.intValue = 7;
  hidden.intInc = 1;
  hidden.intMin = INT64_MIN;
  hidden.intMax = INT64_MAX;

  oviFeatureParameter number = named("Float", 3, 3);
  number.floatValue = 1.5;
  number.floatMin = 0.5;
  number.floatMax = 10;
  number.displayNotation = 1;
  number.displayPrecision = 3;
  std::strcpy(number.unit, kMicroseconds);

  oviFeatureParameter flag = named("Bool", 1, 3);
  flag.intValue = 1;
  store(0x118, 1);

  oviFeatureParameter mode = named("Mode", 5, 3);
  mode.intValue = 1;
  mode.enumEntryCount = 3;
  std::strcpy(mode.stringValue, "B");
  store(0x11C, 1);

  // Its number is not read, but its source still knows the entry.
  oviFeatureParameter blindMode = named("BlindMode", 5, 4);
  blindMode.enumEntryCount = 2;
  std::strcpy(blindMode.stringValue, "B");

  oviFeatureParameter command = named("Go", 8, 3);
  oviFeatureParameter raw = named("Raw", 9, 3);
  raw.registerAddress = 0x400;
  raw.registerLength = 16;
  oviFeatureParameter category = named("Again", 7, 2);

  oviFeatureParameter text = named("Text", 4, 3);
  std::memset(text.stringValue, 't', 511);
  text.maxStringLength = kLongText;
  std::memset(script().camera.memory.data() + 0x1000, 't', 600);

  for (const oviFeatureParameter& want : {integer, writeOnly, unavailable, notAFeature, hidden, number, flag, mode,
                                          blindMode, command, raw, category, text}) {
    oviFeatureParameter have;
    std::memset(&have, 0x5A, sizeof have);
    EXPECT_EQ(oviGetFeatureParameter(device(), want.name, &have, kCamera), OVI_SUCCESS) << want.name;
    expectEqual(have, want);
  }
  oviFeatureParameter wide;
  EXPECT_EQ(oviGetFeatureParameter(device(), "WideFloat", &wide, kCamera), OVI_SUCCESS);
  EXPECT_EQ(wide.displayPrecision, 300 % 256);
  EXPECT_EQ(wide.displayNotation, 2U);
  EXPECT_EQ(oviGetFeatureParameter(device(), std::string(10000, 'n').c_str(), &wide, kCamera), OVI_SUCCESS);
  EXPECT_EQ(std::string(wide.name), std::string(511, 'n'));
}

TEST_F(Record, TellsWhatCannotBeFilled) {
  oviFeatureParameter record;
  store(0x11C, 9);
  EXPECT_EQ(oviGetFeatureParameter(device(), "Mode", &record, kCamera), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(record.intValue, 9);
  EXPECT_EQ(record.enumEntryCount, 3U);
  EXPECT_EQ(takeLog(),
            (std::vector<LogLine>{{1,
                                   "Could not get current enum entry for enumeration! Possibly an error in the XML "
                                   "feature node."}}));
  EXPECT_EQ(oviGetFeatureParameter(device(), "WriteOnlyMode", &record, kCamera), OVI_ERR_UNKNOWN);
  EXPECT_EQ(record.accessMode, 4U);
  EXPECT_EQ(record.intValue, 0);
  EXPECT_EQ(record.enumEntryCount, 2U);
  takeLog();

  std::uint32_t access = 77;
  EXPECT_EQ(oviGetFeatureParameter(device(), "Nope", &record, kCamera), OVI_ERR_NOT_FOUND);
  EXPECT_EQ(record.name[0], '\0');
  takeLog();
  EXPECT_EQ(oviGetFeatureAccessMode(device(), "Nope", &access, kCamera), OVI_ERR_UNKNOWN);
  EXPECT_EQ(takeLog(),
            (std::vector<LogLine>{{2, "Node for parameter was not found! Parameter: Nope"},
                                  {1,
                                   "Caught GeniCam exception. Failed to get feature parameter! Error: NULL pointer "
                                   "dereferenced"}}));
  for (const auto& [name, mode] : {std::pair{"Int", 3U}, {"WriteOnly", 4U}, {"Unavailable", 1U}, {"Again", 2U}}) {
    EXPECT_EQ(oviGetFeatureAccessMode(device(), name, &access, kCamera), OVI_SUCCESS);
    EXPECT_EQ(access, mode) << name;
  }
  script().camera.onRead = [](std::uint64_t, std::size_t) { return GC_ERR_IO; };
  EXPECT_EQ(oviGetFeatureParameter(device(), "Int", &record, kCamera), OVI_ERR_IO);
  EXPECT_NE(findInLog(takeLog(), "Caught GenTL exception. Failed to get feature parameter! Error: "), "");
}

TEST_F(Record, DescribesEnumEntries) {
  oviFeatureParameter entry;
  std::uint32_t count = 0;
  EXPECT_EQ(oviGetFeatureEnumEntryCount(device(), "Mode", &count, kCamera), OVI_SUCCESS);
  EXPECT_EQ(count, 3U);
  EXPECT_EQ(oviGetFeatureEnumEntryByIndex(device(), "Mode", 2, &entry, kCamera), OVI_SUCCESS);
  EXPECT_STREQ(entry.stringValue, "D");
  EXPECT_STREQ(entry.displayName, "Fourth");
  EXPECT_EQ(entry.intValue, 3);
  EXPECT_EQ(entry.enumEntryIndex, 2);
  EXPECT_EQ(entry.featureType, 6U);
  takeLog();
  for (const std::int32_t index : {3, 99, -1}) {
    EXPECT_EQ(oviGetFeatureEnumEntryByIndex(device(), "Mode", index, &entry, kCamera), OVI_ERR_INVALID_PARAMETER);
    EXPECT_EQ(takeLog(),
              (std::vector<LogLine>{
                  {1, "Enum entry not found for provided index! Feature: Mode Enum index: " + std::to_string(index)}}));
  }
  EXPECT_EQ(oviGetFeatureEnumEntryByName(device(), "Mode", "B", &entry, kCamera), OVI_SUCCESS);
  EXPECT_EQ(entry.enumEntryIndex, 1);
  for (const char* const name : {"Gone", "b", "Second"}) {
    EXPECT_EQ(oviGetFeatureEnumEntryByName(device(), "Mode", name, &entry, kCamera), OVI_ERR_NOT_FOUND);
    EXPECT_EQ(takeLog(),
              (std::vector<LogLine>{
                  {1, std::string("Enum entry not found for provided name! Feature: Mode Enum name: ") + name}}));
  }
  // The current entry counts among all entries.
  store(0x11C, 3);
  EXPECT_EQ(oviGetFeatureEnum(device(), "Mode", &entry, kCamera), OVI_SUCCESS);
  EXPECT_EQ(entry.enumEntryIndex, 3);
  store(0x11C, 2);
  EXPECT_EQ(oviGetFeatureEnum(device(), "Mode", &entry, kCamera), OVI_ERR_NOT_FOUND);
  EXPECT_EQ(oviGetFeatureEnum(device(), "Many", &entry, kCamera), OVI_SUCCESS);
  EXPECT_EQ(entry.enumEntryIndex, 299 % 256);
  EXPECT_STREQ(entry.stringValue, "E299");

  char text[8192];
  EXPECT_EQ(oviGetFeatureAllEnums(device(), "Many", text, 0), OVI_SUCCESS);
  EXPECT_EQ(std::count(text, text + std::strlen(text), ' '), 299);
  store(0x11C, 0);
  EXPECT_EQ(oviGetFeatureAllEnums(device(), "Mode", text, 1), OVI_SUCCESS);
  EXPECT_STREQ(text, "<First> <Second> <Fourth>");
  EXPECT_EQ(oviGetFeatureAllEnums(device(), "Mode", text, 0), OVI_SUCCESS);
  EXPECT_STREQ(text, "A B D");
  EXPECT_EQ(oviGetFeatureAllEnums(device(), "Int", text, 0), OVI_SUCCESS);
  EXPECT_STREQ(text, "");
}

TEST_F(Record, WalksTheTree) {
  const auto child = [this](const char* parent, std::uint32_t index) {
    char name[16] = "";
    std::uint32_t type = 0;
    const oviErr code = oviIterateFeatureTree(device(), parent, index, name, sizeof name, &type, kCamera);
    return code == OVI_SUCCESS ? std::string(name) + ":" + std::to_string(type) : std::to_string(code);
  };
  EXPECT_EQ(child("Root", 0), "Int:2");
  EXPECT_EQ(child("Root", 18), std::string(15, 'n') + ":2");
  EXPECT_EQ(child("Root", 19), "-104");
  EXPECT_EQ(child("Again", 1), "Deep0:7");
  EXPECT_EQ(child("Selector", 2), "Int:2");
  EXPECT_EQ(child("Selector", 4), "Bool:1");
  EXPECT_EQ(child("Selector", 5), "-104");
  EXPECT_EQ(child("Nope", 0), "-104");

  std::vector<oviFeatureParameter> records(1000);
  const auto walk = [&](int includeInvisible) {
    FEATURE_PARAM_LIST_STRUCT list{99, 99, records.data()};
    // The last of all features bears a name that is longer than the walk can ask for.
    EXPECT_EQ(oviGetFeatureList(device(), &list, includeInvisible), OVI_ERR_NOT_FOUND);
    std::vector<std::pair<std::string, std::int64_t>> found;
    for (std::uint32_t i = 0; i < list.count; ++i)
      found.emplace_back(records[i].name, records[i].treeDepth);
    EXPECT_EQ(list.maxDepth, 51U);
    return found;
  };
  const auto visible = walk(0);
  EXPECT_EQ(visible.front(), std::pair(std::string("Int"), std::int64_t{0}));
  EXPECT_THAT(visible, testing::Contains(std::pair(std::string("Int"), std::int64_t{1})));
  EXPECT_THAT(visible, testing::Contains(std::pair(std::string("Deep49"), std::int64_t{50})));
  EXPECT_THAT(visible, testing::Contains(std::pair(std::string("Bottom"), std::int64_t{51})));
  EXPECT_THAT(visible, testing::Not(testing::Contains(testing::Key("Hidden"))));
  EXPECT_THAT(walk(1), testing::Contains(std::pair(std::string("Hidden"), std::int64_t{51})));
}

}  // namespace
}  // namespace scripted
