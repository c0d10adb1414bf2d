// One producer without its neighbours: the library loads all producers of a folder, so this one gets a folder of its
// own.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "platform/dynamic_library.h"
#include "temporary_folder.h"

namespace tool {

/**
 * A folder with a link to the producer and none of its neighbours, or with a copy where links cannot be made. It is
 * gone when this is destroyed, which must be after the library has closed the producer.
 *
 * The producer is loaded under its own path first. So it finds the libraries and files beside it, and the system knows
 * the link as the file that is loaded already. On Windows it does not: a link or copy is a library of its own there,
 * which looks for files beside itself. So they are linked or copied too, but for folders, other producers and files of
 * more than 64 MiB.
 */
class SoleProducer {
 public:
  /// Throws ToolError when there can be no such folder.
  explicit SoleProducer(const std::filesystem::path& file);

  const std::filesystem::path& folder() const { return folder_.path(); }

 private:
  TemporaryFolder folder_;
  std::unique_ptr<DynamicLibrary> loaded_;
};

/// Why the library does not load a producer of this file name on this machine; empty when it does. The library must be
/// initialised.
std::string refusalOf(const std::filesystem::path& producer);

}  // namespace tool
