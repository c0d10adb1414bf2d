// The feature tree: the children of a node one by one, and the remote device's whole tree.
#include "features/feature_tree.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <vector>

#include "core/bounded_copy.h"
#include "features/feature_parameter.h"
#include "typed_node.h"

namespace OVI {
namespace {

constexpr std::size_t kChildNameSize = 255;
constexpr std::size_t kListedNameSize = 200;
constexpr std::uint32_t kInvisible = 5;

/** Child `index` of the parent, or null. */
GenApi::INode* childAt(GenApi::INode& parent, std::size_t index) {
  GenApi::NodeList_t children;
  parent.GetChildren(children, GenApi::ctReadingChildren);
  if (index < children.size())
    return children[index];
  const std::size_t further = index - children.size();
  if (const auto* const selector = interfaceOf<GenApi::ISelector>(&parent);
      selector != nullptr && selector->IsSelector()) {
    GenApi::FeatureList_t selected;
    selector->GetSelectedFeatures(selected);
    GenApi::INode* const node = further < selected.size() ? selected[further]->GetNode() : nullptr;
    return node != nullptr && node->IsFeature() ? node : nullptr;
  }
  if (auto* const enumeration = interfaceOf<GenApi::IEnumeration>(&parent)) {
    GenApi::NodeList_t entries;
    enumeration->GetEntries(entries);
    return further < entries.size() ? entries[further] : nullptr;
  }
  return nullptr;
}

/** Walks the tree of the remote device and writes its features into the caller's list. */
class TreeWalk {
 public:
  TreeWalk(std::uint64_t handle, FEATURE_PARAM_LIST_STRUCT& list, bool includeInvisible)
      : handle_(handle),
        list_(list),
        includeInvisible_(includeInvisible) {}

  /** Depth first, with a stack of its own: a description may nest more deeply than the thread's stack reaches. */
  oviErr run() {
    levels_.push_back({"Root", 0});
    while (!levels_.empty()) {
      Level& level = levels_.back();
      char child[kChildNameSize] = "";
      std::uint32_t childType = 0;
      if (OVI::oviIterateFeatureTree(handle_, level.parent.c_str(), level.nextIndex++, child, sizeof child, &childType,
                                     OVI_MODULE_REMOTE_DEVICE) != OVI_SUCCESS)
        levels_.pop_back();
      else
        visit(child);
    }
    return result_;
  }

 private:
  struct Level {
    std::string parent;
    std::uint32_t nextIndex;
  };

  void visit(const char* child) {
    result_ = OVI::oviGetFeatureParameter(handle_, child, &record_, OVI_MODULE_REMOTE_DEVICE);
    const bool shown = record_.isFeature && record_.visibility != kInvisible;
    if (!shown && !(includeInvisible_ && record_.isFeature))
      return;
    const bool isNew = seen_.insert(child).second;
    append(child);
    if (shown && isNew)
      levels_.push_back({child, 0});
  }

  void append(const char* child) {
    const std::size_t depth = levels_.size() - 1;
    oviFeatureParameter& entry = list_.features[list_.count++];
    entry.featureType = record_.featureType;
    boundedCopy(entry.name, kListedNameSize, child);
    entry.treeDepth = static_cast<std::int64_t>(depth);
    const std::uint32_t shallow = list_.maxDepth & 0xFFU;
    list_.maxDepth = (list_.maxDepth & ~0xFFU) | std::max(shallow, static_cast<std::uint32_t>(depth & 0xFFU));
  }

  std::uint64_t handle_;
  FEATURE_PARAM_LIST_STRUCT& list_;
  bool includeInvisible_;
  oviErr result_ = OVI_SUCCESS;
  oviFeatureParameter record_{};
  std::vector<Level> levels_;
  std::unordered_set<std::string> seen_;
};

}  // namespace

oviErr oviIterateFeatureTree(std::uint64_t handle, const char* parentName, std::uint32_t index, char* childName,
                             std::size_t childNameSize, std::uint32_t* childType, std::uint32_t selector) {
  constexpr const char* kSite = "OVI::oviIterateFeatureTree";
  if (!isInitialized())
    return OVI_ERR_NOT_INITIALIZED;
  if (parentName == nullptr || childName == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  FoundNode found;
  getBaseNode(handle, parentName, found, selector);
  if (found.node == nullptr) {
    OVI_LOG_WARNING(kSite) << "Failed to get feature node for parameter: " << parentName << ". Node was empty.";
    return OVI_ERR_NOT_FOUND;
  }
  GenApi::INode* child = nullptr;
  bool failed = false;
  caught(
      [&]() -> oviErr {
        child = childAt(*found.node, index);
        return OVI_SUCCESS;
      },
      [&](const char* text) {
        failed = true;
        OVI_LOG_ERROR(kSite) << "Failed to iterate feature tree! Error: " << text;
      });
  if (failed)
    return OVI_ERR_UNKNOWN;
  if (child == nullptr)
    return OVI_ERR_NOT_FOUND;
  caught(
      [&]() -> oviErr {
        boundedCopy(childName, childNameSize, child->GetName(false).c_str());
        *childType = featureTypeOf(child->GetPrincipalInterfaceType());
        return OVI_SUCCESS;
      },
      [&](const char* text) {
        failed = true;
        OVI_LOG_ERROR(kSite) << "Failed to get data for feature with name: " << parentName << " Error: " << text;
      });
  return failed ? OVI_ERR_UNKNOWN : OVI_SUCCESS;
}

oviErr oviGetFeatureList(std::uint64_t handle, FEATURE_PARAM_LIST_STRUCT* list, int includeInvisible) {
  if (!isInitialized())
    return OVI_ERR_NOT_INITIALIZED;
  if (list == nullptr || list->features == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  list->count = 0;
  list->maxDepth = 0;
  return TreeWalk(handle, *list, includeInvisible != 0).run();
}

}  // namespace OVI
