// User sets: all stored settings under a name, which survive the process when a storage folder is configured.
#pragma once

#include <string>

#include "camera_core.h"
#include "file_store.h"

namespace vcam {

class UserSets {
 public:
  UserSets(CameraCore& core, FileStore& store) : core_(core), store_(store) {}

  void declare();
  // After the map is sealed: remembers the defaults and loads the set that is chosen for the start.
  void powerOn();
  // What the file of a user set holds: what was stored, or the defaults.
  FileContent content(const std::string& set);

 private:
  GC_ERROR load(std::int64_t set);
  GC_ERROR save(std::int64_t set);

  CameraCore& core_;
  FileStore& store_;
  std::string defaults_;
  Feature* selector_ = nullptr;
  Feature* startSet_ = nullptr;
};

}  // namespace vcam
