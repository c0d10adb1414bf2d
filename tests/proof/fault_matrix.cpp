// Lets every GenTL function that the library calls fail with every code, at its first, second and hundredth call, in
// every journey of an application, and shows that nothing crashes, hangs, leaks or stays broken.
//
//   fault_matrix [--full] [--seconds N] [--seed N] [--only JOURNEY[/FUNCTION[/CODE[/CALL]]]]
//
// Without --full it takes a sample, for 40 seconds or as said: first one fault of each function in each journey, then
// more of them, chosen and ordered by the seed.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "gentl_interface/GenTL.h"
#include "journeys.h"
#include "modules/functions.h"
#include "outputs.h"
#include "ovi_virtual/hostility.h"
#include "platform/platform.h"
#include "watchdog.h"

namespace proof {

namespace {

using Clock = std::chrono::steady_clock;

/** What opens and what closes again: a run calls both equally often. */
constexpr std::pair<const char*, const char*> kPairs[] = {{"IFOpenDevice", "DevClose"},
                                                          {"DevOpenDataStream", "DSClose"},
                                                          {"DSAllocAndAnnounceBuffer", "DSRevokeBuffer"},
                                                          {"GCRegisterEvent", "GCUnregisterEvent"}};

/** Whatever the library does, the producer still has it open when these do nothing, and gives it out only once. */
const std::set<std::string> kEndsWithClose = {"DevClose", "IFClose", "TLClose", "GCCloseLib"};

struct Case {
  const Journey* journey;
  const char* function;
  std::int32_t code;
  std::uint64_t call;

  std::string name() const {
    return std::string(journey->name) + "/" + function + "/" + std::to_string(code) + "/" + std::to_string(call);
  }
};

long threads() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.rfind("Threads:", 0) == 0)
      return std::atol(line.c_str() + 8);
  return 0;
}

// How many threads stay, when there should be so many at most: the system lists one that was joined for a moment more.
long threadsLeft(long expected) {
  constexpr auto kPatience = std::chrono::seconds(5);
  const auto end = std::chrono::steady_clock::now() + kPatience;
  long now = threads();
  while (now > expected && std::chrono::steady_clock::now() < end) {
    std::this_thread::yield();
    now = threads();
  }
  return now;
}

struct Options {
  bool full = false;
  double seconds = 40;
  std::uint32_t seed = 1;
  std::string only;
};

class Matrix {
 public:
  Matrix(std::string producers, Options options) : options_(std::move(options)) {
    world_.producers = std::move(producers);
    library_ = OVI::platform::loadLibrary(world_.producers + "/VirtualCamera.cti");
    if (library_ == nullptr)
      throw std::runtime_error("the virtual camera does not load");
    orders_ = reinterpret_cast<POviVirtualHostility>(OVI::platform::resolve(library_, "oviVirtualHostility"))();
    closeProducer_ = reinterpret_cast<PGCCloseLib>(OVI::platform::resolve(library_, "GCCloseLib"));
  }

  int run() {
    if (!learn())
      return 1;
    std::vector<Case> cases = allCases();
    const std::size_t all = cases.size();
    if (!options_.full)
      sample(cases);
    const Clock::time_point end =
        Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(options_.seconds));
    for (const Case& fault : cases) {
      if (!options_.full && Clock::now() > end)
        break;
      inject(fault);
    }
    oviClose();
    std::fprintf(results, "seed %u: %zu faults of %zu possible ones injected, %zu survived\n", options_.seed, injected_,
                 all, injected_ - failed_);
    for (const auto& [journey, counts] : byJourney_)
      std::fprintf(results, "  %-10s %6zu injected %6zu survived\n", journey.c_str(), counts.first, counts.second);
    return failed_ == 0 && injected_ != 0 ? 0 : 1;
  }

 private:
  /** Walks every journey without a fault: what it calls, and how often, is what can fail. */
  bool learn() {
    for (const Journey& journey : kJourneys) {
      Watchdog::doing(0, journey.name);
      Verdict verdict;
      journey.prepare(world_, verdict);
      orders_->startCounting();
      journey.run(world_, verdict);
      for (const char* function : vcam::kFunctionNames)
        calls_[{journey.name, function}] = orders_->calls(function);
      if (world_.expected == nullptr) {
        world_.expected = std::make_unique<oviDiscoveryInfo>();
        oviDiscoverDevices(world_.expected.get(), 1000, nullptr, world_.producers.c_str(), 1);
      }
      if (!verdict.good()) {
        std::fprintf(results, "%s fails without a fault: %s\n", journey.name, verdict.firstFailure());
        return false;
      }
      expectBalance(journey.name, nullptr);
    }
    orders_->reset();
    Verdict polled;
    kJourneys[2].run(world_, polled);  // The interfaces and the system poll from now on.
    threads_ = threads();
    return failed_ == 0;
  }

  std::vector<Case> allCases() const {
    std::vector<std::int32_t> codes = {-1023, -10000, 1};
    for (std::int32_t code = GC_ERR_ERROR; code >= GC_ERR_BUSY; --code)
      codes.push_back(code);
    std::vector<Case> cases;
    for (const Journey& journey : kJourneys)
      for (const char* function : vcam::kFunctionNames)
        for (const std::int32_t code : codes)
          for (const std::uint64_t call : {1U, 2U, 100U}) {
            const Case one{&journey, function, code, call};
            if (calls_.at({journey.name, function}) >= call &&
                (one.name() + "/").rfind(options_.only.empty() ? "" : options_.only + "/", 0) == 0)
              cases.push_back(one);
          }
    return cases;
  }

  void sample(std::vector<Case>& cases) const {
    std::shuffle(cases.begin(), cases.end(), std::mt19937(options_.seed));
    std::set<std::pair<const Journey*, const char*>> seen;
    std::stable_partition(cases.begin(), cases.end(),
                          [&](const Case& one) { return seen.emplace(one.journey, one.function).second; });
  }

  void inject(const Case& fault) {
    const std::string name = fault.name();
    Watchdog::doing(0, name.c_str());
    Verdict ignored;
    fault.journey->prepare(world_, ignored);
    orders_->startCounting();
    orders_->fail(fault.function, fault.code, fault.call, 1);
    Verdict suffered;
    fault.journey->run(world_, suffered);
    const bool happened = orders_->calls(fault.function) >= fault.call;
    const std::size_t failedBefore = failed_;
    // After a success that was none the library rightly goes on, and more fails.
    if (fault.code <= GC_ERR_ERROR && fault.code >= GC_ERR_BUSY)
      expectBalance(name, happened ? fault.function : nullptr);
    orders_->reset();

    if (kEndsWithClose.count(fault.function) != 0) {
      oviClose();
      closeProducer_();  // It refused, and stays loaded because this program holds it.
    }
    Verdict verdict = clean(*fault.journey);
    if (!verdict.good()) {
      report(name + ": afterwards this fails: " + verdict.firstFailure());
      oviClose();
      closeProducer_();
      if (const Verdict again = clean(*fault.journey); !again.good())
        report(name + ": and after a restart this: " + again.firstFailure());
    }
    if (const long now = threadsLeft(threads_); now > threads_) {
      report(name + ": " + std::to_string(now - threads_) + " threads more");
      threads_ = now;
    }
    if (happened) {
      ++injected_;
      auto& counts = byJourney_[fault.journey->name];
      ++counts.first;
      counts.second += failed_ == failedBefore ? 1 : 0;
    }
    failed_ = failedBefore + (failed_ != failedBefore ? 1 : 0);
    Watchdog::doing(0, nullptr);
  }

  Verdict clean(const Journey& journey) {
    Verdict verdict;
    Verdict prepared;
    if (journey.prepare == kJourneys[1].prepare)  // Those that need no more than a discovery.
      kJourneys[0].run(world_, prepared);
    journey.prepare(world_, verdict);
    journey.run(world_, verdict);
    return verdict;
  }

  /** @param failing  a function that failed once, or null */
  void expectBalance(const std::string& name, const char* failing) {
    for (const auto& [opens, closes] : kPairs) {
      const bool openFailed = failing != nullptr && std::string(failing) == opens;
      const std::uint64_t opened = orders_->calls(opens) - (openFailed ? 1 : 0);
      const bool closeFailed = failing != nullptr && std::string(failing) == closes;  // Then nothing opens any more.
      if (opened != orders_->calls(closes) && !closeFailed && name.rfind("close", 0) != 0)
        report(name + ": " + std::to_string(opened) + " successful " + opens + ", but " +
               std::to_string(orders_->calls(closes)) + " " + closes);
    }
  }

  void report(const std::string& what) {
    ++failed_;
    std::fprintf(results, "FAILED %s\n", what.c_str());
  }

  Options options_;
  World world_;
  void* library_;
  const OviVirtualHostility* orders_;
  PGCCloseLib closeProducer_;
  std::map<std::pair<std::string, std::string>, std::uint64_t> calls_;
  std::map<std::string, std::pair<std::size_t, std::size_t>> byJourney_;
  std::size_t injected_ = 0;
  std::size_t failed_ = 0;
  long threads_ = 0;
};

}  // namespace

}  // namespace proof

int main(int argc, char** argv) {
  proof::Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    const std::string value = i + 1 < argc ? argv[i + 1] : "";
    if (argument == "--full")
      options.full = true;
    else if (argument == "--seconds")
      options.seconds = std::atof(value.c_str());
    else if (argument == "--seed")
      options.seed = static_cast<std::uint32_t>(std::strtoul(value.c_str(), nullptr, 10));
    else if (argument == "--only")
      options.only = value;
  }
  if (!proof::separateOutputs())
    return 1;
  proof::Watchdog::start(std::chrono::seconds(60));
  return proof::Matrix(std::filesystem::absolute(argv[0]).parent_path().string(), options).run();
}
