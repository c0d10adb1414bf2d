// What the maker of a camera or of the library needs to see, as one ZIP archive.
#include "doctor/bug_report.h"

#include <miniz.h>

#include <algorithm>
#include <array>
#include <memory>

#include "doctor/binary_file.h"
#include "ovi/ovi.hpp"
#include "paths.h"
#include "picture.h"
#include "platform/console.h"
#include "platform/machine_settings.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

// A report is for others: whose machine it is does not matter.
void hideHome(std::string& text) {
  for (const char* variable : {"HOME", "USERPROFILE"}) {
    const std::string home = environmentVariable(variable);
    constexpr std::size_t kShortest = 4;
    for (std::size_t at = 0; home.size() >= kShortest && (at = text.find(home, at)) != std::string::npos;)
      text.replace(at, home.size(), "~");
  }
}

// Of all variables only those that say something about cameras, and nothing that might be a secret.
bool isOurs(const std::string& variable) {
  constexpr std::array<std::string_view, 5> kBeginnings = {"GENICAM_", "GENTL", "OVI_",
                                                           "LD_LIBRARY_PATH=", "LD_PRELOAD="};
  return std::ranges::any_of(kBeginnings, [&](std::string_view beginning) { return variable.starts_with(beginning); });
}

class Archive {
 public:
  Archive() { good_ = mz_zip_writer_init_heap(&zip_, 0, 0) != 0; }
  ~Archive() { mz_zip_writer_end(&zip_); }
  Archive(const Archive&) = delete;
  Archive& operator=(const Archive&) = delete;

  void add(const ReportPart& part) {
    good_ = good_ && mz_zip_writer_add_mem(&zip_, part.name.c_str(), part.text.data(), part.text.size(),
                                           static_cast<mz_uint>(MZ_DEFAULT_LEVEL)) != 0;
  }
  void writeTo(const std::filesystem::path& file) {
    void* content = nullptr;
    std::size_t size = 0;
    good_ = good_ && mz_zip_writer_finalize_heap_archive(&zip_, &content, &size) != 0;
    const std::unique_ptr<void, decltype(&mz_free)> owner(content, &mz_free);
    if (!good_)
      throw ToolError("cannot make the report " + pathText(file) + ": " +
                      mz_zip_get_error_string(mz_zip_get_last_error(&zip_)));
    writeRaw({static_cast<const std::uint8_t*>(content), size}, file);
  }

 private:
  mz_zip_archive zip_{};
  bool good_ = false;
};

}  // namespace

void writeReport(const std::filesystem::path& file, std::vector<ReportPart> parts) {
  Archive archive;
  for (ReportPart& part : parts) {
    hideHome(part.text);
    archive.add(part);
  }
  archive.writeTo(file);
}

std::string machineText() {
  std::string text = "ovi " + ovi::Library::version() + ", " + loadableKind() + "\n";
  for (const auto& [label, value] : machineFacts())
    text += label + ": " + (value.empty() ? "?" : value) + "\n";
  text += "\nEnvironment\n";
  std::vector<std::string> variables = environmentVariables();
  std::ranges::sort(variables);
  for (const std::string& variable : variables)
    if (isOurs(variable))
      text += variable + "\n";
  return text;
}

}  // namespace tool
