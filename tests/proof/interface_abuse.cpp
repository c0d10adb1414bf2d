// Calls every function of the library with every kind of wrong argument, in every state of the library and from eight
// threads at once, and shows that nothing crashes or hangs and that everything works afterwards.
//
//   interface_abuse [--seconds N] [--seed N]
//
// The calls are made from one table. A function that is declared in the public header and missing in the table, or the
// other way round, is a failure.
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "abuse_arguments.h"
#include "abuse_table.h"
#include "journeys.h"
#include "outputs.h"
#include "ovi/ovi.h"
#include "watchdog.h"

namespace proof {

namespace {

constexpr std::size_t kThreads = 8;

using Clock = std::chrono::steady_clock;

/** Calls functions at random until it is told to stop. */
void abuse(const std::vector<Function>& functions, std::size_t thread, std::uint32_t seed,
           const std::atomic<bool>& stop) {
  Arguments arguments(seed);
  while (!stop) {
    const Function& function = functions[arguments.any(functions.size())];
    if (function.kind == Kind::Ours || (function.kind != Kind::Quick && arguments.any(25) != 0))
      continue;
    Watchdog::doing(thread, function.name.c_str());
    function.call(arguments);
  }
  Watchdog::doing(thread, nullptr);
}

/** Every function a few times, one after the other, in the state that the library is in. */
void walk(const std::vector<Function>& functions, std::uint32_t seed, int times) {
  Arguments arguments(seed);
  for (const Function& function : functions) {
    if (function.kind == Kind::Ours)
      continue;
    Watchdog::doing(0, function.name.c_str());
    for (int i = 0; i < times; ++i)
      function.call(arguments);
  }
  Watchdog::doing(0, nullptr);
}

/** A library with cameras found, some of them open and one acquiring. */
void setUp() {
  const auto found = std::make_unique<oviDiscoveryInfo>();
  oviInit(OVI_LOG_LEVEL_ERROR, nullptr, nullptr);
  oviDiscoverDevices(found.get(), 100, nullptr, producers.c_str(), 1);
  std::uint64_t device = 0;
  std::uint64_t stream = 0;
  std::uint64_t event = 0;
  for (const char* const id : {"VC-KV080004", "VC-KV032003"}) {
    oviOpenDevice(id, &device, 100, OVI_DEVICE_ACCESS_CONTROL);
    handles.add(device);
  }
  oviCreateDataStream(device, 0, &stream, 4, 0);
  oviRegisterEvent(stream, OVI_EVENT_NEW_BUFFER, &event, OVI_MODULE_DATA_STREAM);
  oviStartAcquisition(device, OVI_INFINITE_IMAGES);
  handles.add(stream);
  handles.add(event);
}

/** Everything that an application does works: the library has lost nothing by what was done to it. */
void expectHealthy() {
  Watchdog::doing(0, "the journeys afterwards");
  World world;
  world.producers = producers;
  for (const Journey& journey : kJourneys) {
    Verdict verdict;
    journey.prepare(world, verdict);
    journey.run(world, verdict);
    if (!verdict.good())
      report(std::string(journey.name) + " fails afterwards: " + verdict.firstFailure());
  }
  Watchdog::doing(0, nullptr);
}

int run(double seconds, std::uint32_t seed) {
  const std::vector<Function> functions = allFunctions();
  if (!checkTable(functions))
    return 1;
  std::ofstream("interface_abuse.bin", std::ios::binary) << std::string(20000, 'b');
  walk(functions, seed, 20);  // Before the first initialisation.
  const std::size_t before = calls;

  setUp();
  oviInit(0, onLog, nullptr);
  walk(functions, seed + 1, 5);
  const std::size_t alone = calls;
  std::atomic<bool> stop{false};
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < kThreads; ++i)
    threads.emplace_back([&, i] { abuse(functions, i + 1, seed + static_cast<std::uint32_t>(i) + 2, stop); });
  const auto part = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds / 10));
  std::this_thread::sleep_for(5 * part);
  const std::size_t open = calls;
  for (int i = 0; i < 5; ++i) {  // The others go on calling while the library closes and starts anew.
    Watchdog::doing(0, "oviClose");
    oviClose();
    std::this_thread::sleep_for(part / 4);
    Watchdog::doing(0, "setting up again");
    setUp();
    Watchdog::doing(0, nullptr);
    std::this_thread::sleep_for(part / 2);
  }
  stop = true;
  for (std::thread& thread : threads)
    thread.join();
  const std::size_t closing = calls;
  oviClose();
  walk(functions, seed + 100, 20);
  const std::size_t after = calls;
  expectHealthy();
  oviClose();
  std::fprintf(results,
               "seed %u: %zu functions; %zu calls before the start, %zu by one thread, %zu by %zu threads, %zu around "
               "closings, %zu after the end; %zu failures\n",
               seed, functions.size(), before, alone - before, open - alone, kThreads, closing - open, after - closing,
               failedSteps.load());
  return failedSteps == 0 ? 0 : 1;
}

}  // namespace

}  // namespace proof

int main(int argc, char** argv) {
  double seconds = 10;
  std::uint32_t seed = 1;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string argument = argv[i];
    if (argument == "--seconds")
      seconds = std::atof(argv[i + 1]);
    else if (argument == "--seed")
      seed = static_cast<std::uint32_t>(std::strtoul(argv[i + 1], nullptr, 10));
  }
  if (!proof::separateOutputs())
    return 1;
  proof::Watchdog::start(std::chrono::seconds(60));
  proof::producers = std::filesystem::absolute(argv[0]).parent_path().string();
  return proof::run(seconds, seed);
}
