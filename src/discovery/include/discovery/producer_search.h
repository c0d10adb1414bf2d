// Where GenTL producers are looked for: the environment's folders, the application's, and the files in them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace OVI {

/** The folders of a search path; ";" separates them, outside Windows ":" too. */
std::vector<std::string> splitSearchPath(std::string_view searchPath);

/** True for the reference producers, which are never loaded. */
bool isExcludedProducer(std::string_view fileName) noexcept;

/** Appends the producer files that lie directly in a folder. */
void findCTIFiles(const std::string& directory, std::vector<std::string>& outFiles);

/** The environment's folders unless only the given ones are wanted, then the given ones; each file once, first come
 * first. */
std::vector<std::string> findProducers(const std::vector<std::string>& givenPaths, bool givenPathsOnly);

}  // namespace OVI
