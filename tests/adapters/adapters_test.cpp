// Chunks, events, selector sets and feature bags, each over a small description.
#include <GenICam.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "GenApi/ChunkAdapterGeneric.h"
#include "GenApi/EventAdapterGeneric.h"

namespace {

using namespace GenApi;
using testing::HasSubstr;
using testing::StartsWith;

struct Destroy {
  void operator()(INodeMap* map) const { dynamic_cast<IDestroy&>(*map).Destroy(); }
};
using NodeMap = std::unique_ptr<INodeMap, Destroy>;

NodeMap load(const std::string& nodes) {
  const std::string xml =
      "<RegisterDescription ModelName=\"M\" VendorName=\"V\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" "
      "SchemaMinorVersion=\"1\" "
      "SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" "
      "ProductGuid=\"11111111-2222-3333-4444-555555555555\" VersionGuid=\"11111111-2222-3333-4444-555555555555\" "
      "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">" +
      nodes + "</RegisterDescription>";
  return NodeMap(CNodeMapFactory(xml.c_str()).CreateNodeMap());
}

std::string byteRegister(const std::string& name, const std::string& port, const std::string& address = "0") {
  return "<IntReg Name=\"" + name + "\"><Address>" + address +
         "</Address><Length>1</Length><AccessMode>RO</AccessMode><pPort>" + port +
         "</pPort><Cachable>WriteThrough</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>";
}

int64_t valueOf(const NodeMap& map, const char* name) {
  return CIntegerPtr(map->GetNode(name))->GetValue();
}
bool isReadable(const NodeMap& map, const char* name) {
  return IsReadable(map->GetNode(name));
}

constexpr char kChunkPorts[] =
    "<Port Name=\"PortA\"><ChunkID>00a5</ChunkID></Port>"
    "<Port Name=\"PortB\"><ChunkID>B6</ChunkID><CacheChunkData>Yes</CacheChunkData></Port>";

TEST(ChunkAdapter, ShowsEachChunkThroughItsPort) {
  const NodeMap map = load(byteRegister("A", "PortA") + byteRegister("B", "PortB", "1") +
                           byteRegister("Last", "PortB", "-1") + kChunkPorts);
  CChunkAdapterGeneric adapter(map.get());
  EXPECT_FALSE(isReadable(map, "A"));
  const CRegisterPtr last(map->GetNode("Last"));
  EXPECT_EQ(last->GetAddress(), -1) << "where that is shows only in a chunk";

  uint8_t buffer[] = {0, 0, 11, 0, 21, 22, 23, 0};
  SingleChunkData_t chunks[] = {{0xA5, 2, 1}, {0xB6, 4, 3}, {0xC7, 0, 1}};
  AttachStatistics_t statistics{};
  adapter.AttachBuffer(buffer, chunks, 3, &statistics);
  EXPECT_EQ(statistics.NumChunkPorts, 2);
  EXPECT_EQ(statistics.NumChunks, 3);
  EXPECT_EQ(statistics.NumAttachedChunks, 2);
  EXPECT_EQ(valueOf(map, "A"), 11);
  EXPECT_EQ(valueOf(map, "B"), 22);
  EXPECT_EQ(valueOf(map, "Last"), 23);
  EXPECT_EQ(last->GetAddress(), 2);

  // The next buffer of the same layout is seen at once, in spite of the caches.
  uint8_t next[] = {0, 0, 31, 0, 41, 42, 43, 0};
  adapter.UpdateBuffer(next);
  EXPECT_EQ(valueOf(map, "A"), 31);
  EXPECT_EQ(valueOf(map, "Last"), 43);

  // After detaching only the port that may keep its data still has it, and not the buffer's.
  adapter.DetachBuffer();
  next[5] = 99;
  map->InvalidateNodes();
  EXPECT_FALSE(isReadable(map, "A"));
  EXPECT_EQ(valueOf(map, "B"), 42);
  adapter.ClearCaches();
  EXPECT_FALSE(isReadable(map, "B"));
}

TEST(ChunkAdapter, TakesIdsAsTextAndStaysInsideTheChunk) {
  const NodeMap map = load(byteRegister("A", "PortA") + byteRegister("Behind", "PortA", "1") + kChunkPorts);
  CChunkAdapterGeneric adapter(map.get());
  uint8_t buffer[] = {7, 8};
  SingleChunkDataStr_t chunks[] = {{"0xA5", 0, 1}};
  adapter.AttachBuffer(buffer, chunks, 1);
  EXPECT_EQ(valueOf(map, "A"), 7);
  EXPECT_THROW(valueOf(map, "Behind"), GenICam::GenericException);
  // A buffer without the chunk takes it away.
  adapter.AttachBuffer(buffer, chunks, 0);
  EXPECT_FALSE(isReadable(map, "A"));
  EXPECT_THROW(adapter.AttachBuffer(buffer, 2), GenICam::RuntimeException);
}

TEST(ChunkAdapter, AsksForIdsThatOtherNodesHold) {
  const NodeMap map =
      load(byteRegister("A", "PortA") +
           "<Port Name=\"PortA\"><pChunkID>Id</pChunkID></Port><Integer Name=\"Known\"><Value>0</Value>"
           "</Integer><String Name=\"Id\"><pIsAvailable>Known</pIsAvailable><Value>A5</Value></String>");
  CChunkAdapterGeneric adapter(map.get());
  uint8_t buffer[] = {7};
  SingleChunkData_t chunks[] = {{0xA5, 0, 1}};
  adapter.AttachBuffer(buffer, chunks, 1);
  EXPECT_FALSE(isReadable(map, "A"));
  CIntegerPtr(map->GetNode("Known"))->SetValue(1);
  adapter.AttachBuffer(buffer, chunks, 1);
  EXPECT_EQ(valueOf(map, "A"), 7);
}

TEST(EventAdapter, DeliversDataAndTellsTheNodes) {
  const NodeMap map =
      load(byteRegister("Data", "EventPort") + "<Integer Name=\"Feature\"><pValue>Data</pValue></Integer>" +
           "<Port Name=\"EventPort\"><EventID>09ab</EventID></Port>");
  CEventAdapterGeneric adapter(map.get());
  std::vector<int64_t> seen;
  const intptr_t handle = Register(
      map->GetNode("Feature"), [&](INode* node) { seen.push_back(CIntegerPtr(node)->GetValue()); }, cbPostOutsideLock);
  uint8_t message[] = {5};
  adapter.DeliverMessage(message, 1, 0x9AB);
  message[0] = 6;
  EXPECT_EQ(valueOf(map, "Data"), 5) << "the message is the caller's again after the call";
  adapter.DeliverMessage(message, 1, "9AB");
  adapter.DeliverMessage(message, 1, 0x9AC);
  EXPECT_THAT(seen, testing::ElementsAre(5, 6));
  EXPECT_THROW(adapter.DeliverMessage(message, 1), GenICam::RuntimeException);
  Deregister(handle);
}

TEST(EventAdapter, LetsGoOfAllPortsThoughACallbackThrows) {
  const NodeMap map =
      load(byteRegister("A", "PortA") + byteRegister("B", "PortB") +
           "<Port Name=\"PortA\"><EventID>1</EventID></Port><Port Name=\"PortB\"><EventID>2</EventID></Port>");
  {
    CEventAdapterGeneric adapter(map.get());
    Register(
        map->GetNode("PortA"), [](INode*) { throw RUNTIME_EXCEPTION("the callback fails"); }, cbPostOutsideLock);
    const uint8_t message[] = {5};
    adapter.DeliverMessage(message, 1, 2);
    EXPECT_EQ(valueOf(map, "B"), 5);
    EXPECT_THROW(adapter.DetachNodeMap(), GenICam::RuntimeException);
  }
  EXPECT_FALSE(isReadable(map, "B"));
  EXPECT_THROW(CEventAdapterGeneric{map.get()}, GenICam::RuntimeException);
  EXPECT_FALSE(isReadable(map, "A")) << "the ports of the adapter that was not made are gone";
}

constexpr char kSelected[] =
    "<Enumeration Name=\"Selector\"><EnumEntry Name=\"Red\"><Value>0</Value></EnumEntry><EnumEntry "
    "Name=\"Blue\"><Value>1</Value></EnumEntry>"
    "<Value>1</Value><pSelected>Gain</pSelected></Enumeration>"
    "<Integer Name=\"Bank\"><Value>2</Value><Min>0</Min><Max>2</Max><pSelected>Selector</pSelected></Integer>"
    "<Integer Name=\"Gain\"><Streamable>Yes</Streamable><pIndex>SelectorValue</pIndex><ValueIndexed "
    "Index=\"0\">10</ValueIndexed>"
    "<ValueDefault>20</ValueDefault></Integer>"
    "<IntSwissKnife Name=\"SelectorValue\"><pVariable "
    "Name=\"S\">Selector</pVariable><Formula>S</Formula></IntSwissKnife>"
    "<Float Name=\"Rate\"><Streamable>Yes</Streamable><Value>2.5</Value><Max>100</Max></Float>"
    "<String Name=\"Label\"><Streamable>Yes</Streamable><Value>a	b</Value></String>"
    "<Integer Name=\"Fixed\"><Value>3</Value></Integer>";

TEST(SelectorSet, RunsThroughAllCombinationsAndRestores) {
  const NodeMap map = load(kSelected);
  CSelectorSet set(map->GetNode("Gain"));
  std::vector<std::string> seen;
  for (bool more = set.SetFirst(); more; more = set.SetNext())
    seen.emplace_back(set.ToString().c_str());
  EXPECT_THAT(seen, testing::ElementsAre("Bank=0\tSelector=Red", "Bank=0\tSelector=Blue", "Bank=1\tSelector=Red",
                                         "Bank=1\tSelector=Blue", "Bank=2\tSelector=Red", "Bank=2\tSelector=Blue"));
  set.Restore();
  EXPECT_STREQ(set.ToString(), "Bank=2\tSelector=Blue");
  EXPECT_TRUE(CSelectorSet(map->GetNode("Fixed")).IsEmpty());
}

TEST(FeatureBag, BringsValuesBackThroughText) {
  const NodeMap map = load(kSelected);
  CFeatureBag bag;
  EXPECT_EQ(bag.StoreToBag(map.get()), 3);
  std::stringstream stream;
  stream << bag;
  EXPECT_THAT(stream.str(), StartsWith("# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n"));
  EXPECT_THAT(stream.str(), HasSubstr("Selector\tRed\nGain\t10\n"));
  EXPECT_THAT(stream.str(), HasSubstr("Label\ta\tb\n"));

  CIntegerPtr(map->GetNode("Gain"))->SetValue(77);
  CFloatPtr(map->GetNode("Rate"))->SetValue(9);
  CStringPtr(map->GetNode("Label"))->SetValue("other");
  CFeatureBag read;
  stream >> read;
  EXPECT_TRUE(read == bag);
  GenICam::gcstring_vector errors;
  EXPECT_TRUE(read.LoadFromBag(map.get(), true, &errors));
  EXPECT_TRUE(errors.empty());
  EXPECT_EQ(valueOf(map, "Gain"), 20);
  EXPECT_EQ(CFloatPtr(map->GetNode("Rate"))->GetValue(), 2.5);
  EXPECT_STREQ(CStringPtr(map->GetNode("Label"))->GetValue(), "a\tb");
  EXPECT_STREQ(CEnumerationPtr(map->GetNode("Selector"))->ToString(), "Blue");

  GenICam::gcstring_vector filter;
  filter.push_back("Rate");
  EXPECT_EQ(bag.StoreToBag(map.get(), -1, &filter), 1);
  EXPECT_EQ(bag.StoreToBag(map.get(), 2), 2);
}

TEST(FeatureBag, LeavesOutWhatASelectorWithoutAnEntrySelects) {
  const NodeMap map = load(kSelected);
  CEnumerationPtr(map->GetNode("Selector"))->SetIntValue(7, false);
  CFeatureBag bag;
  EXPECT_EQ(bag.StoreToBag(map.get()), 2);
  EXPECT_THAT(bag.ToString().c_str(), testing::AllOf(HasSubstr("Rate\t2.5\n"), testing::Not(HasSubstr("Gain"))));
}

TEST(FeatureBag, CollectsWhatCannotBeWritten) {
  const NodeMap map = load(kSelected);
  const std::string magic = "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\r\n";
  std::stringstream stream(magic + "# a comment\r\nMissing\t1\r\nRate\t500\r\n\r\nBank\t1\r\n");
  CFeatureBag bag;
  stream >> bag;
  GenICam::gcstring_vector errors;
  EXPECT_FALSE(bag.LoadFromBag(map.get(), true, &errors));
  ASSERT_EQ(errors.size(), 2U);
  EXPECT_THAT(errors[0].c_str(), HasSubstr("Missing"));
  EXPECT_THAT(errors[1].c_str(), StartsWith("Rate: "));
  EXPECT_EQ(valueOf(map, "Bank"), 1) << "what follows a failure is still written";
  EXPECT_THROW(bag.LoadFromBag(map.get()), GenICam::GenericException);

  std::stringstream foreign("no magic\nRate\t5\n");
  EXPECT_THROW(foreign >> bag, GenICam::RuntimeException);
  std::stringstream broken(magic + "no tab\n");
  EXPECT_THROW(broken >> bag, GenICam::RuntimeException);
}

TEST(FeatureBagger, KeepsBagsApartByName) {
  const NodeMap map = load(kSelected);
  CFeatureBagger bags;
  bags.Store(map.get(), "first");
  CFloatPtr(map->GetNode("Rate"))->SetValue(9);
  bags.Store(map.get(), "second");
  std::stringstream stream;
  stream << bags;
  CFeatureBagger read;
  stream >> read;
  GenICam::gcstring_vector names;
  read.GetBagNames(names);
  EXPECT_EQ(names.size(), 2U);
  read.Load(map.get(), "first");
  EXPECT_EQ(CFloatPtr(map->GetNode("Rate"))->GetValue(), 2.5);
  read.Load(map.get(), "second");
  EXPECT_EQ(CFloatPtr(map->GetNode("Rate"))->GetValue(), 9);
  EXPECT_THROW(read.Load(map.get(), "third"), GenICam::InvalidArgumentException);
}

TEST(Converter, WithoutAValueBehindItRefuses) {
  const NodeMap map = load(
      "<IntConverter "
      "Name=\"I\"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><Slope>Increasing</Slope></IntConverter>"
      "<Converter Name=\"F\"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom></Converter>");
  EXPECT_THROW(CIntegerPtr(map->GetNode("I"))->SetValue(1, false), GenICam::AccessException);
  EXPECT_THROW(CFloatPtr(map->GetNode("F"))->SetValue(1, false), GenICam::AccessException);
  EXPECT_THROW(CIntegerPtr(map->GetNode("I"))->GetMin(), GenICam::AccessException);
}

}  // namespace
