// One producer without its neighbours: the library loads all producers of a folder, so this one gets a folder of its
// own.
#include "sole_producer.h"

#include "ovi/ovi.hpp"
#include "paths.h"
#include "platform/console.h"
#include "tool_error.h"

namespace tool {

namespace {

namespace fs = std::filesystem;

bool putInto(const fs::path& folder, const fs::path& file, std::error_code& error) {
  const fs::path link = folder / file.filename();
  fs::create_symlink(file, link, error);  // On Windows only for users with a right of their own,
  if (error)
    fs::create_hard_link(file, link, error);  // and these on one volume only.
  if (error)
    fs::copy_file(file, link, error);
  return !error;
}

// What cannot be put there is missing: a producer that needs it says so itself.
void putFilesBeside(const fs::path& folder, const fs::path& producer) {
  constexpr std::uintmax_t kLargest = std::uintmax_t{64} << 20U;
  std::error_code error;
  for (fs::directory_iterator entry(producer.parent_path(), error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code unknown;
    if (entry->is_regular_file(unknown) && entry->path().extension() != producer.extension() &&
        entry->file_size(unknown) <= kLargest)
      putInto(folder, entry->path(), unknown);
  }
}

}  // namespace

SoleProducer::SoleProducer(const fs::path& file) {
  std::error_code error;
  if (!putInto(folder_.path(), file, error))
    throw ToolError("the producer " + pathText(file) + " cannot be linked into " + pathText(folder_.path()) + ": " +
                    error.message());
  if (!kLinksAreTheirFile)
    putFilesBeside(folder_.path(), file);
  if (!refusalOf(file).empty())
    return;
  try {
    loaded_ = std::make_unique<DynamicLibrary>(file);
  } catch (const ToolError&) {  // NOLINT(bugprone-empty-catch): the library is about to say why it does not load.
  }
}

std::string refusalOf(const fs::path& producer) {
  const auto info = std::make_unique<oviTLProducerInfos>();
  // Nothing is loaded: there is no file below a file.
  const oviErr code =
      oviGetTLProducerInfobyFilePath(info.get(), toLibraryText(pathText(producer / producer.filename())).c_str());
  if (code != OVI_ERR_HYPERVISOR_NOT_DISABLED && code != OVI_ERR_NO_KITHARA_PROCESSORS)
    return {};
  return ovi::makeErrorCode(code).message();
}

}  // namespace tool
