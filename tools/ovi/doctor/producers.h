// Every producer tried in a process of its own, with its interfaces and the cameras that it tells.
#pragma once

#include <filesystem>
#include <functional>
#include <vector>

#include "doctor/finding.h"
#include "session.h"

namespace tool {

/// A camera as its producer tells it.
struct SeenCamera {
  std::filesystem::path producer;
  std::string interface;
  std::string id;
  std::string vendor;
  std::string model;
  std::string serial;
  std::string userName;
  std::uint32_t access = 0;  ///< GenTL's access status
};

struct ProducerExamination {
  Findings producers;
  Findings interfaces;
  std::vector<SeenCamera> cameras;
  std::vector<std::filesystem::path> harmful;  ///< these take down or hold up whoever loads them
};

/// @param begin  is told each file before it is tried
ProducerExamination examineProducers(const Session& session, const std::vector<std::filesystem::path>& files,
                                     const std::function<void(const std::filesystem::path& file)>& begin);

}  // namespace tool
