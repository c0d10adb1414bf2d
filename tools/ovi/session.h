// One run of the tool against the library: its start, the search for cameras, and the opening of the one that is meant.
#pragma once

#include <deque>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "camera.h"
#include "interrupt.h"
#include "ovi/ovi.hpp"
#include "sole_producer.h"

namespace tool {

/// What every command may be given.
struct CommonOptions {
  bool json = false;
  bool verbose = false;
  std::string producer;                  ///< a producer file or a folder of them; then no other is used
  std::string camera;                    ///< which camera is meant; may be empty
  std::vector<std::string> assignments;  ///< FEATURE=VALUE, set on every camera that is opened
  unsigned timeout = 1000;
  bool withoutLibrary = false;  ///< set by commands that have no use for it; then only options() may be asked
};

/// Whether the library can be told of the folder: it takes narrow text, and several folders in one.
bool libraryCanName(const std::string& folder);

/// What a command does with the camera that it opens.
enum class Use {
  kRead,    ///< looks only; a camera that another program holds is opened for reading, when its producer lets us
  kControl  ///< sets it or takes its images
};

class Session {
 public:
  explicit Session(const CommonOptions& options);

  const CommonOptions& options() const { return options_; }

  /// All cameras, with progress while it searches; searched once.
  const std::vector<Camera>& cameras();

  /// The camera that the text means: number, serial number, user-defined name, model, ID or display name. An empty text
  /// means the only one. Throws ToolError that says what is there instead.
  const Camera& pick(const std::string& name);

  /// Opens the camera of the common options, or the one that is named.
  ovi::Device open(const std::string& name = {}, Use use = Use::kControl);

  /// A command line to try next: "ovi", the words, and the options that were given to choose producer and camera.
  std::string command(const std::string& words) const;
  /// The same with this camera instead of the one that was given.
  std::string command(const std::string& words, const std::string& camera) const;

  /// Folders that are searched for producers; of a single producer that is meant, its own.
  std::vector<std::string> folders() const;

  /// The one producer file that is meant; empty when a folder or nothing was named.
  std::filesystem::path soleProducer() const;

  /// Producer files on the search path, as the library finds them.
  std::vector<std::string> producers();

  /// The file that a camera's producer was loaded from, whatever path it tells of itself.
  std::string producerFile(const Camera& camera);

  /// The file as this process has loaded it.
  std::filesystem::path loadedProducer(const Camera& camera);

  /// "ovi check" with the camera's producer and these words.
  std::string checkCommand(const std::string& words, const Camera& camera);

  /// Whether the library logged such a warning or error since takeMessages.
  bool hasMessage(std::string_view beginning);

  /// What the library logged as warnings and errors since the last call.
  std::vector<std::string> takeMessages();

  /// Why nothing was found: which folders were searched, which producers were found, what each said.
  std::string explainNoCameras();

 private:
  const Camera& pickUnnamed();
  void remember(ovi::LogLevel level, std::string_view message);
  std::string searchPath() const;
  std::string libraryPath(const std::string& folder);
  std::string withOwnPath(std::string text) const;

  CommonOptions options_;
  std::mutex messageMutex_;
  std::deque<std::string> messages_;
  std::unique_ptr<SoleProducer> sole_;  // outlives the library, which uses it
  std::string soleHome_;                // the folder that its producer comes from
  std::unique_ptr<ovi::Library> library_;
  std::optional<std::vector<Camera>> cameras_;
  bool chosen_ = false;  // a virtual camera for somebody who named none, who knows it by now
};

}  // namespace tool
