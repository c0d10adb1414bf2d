// A producer asked about itself and its cameras, in a process that it may take down.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>

namespace tool {

/**
 * Loads the producer and walks through its modules as a search for cameras does, without opening a camera.
 *
 * Each thing that it learns is told at once as an object whose member "is" says what it is: "unloadable", "producer",
 * "interface", "camera", "fault", "hung" (the last one before the process ends), and "end". A crash leaves "crashed in
 * FUNCTION" on standard error.
 *
 * @param timeout  for each update of a list
 */
void probeProducer(const std::filesystem::path& file, std::chrono::milliseconds timeout,
                   std::function<void(const nlohmann::ordered_json&)> tell);

}  // namespace tool
