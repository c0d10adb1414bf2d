// Callbacks: who is called, how often, in which phase, and what they may do.
#include <thread>

#include "test_map.h"

using namespace GenApi;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

const std::string kNodes =
    reg("IntReg", "R", at(0)) +
    "<Category Name=\"Root\"><pFeature>Sub</pFeature></Category><Category "
    "Name=\"Sub\"><pFeature>X</pFeature></Category>"
    "<Integer Name=\"X\"><pValue>R</pValue><Max>10</Max></Integer><Integer Name=\"Other\"><Value>1</Value></Integer>"
    "<IntSwissKnife Name=\"K\"><pVariable Name=\"A\">X</pVariable><pVariable "
    "Name=\"B\">R</pVariable><Formula>A+B</Formula></IntSwissKnife>";

struct Listener {
  std::vector<std::string> calls;
  std::vector<intptr_t> handles;

  void listen(TestMap& map, const std::vector<const char*>& names, ECallbackType phase = cbPostInsideLock) {
    for (const char* const name : names) {
      handles.push_back(Register(
          &map.node(name), [this](INode* node) { calls.emplace_back(node->GetName().c_str()); }, phase));
    }
  }
  std::vector<std::string> take() { return std::exchange(calls, {}); }
};

}  // namespace

TEST(Callbacks, OncePerTouchedNode) {
  TestMap map(kNodes);
  Listener listener;
  listener.listen(map, {"R", "X", "K", "Sub", "Root", "Other"});
  map.integer("X").SetValue(1);
  EXPECT_THAT(listener.take(), UnorderedElementsAre("R", "X", "K", "Sub", "Root"));
  map.integer("X").SetValue(1);
  EXPECT_EQ(listener.take().size(), 5U) << "also when the value is the same";
  map.integer("K").GetValue();
  map.integer("X").GetValue(false, true);
  EXPECT_THAT(listener.take(), IsEmpty()) << "reading calls nobody";
  EXPECT_THROW(map.integer("X").SetValue(11), GenICam::OutOfRangeException);
  map.port.fails = true;
  EXPECT_THROW(map.integer("X").SetValue(2), GenICam::RuntimeException);
  EXPECT_THAT(listener.take(), IsEmpty()) << "nor does a failed write";
  map.port.fails = false;
  map.node("X").InvalidateNode();
  EXPECT_THAT(listener.take(), UnorderedElementsAre("X", "K", "Sub", "Root"));
  map->InvalidateNodes();
  EXPECT_EQ(listener.take().size(), 6U);
}

TEST(Callbacks, TwoPhases) {
  TestMap map(kNodes);
  Listener inside;
  Listener outside;
  std::vector<bool> lockWasFree;
  const auto lockIsFree = [&] {
    bool free = false;
    std::thread([&] {
      free = map->GetLock().TryLock();
      if (free) {
        map->GetLock().Unlock();
      }
    }).join();
    return free;
  };
  Register(
      &map.node("X"), [&](INode*) { lockWasFree.push_back(lockIsFree()); }, cbPostInsideLock);
  Register(
      &map.node("X"), [&](INode*) { lockWasFree.push_back(lockIsFree()); }, cbPostOutsideLock);
  map.integer("X").SetValue(1);
  EXPECT_THAT(lockWasFree, ElementsAre(false, true));
}

TEST(Callbacks, MayWriteRegisterAndDeregister) {
  TestMap map(kNodes);
  Listener listener;
  listener.listen(map, {"Other"}, cbPostOutsideLock);
  intptr_t self = 0;
  int calls = 0;
  self = Register(&map.node("X"), [&](INode*) {
    ++calls;
    map.integer("Other").SetValue(calls);
    EXPECT_THAT(listener.calls, IsEmpty()) << "outside callbacks wait for the outermost call";
    Register(&map.node("X"), [](INode*) {});
    Deregister(self);
  });
  map.integer("X").SetValue(1);
  EXPECT_EQ(calls, 1);
  EXPECT_THAT(listener.take(), ElementsAre("Other"));
  map.integer("X").SetValue(2);
  EXPECT_EQ(calls, 1);
  EXPECT_FALSE(map.node("X").DeregisterCallback(12345));
}

TEST(Callbacks, OneThatThrowsDoesNotBreakTheMap) {
  TestMap map(kNodes);
  const intptr_t bad = Register(&map.node("X"), [](INode*) { throw std::runtime_error("mine"); });
  EXPECT_THROW(map.integer("X").SetValue(1), std::runtime_error);
  Deregister(bad);
  Listener listener;
  listener.listen(map, {"X"});
  map.integer("X").SetValue(2);
  EXPECT_THAT(listener.take(), ElementsAre("X"));
  EXPECT_EQ(map.integer("X").GetValue(), 2);
}

TEST(Callbacks, OneWhoseOwnWriteFailsTakesNoOtherWithIt) {
  TestMap map(kNodes);
  Listener listener;
  listener.listen(map, {"X", "R"}, cbPostOutsideLock);
  Register(&map.node("X"), [&](INode*) { EXPECT_THROW(map.integer("X").SetValue(11), GenICam::OutOfRangeException); });
  map.integer("X").SetValue(1);
  EXPECT_THAT(listener.take(), UnorderedElementsAre("X", "R"));
}

TEST(Callbacks, CommandsCallWhenTheyAreDoneAndPollingCalls) {
  TestMap map(reg("IntReg", "C", at(0)) +
              "<Command Name=\"Cmd\"><pValue>C</pValue><CommandValue>1</CommandValue></Command>" +
              reg("IntReg", "P", at(4), "<PollingTime>10</PollingTime>"));
  Listener listener;
  listener.listen(map, {"Cmd", "P"});
  map.get<ICommand>("Cmd").Execute();
  listener.take();
  EXPECT_FALSE(map.get<ICommand>("Cmd").IsDone());
  EXPECT_THAT(listener.take(), IsEmpty());
  map.port.put(0, {0});
  EXPECT_TRUE(map.get<ICommand>("Cmd").IsDone());
  EXPECT_THAT(listener.take(), ElementsAre("Cmd"));
  EXPECT_TRUE(map.get<ICommand>("Cmd").IsDone());
  EXPECT_THAT(listener.take(), IsEmpty());
  map->Poll(10);
  EXPECT_THAT(listener.take(), ElementsAre("P"));
}

TEST(Callbacks, ReadersAndWritersInSeveralThreads) {
  TestMap map(kNodes);
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&map, t] {
      for (int i = 0; i < 300; ++i) {
        map.integer("X").SetValue((i + t) % 10);
        const intptr_t handle = Register(
            &map.node("X"), [](INode*) {}, cbPostOutsideLock);
        EXPECT_EQ(map.integer("K").GetValue() % 2, 0);
        Deregister(handle);
        map->Poll(1);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}
