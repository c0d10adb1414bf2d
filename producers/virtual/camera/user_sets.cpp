// Loading, saving and choosing user sets.
#include "user_sets.h"

#include <algorithm>
#include <array>

namespace vcam {
namespace {

constexpr std::array<const char*, 4> kSets{"Default", "UserSet1", "UserSet2", "UserSet3"};
constexpr const char* kStartSet = "UserSetDefault";

}  // namespace

void UserSets::declare() {
  FeatureMap& map = core_.map;
  const char* const category = "UserSetControl";
  map.category(category, "Stored settings");
  selector_ = &map.enumeration("UserSetSelector", category, "The set to load or save");
  map.command("UserSetLoad", category, "Makes the settings of the set the present ones")
      .sharedBy({"UserSetSelector"})
      .lockedWhileStreaming()
      .onWrite([this](std::size_t) { return load(selector_->integer()); })
      .computed([](std::size_t) { return 0; });
  map.command("UserSetSave", category, "Stores the present settings in the set")
      .sharedBy({"UserSetSelector"})
      .availableIf("UserSetSelector <> 0")
      .onWrite([this](std::size_t) { return save(selector_->integer()); })
      .computed([](std::size_t) { return 0; });
  startSet_ = &map.enumeration("UserSetDefault", category, "The set that is loaded at the start")
                   .visibility("Expert")
                   .onWrite([this](std::size_t) {
                     store_.write(kStartSet, toContent(std::to_string(startSet_->integer())));
                     return GC_ERROR{GC_ERR_SUCCESS};
                   });
  for (std::size_t i = 0; i < kSets.size(); ++i) {
    selector_->entry(kSets[i], static_cast<std::int64_t>(i));
    startSet_->entry(kSets[i], static_cast<std::int64_t>(i));
  }
}

void UserSets::powerOn() {
  if (defaults_.empty()) {
    defaults_ = core_.map.saveUserSet();
  }
  const std::string chosen = toText(store_.read(kStartSet).value_or(FileContent{}));
  if (chosen.size() == 1 && chosen[0] >= '0' && chosen[0] < static_cast<char>('0' + kSets.size())) {
    startSet_->set(chosen[0] - '0');
  }
  if (load(startSet_->integer()) != GC_ERR_SUCCESS) {
    load(0);
  }
}

FileContent UserSets::content(const std::string& set) {
  return store_.read(set).value_or(toContent(defaults_));
}

// A set that was never saved holds the defaults.
GC_ERROR UserSets::load(std::int64_t set) {
  const std::string text = set == 0 ? defaults_ : toText(content(kSets[static_cast<std::size_t>(set)]));
  const std::string before = core_.map.saveUserSet();
  core_.map.loadDefaults();
  if (core_.map.loadUserSet(text)) {
    return GC_ERR_SUCCESS;
  }
  core_.map.loadUserSet(before);
  return GC_ERR_INVALID_VALUE;
}

GC_ERROR UserSets::save(std::int64_t set) {
  store_.write(kSets[static_cast<std::size_t>(set)], toContent(core_.map.saveUserSet()));
  return GC_ERR_SUCCESS;
}

}  // namespace vcam
