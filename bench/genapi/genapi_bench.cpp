// Measures the node-map engine and prints each figure as a ratio to a floor of the same run, beside its target.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>
#include <pugixml.hpp>
#include <string>
#include <unordered_map>
#include <vector>

#include "GenApi/GenApi.h"
#include "allocations.h"
#include "description.h"
#include "report.h"

namespace {

using namespace GenApi;
using Clock = std::chrono::steady_clock;

struct Destroy {
  void operator()(INodeMap* map) const { dynamic_cast<IDestroy&>(*map).Destroy(); }
};
using NodeMap = std::unique_ptr<INodeMap, Destroy>;

// A register space that answers at once.
class EmptyPort : public IPort {
 public:
  EAccessMode GetAccessMode() const override { return RW; }
  void Read(void* pBuffer, int64_t, int64_t Length) override { std::memset(pBuffer, 0, static_cast<size_t>(Length)); }
  void Write(const void*, int64_t, int64_t) override {}
};

// The best of several rounds, as whatever else runs on the machine can only slow a round down.
template<class Work>
double nanoseconds(int repeats, Work&& work) {
  constexpr int kRounds = 9;
  double best = 1e300;
  for (int round = 0; round < kRounds; ++round) {
    const auto begin = Clock::now();
    for (int i = 0; i < repeats; ++i)
      work();
    const std::chrono::duration<double, std::nano> taken = Clock::now() - begin;
    best = std::min(best, taken.count() / repeats);
  }
  return best;
}

bench::Report report("genapi_bench");

volatile int64_t sink = 0;

struct Callable {
  virtual ~Callable() = default;
  virtual int64_t call() = 0;
};
struct Called : Callable {
  int64_t value = 5;
  int64_t call() override { return value; }
};

constexpr int kReads = 200000;

// One lookup in a map of as many names, one recursive lock and unlock, one virtual call.
double measureFloor(INodeMap& map, const std::string& name) {
  std::unordered_map<std::string, std::unique_ptr<Callable>> names;
  NodeList_t nodes;
  map.GetNodes(nodes);
  for (INode* const node : nodes)
    names.emplace(node->GetName().c_str(), std::make_unique<Called>());
  std::recursive_mutex mutex;
  return nanoseconds(kReads, [&] {
    Callable* const found = names.find(name)->second.get();
    const std::lock_guard lock(mutex);
    sink = sink + found->call();
  });
}

template<class Work>
void read(const char* what, double floor, double target, Work&& work) {
  work();
  const std::size_t before = bench::allocationCount();
  work();
  const std::size_t allocated = bench::allocationCount() - before;
  const double taken = nanoseconds(kReads, work);
  report.atMost(std::string(what) + " / floor", taken / floor, target, bench::withUnit(taken, "ns"));
  report.atMost(std::string(what) + ", allocations", static_cast<double>(allocated), 0);
}

void measureReads(std::size_t size) {
  const std::string xml = bench::makeDescription(size, 10);
  const NodeMap map(CNodeMapFactory(GENICAM_NAMESPACE::gcstring(xml.data(), xml.size())).CreateNodeMap());
  EmptyPort port;
  map->Connect(&port);
  // Names as an application has them: made beforehand, of the same length for the floor and the engine.
  const GENICAM_NAMESPACE::gcstring integerName("Integer0");
  const GENICAM_NAMESPACE::gcstring enumerationName("Enumeration0");
  const GENICAM_NAMESPACE::gcstring floatName("Float0");
  const GENICAM_NAMESPACE::gcstring uncachedName("Uncached0");
  const double floor = measureFloor(*map, "Integer0");
  bench::Report::heading("Reading, " + std::to_string(map->GetNumNodes()) + " nodes");
  report.plain("floor of a read, ns", floor);
  read("integer by name, cached", floor, 1.5,
       [&] { sink = sink + CIntegerPtr(map->GetNode(integerName))->GetValue(); });
  const CIntegerPtr held(map->GetNode(integerName));
  read("integer by held pointer, cached", floor, 0.7, [&] { sink = sink + held->GetValue(); });
  read("enumeration by name, cached", floor, 2,
       [&] { sink = sink + CEnumerationPtr(map->GetNode(enumerationName))->GetIntValue(); });
  read("float through a converter by name, cached", floor, 2,
       [&] { sink = sink + static_cast<int64_t>(CFloatPtr(map->GetNode(floatName))->GetValue()); });
  read("integer by name, uncached", floor, 4,
       [&] { sink = sink + CIntegerPtr(map->GetNode(uncachedName))->GetValue(); });
}

void measureLoading(std::size_t size) {
  const std::string xml = bench::makeDescription(size, 10);
  const std::string nodes = std::to_string(size) + " nodes: ";
  bench::Report::heading("Loading " + std::to_string(size) + " nodes, " + std::to_string(xml.size() / 1024) + " KB");
  const int loads = size > 100000 ? 1 : 5;
  const double parsing = nanoseconds(loads, [&] {
    std::vector<char> copy(xml.begin(), xml.end());
    pugi::xml_document document;
    document.load_buffer_inplace(copy.data(), copy.size());
  });
  const auto load = [&](ECacheUsage_t usage) {
    return NodeMap(CNodeMapFactory(ContentType_Xml, xml.data(), xml.size(), usage).CreateNodeMap());
  };
  const double first = nanoseconds(loads, [&] { load(CacheUsage_Ignore); });
  report.atMost(nodes + "text to map / pugixml's parse", first / parsing, 3, bench::withUnit(first / 1e6, "ms"));

  CNodeMapFactory::ClearCache();
  const std::size_t before = bench::allocatedBytes();
  const NodeMap kept = load(CacheUsage_Automatic);
  const std::size_t used = bench::allocatedBytes() - before;
  const double second = nanoseconds(loads, [&] { load(CacheUsage_Automatic); });
  report.atMost(nodes + "second map / first", second / first, 0.2, bench::withUnit(second / 1e6, "ms"));
  report.atMost(nodes + "memory / text", static_cast<double>(used) / static_cast<double>(xml.size()), 4,
                bench::withUnit(static_cast<double>(used) / 1024 / 1024, "MB"));
}

double writeTime(std::size_t size, std::size_t dependents) {
  const std::string xml = bench::makeDescription(size, dependents);
  const NodeMap map(CNodeMapFactory(GENICAM_NAMESPACE::gcstring(xml.data(), xml.size())).CreateNodeMap());
  EmptyPort port;
  map->Connect(&port);
  const CIntegerPtr integer(map->GetNode("Integer0"));
  int64_t value = 0;
  constexpr int kWrites = 20000;
  return nanoseconds(kWrites, [&] { integer->SetValue(++value & 0xFFFF); });
}

void measureWriting() {
  bench::Report::heading("Writing");
  const double small = writeTime(100, 10);
  const double large = writeTime(50000, 10);
  report.atMost("10 dependents, in 50,000 nodes / in 100", large / small, 1.2, bench::withUnit(large, "ns"));
  const double many = writeTime(5000, 1000);
  report.plain("1,000 dependents / 10", many / small, bench::withUnit(many / 1000, "us"));
}

}  // namespace

int main() {
  try {
    measureReads(5000);
    measureLoading(5000);
    measureLoading(50000);
    measureLoading(460000);
    measureWriting();
  } catch (const GENICAM_NAMESPACE::GenericException& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 2;
  }
  return report.result();
}
