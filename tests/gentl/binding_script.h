// What BindingProducer.cti answers, for the tests that load it.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "gentl_interface/GenTL.h"

namespace binding {

struct Script {
  std::mutex mutex;
  std::condition_variable changed;
  std::vector<std::string> calls;           // Every function called, in order.
  std::map<std::string, GC_ERROR> answers;  // Instead of success, for every call of that function.
  std::set<std::string> withoutHandle;      // Functions that leave the handle null.
  bool unterminated = false;                // Texts fill their buffer, without a NUL.
  std::string lastError = "the producer's words";
  std::vector<std::string> urls;
  std::uint32_t moreUrls = 0;  // That the producer tells of and does not have.
  std::string memory;          // All registers of all ports, from address 0.
  std::uint64_t counter = 0;
  void* bufferBase = nullptr;
  std::size_t bufferSize = 0;
  int filledBuffers = 0;  // Waiting to be fetched as events.
  int pendingKills = 0;
  bool remembersOneKill = false;  // However many are sent.
  bool holdsAborts = false;       // A wait that met a kill does not return yet.
  int held = 0;
  int waiting = 0;
};

using GetScript = Script* (*)();

}  // namespace binding
