// The entries of an enumeration feature: counted, described, listed.
#include "features/enumerations.h"

#include <cstring>
#include <utility>

#include "features/feature_parameter.h"
#include "typed_node.h"

namespace OVI {

oviErr getEnumEntriesForFeature(std::uint64_t handle, const char* name, FoundNode& found, GenApi::NodeList_t& entries,
                                std::uint32_t selector) {
  constexpr const char* kSite = "getEnumEntriesForFeature";
  if (!isInitialized())
    return OVI_ERR_NOT_INITIALIZED;
  if (name == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  TypedNode<GenApi::IEnumeration> enumeration;
  genGetNode(handle, name, enumeration, selector);
  if (enumeration.value == nullptr) {
    OVI_LOG_WARNING(kSite) << "Failed to get feature node for parameter: " << name << ". Node was empty.";
    return OVI_ERR_NOT_FOUND;
  }
  const oviErr code = caught(
      [&]() -> oviErr {
        GenApi::NodeList_t all;
        enumeration.value->GetEntries(all);
        for (GenApi::INode* const entry : all) {
          if (isUsable(*entry))
            entries.push_back(entry);
        }
        return OVI_SUCCESS;
      },
      [&](const char* text) {
        OVI_LOG_ERROR(kSite) << "Failed to get enum entries! Parameter: " << name << " Error: " << text;
      });
  found = std::move(enumeration.found);
  return code;
}

oviErr enumEntryNodeToFeatureParameter(std::uint64_t handle, GenApi::INode* entry, const FoundNode& found,
                                       const char* featureName, oviFeatureParameter* record, std::uint8_t index,
                                       std::uint32_t selector) {
  constexpr const char* kSite = "enumEntryNodeToFeatureParameter";
  if (entry == nullptr) {
    OVI_LOG_ERROR(kSite) << "Enum entry not found! Node was NULL. Feature: " << featureName;
    return OVI_ERR_NOT_FOUND;
  }
  if (!isUsable(*entry)) {
    OVI_LOG_DEBUG(kSite) << "Enum entry not available! Feature: " << featureName
                         << " Enum name: " << entry->GetName(false).c_str();
    return OVI_ERR_NOT_FOUND;
  }
  const oviErr code = nodeToFeatureParameter(record, entry, found, handle, selector);
  record->enumEntryIndex = index;
  return code;
}

oviErr oviGetFeatureEnumEntryCount(std::uint64_t handle, const char* name, std::uint32_t* count,
                                   std::uint32_t selector) {
  if (count == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  *count = 0;
  FoundNode found;
  GenApi::NodeList_t entries;
  const oviErr code = getEnumEntriesForFeature(handle, name, found, entries, selector);
  if (code == OVI_SUCCESS)
    *count = static_cast<std::uint32_t>(entries.size());
  return code;
}

oviErr oviGetFeatureEnumEntryByIndex(std::uint64_t handle, const char* name, std::int32_t index,
                                     oviFeatureParameter* record, std::uint32_t selector) {
  constexpr const char* kSite = "OVI::oviGetFeatureEnumEntryByIndex";
  if (record == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  std::memset(record, 0, sizeof *record);
  FoundNode found;
  GenApi::NodeList_t entries;
  if (const oviErr code = getEnumEntriesForFeature(handle, name, found, entries, selector); code != OVI_SUCCESS)
    return code;
  const auto position = static_cast<std::size_t>(index);
  if (index < 0 || position >= entries.size()) {
    OVI_LOG_ERROR(kSite) << "Enum entry not found for provided index! Feature: " << name << " Enum index: " << index;
    return OVI_ERR_INVALID_PARAMETER;
  }
  return caught(
      [&] {
        return enumEntryNodeToFeatureParameter(handle, entries[position], found, name, record,
                                               static_cast<std::uint8_t>(index), selector);
      },
      [&](const char* text) { OVI_LOG_ERROR(kSite) << "Failed getting enum entry! Error: " << text; });
}

oviErr oviGetFeatureEnumEntryByName(std::uint64_t handle, const char* name, const char* entryName,
                                    oviFeatureParameter* record, std::uint32_t selector) {
  constexpr const char* kSite = "OVI::oviGetFeatureEnumEntryByName";
  if (record == nullptr || entryName == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  std::memset(record, 0, sizeof *record);
  FoundNode found;
  GenApi::NodeList_t entries;
  if (const oviErr code = getEnumEntriesForFeature(handle, name, found, entries, selector); code != OVI_SUCCESS)
    return code;
  return caught(
      [&]() -> oviErr {
        for (std::size_t i = 0; i < entries.size(); ++i) {
          const auto* const entry = entries[i]->GetPrincipalInterfaceType() == GenApi::intfIEnumEntry
                                        ? interfaceOf<GenApi::IEnumEntry>(entries[i])
                                        : nullptr;
          if (entry != nullptr && entry->GetSymbolic() == entryName)
            return enumEntryNodeToFeatureParameter(handle, entries[i], found, name, record,
                                                   static_cast<std::uint8_t>(i), selector);
        }
        OVI_LOG_ERROR(kSite) << "Enum entry not found for provided name! Feature: " << name
                             << " Enum name: " << entryName;
        return OVI_ERR_NOT_FOUND;
      },
      [&](const char* text) { OVI_LOG_ERROR(kSite) << "Failed getting enum entry! Error: " << text; });
}

oviErr oviGetFeatureEnum(std::uint64_t handle, const char* name, oviFeatureParameter* entry, std::uint32_t selector) {
  if (entry == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  TypedNode<GenApi::IEnumeration> enumeration;
  if (const oviErr code = genGetNode(handle, name, enumeration, selector); code != OVI_SUCCESS)
    return code;
  return caught(
      [&]() -> oviErr {
        auto* const current = interfaceOf<GenApi::INode>(
            enumeration.value->GetCurrentEntry(false, GlobalState::instance().featureCachingDisabled()));
        if (current == nullptr)
          return OVI_ERR_NOT_FOUND;
        GenApi::NodeList_t all;
        enumeration.value->GetEntries(all);
        std::uint8_t index = 0;
        std::uint8_t counted = 0;
        bool listed = false;
        for (auto node = all.begin(); node != all.end() && !listed; ++node, ++counted) {
          listed = *node == current;
          index = counted;
        }
        return enumEntryNodeToFeatureParameter(handle, current, enumeration.found, name, entry,
                                               listed ? index : std::uint8_t{255}, selector);
      },
      [&](const char* text) {
        OVI_LOG_ERROR("OVI::oviGetFeatureEnum")
            << "Failed to get enumeration feature value! Parameter: " << name << " Error: " << text;
      });
}

oviErr oviGetFeatureAllEnums(std::uint64_t handle, const char* name, char* text, std::uint32_t useDisplayNames) {
  if (text == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  oviFeatureParameter record;
  oviErr code = OVI::oviGetFeatureParameter(handle, name, &record, OVI_MODULE_REMOTE_DEVICE);
  if (code != OVI_SUCCESS)
    return code;
  char* end = text;
  *end = '\0';
  const auto append = [&end](const char* piece) {
    const std::size_t length = std::strlen(piece);
    std::memcpy(end, piece, length + 1);
    end += length;
  };
  const std::uint32_t count = record.enumEntryCount;
  for (std::uint32_t i = 0; i < count; ++i) {
    code = OVI::oviGetFeatureEnumEntryByIndex(handle, name, static_cast<std::int32_t>(i), &record,
                                              OVI_MODULE_REMOTE_DEVICE);
    if (code != OVI_SUCCESS)
      continue;
    if (useDisplayNames != 0) {
      append("<");
      append(record.displayName);
      append(">");
    } else {
      append(record.stringValue);
    }
    if (i + 1 < count)
      append(" ");
  }
  return code;
}

}  // namespace OVI
