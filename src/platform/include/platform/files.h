// Host files read and written whole. Paths are narrow text, as everywhere in platform.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace OVI::platform {

/** The size of the machine's memory in bytes; 0 when the system does not tell. */
std::uint64_t mainMemory() noexcept;

/**
 * The first `count` bytes of a file, or all of it when it is shorter.
 *
 * @return empty; or what went wrong, and then `out` is empty
 * @throws std::bad_alloc
 */
std::string readFileStart(const std::string& path, std::size_t count, std::vector<std::uint8_t>& out);

/** A whole file of at most `limit` bytes; a larger one is a failure. Otherwise as readFileStart. */
std::string readWholeFile(const std::string& path, std::uint64_t limit, std::vector<std::uint8_t>& out);

/**
 * Writes a file that appears under its name only when it is complete and on the disk; until then whatever had the name
 * stays. What is no regular file (a device, a pipe) is written directly.
 *
 * @return empty; or what went wrong, and then nothing of the new content is left behind
 */
std::string writeWholeFile(const std::string& path, const void* data, std::size_t size);

}  // namespace OVI::platform
