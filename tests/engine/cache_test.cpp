// What is read again and what is not: value caches, raw bytes, invalidation along dependencies.
#include "test_map.h"

using namespace GenApi;

namespace {

std::string cachable(const char* mode) {
  return std::string("<Cachable>") + mode + "</Cachable>";
}

}  // namespace

TEST(Cache, ModesOfOneRegister) {
  struct Case {
    const char* mode;
    int secondRead, readAfterWrite;  // reads that reach the port
  };
  const std::vector<Case> cases{
      {"WriteThrough", 0, 0}, {"WriteAround", 0, 1}, {"NoCache", 1, 1}, {"No", 1, 1}, {"Yes", 0, 0}};
  for (const auto& [mode, secondRead, readAfterWrite] : cases) {
    SCOPED_TRACE(mode);
    TestMap map(reg("IntReg", "R", at(0), cachable(mode)) + "<Integer Name=\"X\"><pValue>R</pValue></Integer>");
    const auto readsOf = [&](auto&& work) {
      const int before = map.port.reads;
      work();
      return map.port.reads - before;
    };
    auto& node = map.integer("X");
    EXPECT_EQ(readsOf([&] { node.GetValue(); }), 1);
    EXPECT_EQ(readsOf([&] { node.GetValue(); }), secondRead);
    EXPECT_EQ(readsOf([&] { node.SetValue(5); }), 0) << "writing reads nothing";
    EXPECT_EQ(readsOf([&] { EXPECT_EQ(node.GetValue(), 5); }), readAfterWrite);
    EXPECT_EQ(readsOf([&] { node.GetValue(false, true); }), 1);
    EXPECT_EQ(map.node("X").GetCachingMode(), map.node("R").GetCachingMode());
    EXPECT_EQ(map.node("X").IsCachable(), std::string(mode).find("No") == std::string::npos);
  }
}

TEST(Cache, RawBytesAreSharedByPlaceAndLength) {
  TestMap map(reg("IntReg", "A", at(0)) + reg("IntReg", "B", at(0), "<Sign>Signed</Sign>") +
              reg("IntReg", "Wide", at(0), {}, "8") + reg("MaskedIntReg", "M", at(0), "<Bit>0</Bit>"));
  map.integer("A").GetValue();
  EXPECT_EQ(map.port.reads, 1);
  map.integer("B").GetValue();
  map.integer("M").GetValue();
  EXPECT_EQ(map.port.reads, 1) << "the bytes are known";
  map.integer("Wide").GetValue();
  EXPECT_EQ(map.port.reads, 2) << "another length is another place";
  map.integer("A").SetValue(3);
  EXPECT_EQ(map.integer("B").GetValue(), 0) << "a sibling that holds a value keeps it";
  map.node("B").InvalidateNode();
  EXPECT_EQ(map.integer("B").GetValue(), 3);
  EXPECT_EQ(map.port.reads, 3);
  map.integer("M").SetValue(0);
  EXPECT_EQ(map.port.reads, 3) << "merged with the known bytes";
  EXPECT_EQ(map.port.bytes[0], 2);
}

TEST(Cache, AnUncachedRegisterTakesTheSharedBytesAlong) {
  TestMap map(reg("IntReg", "A", at(0)) + reg("IntReg", "B", at(0)) + reg("IntReg", "U", at(0), cachable("NoCache")));
  map.integer("A").SetValue(7);
  map.port.put(0, {9, 0, 0, 0});
  EXPECT_EQ(map.integer("U").GetValue(), 9);
  map.node("U").InvalidateNode();
  EXPECT_EQ(map.integer("B").GetValue(), 9);
}

TEST(Cache, AWriteReachesWhateverDependsOnIt) {
  TestMap map(reg("IntReg", "R", at(0)) + reg("IntReg", "S", at(4), "<pInvalidator>X</pInvalidator>") +
              reg("IntReg", "T", at(8)) +
              "<Integer Name=\"X\"><pValue>R</pValue></Integer><Integer Name=\"Y\"><pValue>R</pValue></Integer>"
              "<Enumeration Name=\"Sel\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry><EnumEntry "
              "Name=\"B\"><Value>1</Value></EnumEntry>"
              "<Value>0</Value><pSelected>T</pSelected></Enumeration>"
              "<IntSwissKnife Name=\"K\"><pVariable Name=\"A\">Y</pVariable><Formula>A+1</Formula></IntSwissKnife>");
  for (const char* const name : {"X", "Y", "S", "T", "K"}) {
    map.integer(name).GetValue();
  }
  map.port.put(4, {4});
  map.port.put(8, {8});
  map.integer("X").SetValue(9);
  EXPECT_EQ(map.integer("Y").GetValue(), 9);
  EXPECT_EQ(map.integer("K").GetValue(), 10);
  EXPECT_EQ(map.integer("S").GetValue(), 4) << "through the invalidator";
  EXPECT_EQ(map.integer("T").GetValue(), 0) << "does not depend on it";
  map.get<IEnumeration>("Sel") = "B";
  EXPECT_EQ(map.integer("T").GetValue(), 8) << "is selected";
}

TEST(Cache, AFailedWriteLeavesEverythingAsItWas) {
  TestMap map(reg("IntReg", "R", at(0)) + "<Integer Name=\"X\"><pValue>R</pValue><Max>10</Max></Integer>");
  map.integer("X").SetValue(5);
  const int reads = map.port.reads;
  map.port.fails = true;
  expectThrow<GenICam::RuntimeException>([&] { map.integer("X").SetValue(6); }, "R: the port fails");
  EXPECT_THROW(map.integer("X").SetValue(11), GenICam::OutOfRangeException);
  map.port.fails = false;
  EXPECT_EQ(map.integer("X").GetValue(), 5);
  EXPECT_EQ(map.integer("R").GetValue(), 5);
  EXPECT_EQ(map.port.reads, reads);
}

TEST(Cache, UnverifiedWritesSkipGuardsButNotTheRegistersOwnMode) {
  TestMap map(reg("IntReg", "R", at(0)) + reg("IntReg", "Ro", at(4), {}, "4", "RO") +
              "<Integer Name=\"One\"><Value>1</Value></Integer><Integer Name=\"Zero\"><Value>0</Value></Integer>"
              "<Integer Name=\"Locked\"><pIsLocked>One</pIsLocked><pValue>R</pValue><Max>5</Max></Integer>"
              "<Integer Name=\"Away\"><pIsAvailable>Zero</pIsAvailable><pValue>R</pValue></Integer>");
  EXPECT_THROW(map.integer("Locked").SetValue(3), GenICam::AccessException);
  map.integer("Locked").SetValue(9, false);
  EXPECT_EQ(map.port.bytes[0], 9);
  map.integer("Away").SetValue(8, false);
  EXPECT_EQ(map.port.bytes[0], 8);
  expectThrow<GenICam::AccessException>([&] { map.integer("Ro").SetValue(1, false); }, "Node is not writable.");
}

TEST(Cache, AnExceptionOfThePortPassesUnchanged) {
  struct Foreign {
    int code;
  };
  TestMap map(reg("IntReg", "R", at(0)) + "<Integer Name=\"X\"><pValue>R</pValue></Integer>");
  map.port.onRead = [] { throw Foreign{-1014}; };
  try {
    map.integer("X").GetValue();
    FAIL() << "nothing was thrown";
  } catch (const Foreign& error) {
    EXPECT_EQ(error.code, -1014);
  }
  map.port.onRead = nullptr;
  EXPECT_EQ(map.integer("X").GetValue(), 0) << "the map is usable afterwards";
  EXPECT_TRUE(map->GetLock().TryLock());
  map->GetLock().Unlock();
}

TEST(Cache, InvalidateAllAndPorts) {
  TestMap map(reg("IntReg", "R", at(0)));
  map.integer("R").GetValue();
  map.port.put(0, {1});
  map->InvalidateNodes();
  EXPECT_EQ(map.integer("R").GetValue(), 1);
  map.port.put(0, {2});
  map.node("Device").InvalidateNode();
  EXPECT_EQ(map.integer("R").GetValue(), 2);
}

TEST(Cache, Polling) {
  TestMap map(
      reg("IntReg", "R", at(0), "<PollingTime>100</PollingTime>") +
      "<Integer Name=\"Block\"><Value>0</Value></Integer>"
      "<Integer Name=\"X\"><pValue>R</pValue></Integer>" +
      reg("IntReg", "Blocked", at(4), "<pBlockPolling>Block</pBlockPolling><PollingTime>10</PollingTime>") +
      reg("IntReg", "C", at(8)) +
      "<Command Name=\"Cmd\"><pValue>C</pValue><CommandValue>1</CommandValue><PollingTime>10</PollingTime></Command>");
  auto& node = map.integer("X");
  node.GetValue();
  map.port.put(0, {1});
  map->Poll(60);
  EXPECT_EQ(node.GetValue(), 0);
  map->Poll(60);
  EXPECT_EQ(node.GetValue(), 1);
  map.port.put(0, {2});
  map->Poll(90);
  EXPECT_EQ(node.GetValue(), 1) << "counting starts again at nothing";
  map->Poll(10);
  EXPECT_EQ(node.GetValue(), 2);
  map.integer("Blocked").GetValue();
  map.port.put(4, {4});
  map.integer("Block").SetValue(1);
  map->Poll(50);
  map->Poll(-5);
  EXPECT_EQ(map.integer("Blocked").GetValue(), 4) << "the write to Block invalidates what it blocks";
  map.port.put(4, {5});
  map->Poll(50);
  EXPECT_EQ(map.integer("Blocked").GetValue(), 4);
  map.integer("Block").SetValue(0);
  EXPECT_EQ(map.node("R").GetPollingTime(), 100);
  EXPECT_EQ(map.node("X").GetPollingTime(), -1);
}
