// Features by name and type.
#include "features/typed_access.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "core/bounded_copy.h"
#include "platform/platform.h"
#include "typed_node.h"

namespace OVI {
namespace {

/** Runs `use` with the enumeration's current entry. `what` is "integer" or "string", as the log says it. */
template<class Use>
oviErr withCurrentEntry(GenApi::IEnumeration& enumeration, const char* site, const char* name, const char* what,
                        Use&& use) {
  return caught(
      [&]() -> oviErr {
        GenApi::IEnumEntry* const entry = enumeration.GetCurrentEntry(false, false);
        if (entry == nullptr) {
          OVI_LOG_ERROR(site) << "Current value for enum feature " << name << " not found!";
          return OVI_ERR_NOT_FOUND;
        }
        use(*entry);
        return OVI_SUCCESS;
      },
      [&](const char* text) {
        OVI_LOG_ERROR(site) << "Failed to get enum value as " << what << "! Parameter: " << name << ", Error: " << text;
      });
}

oviErr setEntry(GenApi::IEnumeration& enumeration, const char* site, const char* name, const char* entryName) {
  return caught(
      [&]() -> oviErr {
        GenApi::IEnumEntry* const entry = enumeration.GetEntryByName(entryName);
        if (entry == nullptr) {
          OVI_LOG_ERROR(site) << "Failed to set enumeration parameter to entry! Parameter: " << name
                              << ", Entry value: " << entryName << " Error: Enum entry not found!";
          return OVI_ERR_NOT_FOUND;
        }
        enumeration.SetIntValue(entry->GetValue(), true);
        return OVI_SUCCESS;
      },
      [&](const char* text) {
        OVI_LOG_ERROR(site) << "Failed to set parameter! Parameter: " << name << ", Value: " << entryName
                            << " Error: " << text;
      });
}

void logCommandFailure(const char* site, const char* name, const char* text) {
  OVI_LOG_ERROR(site) << "Failed to execute command parameter! Parameter: " << name << " Error: " << text;
}

// The write says "get" as well: log readers look for this one text.
void logRegisterFailure(const char* site, const char* name, const char* text) {
  OVI_LOG_ERROR(site) << "Failed to get register parameter! Parameter: " << name << ", Error: " << text;
}

}  // namespace

oviErr oviGetFeatureInt(std::uint64_t handle, const char* name, std::int64_t* value, std::uint32_t selector) {
  if (value == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  if (const oviErr refused = checkArguments(handle, name); refused != OVI_SUCCESS)
    return refused;
  FoundNode found;
  const oviErr lookup = getBaseNode(handle, name, found, selector);
  if (GenApi::IEnumeration* const enumeration = asEnumeration(found.node)) {
    // The entry's number is read, so that its failures show, but the caller's value stays: applications rely on it.
    return withCurrentEntry(*enumeration, "OVI::oviGetFeatureInt", name, "integer",
                            [](GenApi::IEnumEntry& entry) { static_cast<void>(entry.GetValue()); });
  }
  return readNode(lookup, found, name, *value);
}

oviErr oviGetFeatureFloat(std::uint64_t handle, const char* name, double* value, std::uint32_t selector) {
  return value == nullptr ? OVI_ERR_INVALID_PARAMETER : getNodeAndGetValue(handle, name, *value, selector);
}

oviErr oviGetFeatureBool(std::uint64_t handle, const char* name, bool* value, std::uint32_t selector) {
  return value == nullptr ? OVI_ERR_INVALID_PARAMETER : getNodeAndGetValue(handle, name, *value, selector);
}

oviErr oviGetFeatureString(std::uint64_t handle, const char* name, char* buffer, std::size_t* size,
                           std::uint32_t selector) {
  if (size == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  if (const oviErr refused = checkArguments(handle, name); refused != OVI_SUCCESS)
    return refused;
  FoundNode found;
  GenICam::gcstring text;
  oviErr code = getBaseNode(handle, name, found, selector);
  if (GenApi::IEnumeration* const enumeration = asEnumeration(found.node))
    code = withCurrentEntry(*enumeration, "OVI::oviGetFeatureString", name, "string",
                            [&text](GenApi::IEnumEntry& entry) { text = entry.GetSymbolic(); });
  else
    code = readNode(code, found, name, text);
  if (code != OVI_SUCCESS)
    return code;
  std::string room;
  const std::string_view narrow = platform::viewFromUtf8(text.c_str(), room);
  if (*size == 0 || buffer == nullptr)
    *size = narrow.length() + 1;
  else
    boundedCopy(buffer, *size, narrow);
  return OVI_SUCCESS;
}

oviErr oviSetFeatureInt(std::uint64_t handle, const char* name, std::int64_t value, std::uint32_t selector) {
  return getNodeAndSetValue(handle, name, value, selector);
}

oviErr oviSetFeatureFloat(std::uint64_t handle, const char* name, double value, std::uint32_t selector) {
  return getNodeAndSetValue(handle, name, value, selector);
}

oviErr oviSetFeatureBool(std::uint64_t handle, const char* name, bool value, std::uint32_t selector) {
  return getNodeAndSetValue(handle, name, value, selector);
}

oviErr oviSetFeatureString(std::uint64_t handle, const char* name, const char* value, std::uint32_t selector) {
  if (value == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  if (const oviErr refused = checkArguments(handle, name); refused != OVI_SUCCESS)
    return refused;
  FoundNode found;
  const oviErr lookup = getBaseNode(handle, name, found, selector);
  if (GenApi::IEnumeration* const enumeration = asEnumeration(found.node))
    return setEntry(*enumeration, "OVI::oviSetFeatureString", name, value);
  std::string room;
  const std::string_view text = platform::viewInUtf8(value, room);
  return writeNode(lookup, found, name, GenICam::gcstring(text.data(), text.size()));
}

oviErr oviSetFeatureEnum(std::uint64_t handle, const char* name, const char* entryName, std::uint32_t selector) {
  if (entryName == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  if (const oviErr refused = checkArguments(handle, name); refused != OVI_SUCCESS)
    return refused;
  TypedNode<GenApi::IEnumeration> enumeration;
  if (!isEnumeration(handle, name, enumeration, selector))
    return OVI_ERR_NOT_FOUND;
  return setEntry(*enumeration.value, "OVI::oviSetFeatureEnum", name, entryName);
}

oviErr oviExecuteCommand(std::uint64_t handle, const char* name, std::uint32_t selector) {
  constexpr const char* kSite = "OVI::oviExecuteCommand";
  if (const oviErr refused = checkArguments(handle, name); refused != OVI_SUCCESS)
    return refused;
  TypedNode<GenApi::ICommand> command;
  genGetNode(handle, name, command, selector);
  if (command.value == nullptr) {
    logCommandFailure(kSite, name, "Bad node for device!");
    return OVI_ERR_NOT_FOUND;
  }
  return caught(
      [&]() -> oviErr {
        command.value->Execute(true);
        return OVI_SUCCESS;
      },
      [&](const char* text) { logCommandFailure(kSite, name, text); });
}

oviErr oviIsCommandActive(std::uint64_t handle, const char* name, bool* active, std::uint32_t selector) {
  constexpr const char* kSite = "OVI::oviIsCommandActive";
  if (active == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  if (const oviErr refused = checkArguments(handle, name); refused != OVI_SUCCESS)
    return refused;
  TypedNode<GenApi::ICommand> command;
  if (const oviErr code = genGetNode(handle, name, command, selector); code != OVI_SUCCESS) {
    logCommandFailure(kSite, name, "Bad node for device!");
    return code;
  }
  return caught(
      [&]() -> oviErr {
        *active = !command.value->IsDone(true);
        return OVI_SUCCESS;
      },
      [&](const char* text) { logCommandFailure(kSite, name, text); });
}

oviErr oviGetFeatureReg(std::uint64_t handle, const char* name, std::uint8_t* buffer, std::int64_t* length,
                        std::uint32_t selector) {
  if (name == nullptr || length == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  TypedNode<GenApi::IRegister> node;
  if (const oviErr code = genGetNode(handle, name, node, selector); code != OVI_SUCCESS)
    return code;
  return caught(
      [&]() -> oviErr {
        if (*length == 0 || buffer == nullptr)
          *length = node.value->GetLength();
        else  // A buffer that is longer than the register is filled as far as the register goes.
          node.value->Get(buffer, std::min(*length, node.value->GetLength()), false, false);
        return OVI_SUCCESS;
      },
      [&](const char* text) { logRegisterFailure("OVI::oviGetFeatureReg", name, text); });
}

oviErr oviSetFeatureReg(std::uint64_t handle, const char* name, const std::uint8_t* buffer, std::int64_t length,
                        std::uint32_t selector) {
  if (name == nullptr || buffer == nullptr || length <= 0)
    return OVI_ERR_INVALID_PARAMETER;
  TypedNode<GenApi::IRegister> node;
  if (const oviErr code = genGetNode(handle, name, node, selector); code != OVI_SUCCESS)
    return code;
  return caught(
      [&]() -> oviErr {
        node.value->Set(buffer, length, true);
        return OVI_SUCCESS;
      },
      [&](const char* text) { logRegisterFailure("OVI::oviSetFeatureReg", name, text); });
}

}  // namespace OVI
