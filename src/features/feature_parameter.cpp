// Everything about one feature in one record.
#include "features/feature_parameter.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "core/bounded_copy.h"
#include "features/invalidation.h"
#include "features/memory.h"
#include "gentl/device.h"
#include "gentl/guard.h"
#include "platform/platform.h"
#include "typed_node.h"

namespace OVI {
namespace {

constexpr std::uint32_t kNotAvailable = 1;
constexpr std::uint32_t kWriteOnly = 4;

/** A table from the engine's numbers, which count from 0, to the record's. */
template<std::size_t Size>
constexpr std::uint32_t mapped(const std::array<std::uint32_t, Size>& table, int value, std::uint32_t otherwise) {
  const auto index = static_cast<std::size_t>(value);
  return index < Size ? table[index] : otherwise;
}

constexpr std::array<std::uint32_t, 11> kFeatureTypes = {
    OVI_FEATURE_UNKNOWN,  OVI_FEATURE_UNKNOWN,     OVI_FEATURE_INTEGER,   OVI_FEATURE_BOOLEAN,
    OVI_FEATURE_COMMAND,  OVI_FEATURE_FLOAT,       OVI_FEATURE_STRING,    OVI_FEATURE_REGISTER,
    OVI_FEATURE_CATEGORY, OVI_FEATURE_ENUMERATION, OVI_FEATURE_ENUM_ENTRY};
constexpr std::array<std::uint32_t, 5> kAccessModes = {1, 1, 4, 2, 3};
constexpr std::array<std::uint32_t, 4> kVisibilities = {1, 2, 3, 5};  // Invisible is 5; there is no 4.

struct NamedValue {
  std::string_view name;
  std::uint32_t value;
};
constexpr std::array kNotations = {NamedValue{"Fixed", 1}, NamedValue{"Scientific", 2}};
constexpr std::array kRepresentations = {
    NamedValue{"Linear", 0},    NamedValue{"Logarithmic", 1}, NamedValue{"Boolean", 2},   NamedValue{"PureNumber", 3},
    NamedValue{"HexNumber", 4}, NamedValue{"IPV4Address", 5}, NamedValue{"MACAddress", 6}};

template<class Table>
std::uint32_t named(const Table& table, std::string_view name) {
  for (const NamedValue& entry : table) {
    if (entry.name == name)
      return entry.value;
  }
  return 0;
}

/** Several readings of one node: all are attempted, the first failure is the result. */
class FirstFailure {
 public:
  void operator()(oviErr code) {
    if (code_ == OVI_SUCCESS)
      code_ = code;
  }
  oviErr code() const { return code_; }

 private:
  oviErr code_ = OVI_SUCCESS;
};

/** Runs one reading. GenTL exceptions pass: the whole record ends with them. */
template<class Read>
oviErr reading(const char* site, const char* failure, Read&& read) {
  try {
    read();
    return OVI_SUCCESS;
  } catch (const GenICam::GenericException& error) {
    OVI_LOG_ERROR(site) << failure << error.GetDescription();
    return OVI_ERR_UNKNOWN;
  }
}

template<class T, class Value>
oviErr getFeatureVal(T& node, GenApi::INode& base, Value& out) {
  constexpr const char* kSite = "getFeatureVal";
  try {
    out = node.GetValue(false, GlobalState::instance().featureCachingDisabled());
    return OVI_SUCCESS;
  } catch (const GenICam::AccessException& error) {
    OVI_LOG_WARNING(kSite) << "Access to feature denied, could not get value! Feature name: " << base.GetName().c_str()
                           << error.GetDescription();
    return OVI_ERR_NO_ACCESS;
  } catch (const GenICam::GenericException& error) {
    OVI_LOG_ERROR(kSite) << "Failed to get feature value! Feature name: " << base.GetName().c_str()
                         << error.GetDescription();
    return OVI_ERR_UNKNOWN;
  }
}

template<class T, class Value>
oviErr getFeatureMin(T& node, Value& out) {
  return reading("getFeatureMin", "Failed to get feature minimum! Error: ", [&] { out = node.GetMin(); });
}

template<class T, class Value>
oviErr getFeatureMax(T& node, Value& out) {
  return reading("getFeatureMax", "Failed to get feature maximum! Error: ", [&] { out = node.GetMax(); });
}

oviErr getFeatureInc(GenApi::IInteger& node, std::int64_t& out) {
  return reading("getFeatureInc", "Failed to get feature increment! Error: ", [&] { out = node.GetInc(); });
}

oviErr getFeatureInc(GenApi::IFloat& node, double& out) {
  return reading("getFeatureInc",
                 "Failed to get feature increment! Error: ", [&] { out = node.HasInc() ? node.GetInc() : 0.0; });
}

template<class T, class Value>
oviErr fillNumber(T& node, GenApi::INode& base, Value& value, Value& inc, Value& min, Value& max) {
  FirstFailure result;
  result(getFeatureVal(node, base, value));
  result(getFeatureInc(node, inc));
  result(getFeatureMax(node, max));
  result(getFeatureMin(node, min));
  return result.code();
}

// One function for each interface that has a value.

oviErr fillInteger(oviFeatureParameter& record, GenApi::INode& base) {
  auto& node = *GenApi::CIntegerPtr(&base);
  return fillNumber(node, base, record.intValue, record.intInc, record.intMin, record.intMax);
}

oviErr fillFloat(oviFeatureParameter& record, GenApi::INode& base) {
  auto& node = *GenApi::CPointer<GenApi::IFloat>(&base);
  return fillNumber(node, base, record.floatValue, record.floatInc, record.floatMin, record.floatMax);
}

oviErr fillBoolean(oviFeatureParameter& record, GenApi::INode& base) {
  return getFeatureVal(*GenApi::CBooleanPtr(&base), base, record.intValue);
}

oviErr fillString(oviFeatureParameter& record, GenApi::INode& base) {
  constexpr const char* kSite = "nodeToFeatureParameter";
  auto& node = *GenApi::CStringPtr(&base);
  FirstFailure result;
  result(reading(kSite, "Failed to get feature value! Error: ", [&] {
    std::string room;
    boundedCopy(record.stringValue, platform::viewFromUtf8(node.GetValue(false, false).c_str(), room));
  }));
  result(reading(kSite,
                 "Failed to get max string length! Error: ", [&] { record.maxStringLength = node.GetMaxLength(); }));
  return result.code();
}

oviErr fillEnumEntry(oviFeatureParameter& record, GenApi::INode& base) {
  auto& node = *GenApi::CEnumEntryPtr(&base);
  record.intValue = node.GetValue();
  boundedCopy(record.stringValue, node.GetSymbolic().c_str());
  return OVI_SUCCESS;
}

oviErr fillRegister(oviFeatureParameter& record, GenApi::INode& base) {
  auto& node = *GenApi::CRegisterPtr(&base);
  record.registerAddress = node.GetAddress();
  record.registerLength = node.GetLength();
  return OVI_SUCCESS;
}

/** Also for a write-only enumeration, which has entries to count and whose source may know its entry. */
oviErr fillEnumeration(oviFeatureParameter& record, GenApi::INode& base) {
  constexpr const char* kSite = "nodeToFeatureParameter";
  auto& node = *GenApi::CEnumerationPtr(&base);
  oviErr result = OVI_SUCCESS;
  const oviErr read = reading(kSite, "Failed to get current enum feature entry! Error: ", [&] {
    if (record.accessMode != kWriteOnly)
      record.intValue = node.GetIntValue(false, false);
    GenApi::NodeList_t entries;
    node.GetEntries(entries);
    for (GenApi::INode* const entry : entries)
      record.enumEntryCount += isUsable(*entry) ? 1 : 0;
    if (GenApi::IEnumEntry* const entry = node.GetCurrentEntry(false, false)) {
      boundedCopy(record.stringValue, entry->GetSymbolic().c_str());
    } else {
      OVI_LOG_ERROR(kSite)
          << "Could not get current enum entry for enumeration! Possibly an error in the XML feature node.";
      result = OVI_ERR_INVALID_PARAMETER;
    }
  });
  return read != OVI_SUCCESS ? read : result;
}

struct Filling {
  std::uint32_t featureType;
  bool evenWriteOnly;
  oviErr (*fill)(oviFeatureParameter& record, GenApi::INode& node);
};
constexpr std::array kFillings = {
    Filling{OVI_FEATURE_INTEGER, false, fillInteger},
    Filling{OVI_FEATURE_BOOLEAN, false, fillBoolean},
    Filling{OVI_FEATURE_FLOAT, false, fillFloat},
    Filling{OVI_FEATURE_STRING, false, fillString},
    Filling{OVI_FEATURE_ENUM_ENTRY, false, fillEnumEntry},
    Filling{OVI_FEATURE_REGISTER, false, fillRegister},
    Filling{OVI_FEATURE_ENUMERATION, true, fillEnumeration},
};

oviErr fillValues(oviFeatureParameter& record, GenApi::INode& node) {
  for (const Filling& filling : kFillings) {
    if (filling.featureType == record.featureType)
      return filling.evenWriteOnly || record.accessMode != kWriteOnly ? filling.fill(record, node) : OVI_SUCCESS;
  }
  return OVI_SUCCESS;
}

void fillNames(oviFeatureParameter& record, std::string_view name, std::string_view displayName,
               std::string_view toolTip) {
  boundedCopy(record.name, name);
  boundedCopy(record.displayName, displayName.empty() ? name : displayName);
  boundedCopy(record.toolTip, toolTip);
}

/** A feature keeps its texts at hand; other nodes, such as entries, compose them for each call. */
void fillIdentity(oviFeatureParameter& record, GenApi::INode& node, GenTLCpp::Feature* feature) {
  record.isFeature = node.IsFeature();
  record.featureType = featureTypeOf(node.GetPrincipalInterfaceType());
  record.visibility = mapped(kVisibilities, node.GetVisibility(), 1);
  record.accessMode = accessModeOf(node.GetAccessMode());
  if (feature != nullptr) {
    const GenTLCpp::FeatureTexts& texts = feature->getTexts();
    fillNames(record, feature->getName(), texts.displayName, texts.toolTip);
  } else {
    std::string displayName;
    std::string toolTip;
    fillNames(record, node.GetName(false).c_str(), platform::viewFromUtf8(node.GetDisplayName().c_str(), displayName),
              platform::viewFromUtf8(node.GetToolTip().c_str(), toolTip));
  }
}

/** The field stays as it is when the port does not answer. The device is at hand already: it is not looked up again. */
void fillByteOrder(oviFeatureParameter& record, const FoundNode& found, std::uint64_t handle, std::uint32_t selector) {
  if (selector != OVI_MODULE_REMOTE_DEVICE) {
    OVI::oviIsModuleLittleEndian(handle, static_cast<std::int32_t>(selector), &record.littleEndian);
    return;
  }
  guarded("nodeToFeatureParameter", Severity::Debug, "The port does not tell its byte order. Error: ", [&]() -> oviErr {
    record.littleEndian = !static_cast<GenTLCpp::Device&>(*found.module).getRemotePort(false)->isBigEndian();
    return OVI_SUCCESS;
  });
}

void fillDisplayProperties(oviFeatureParameter& record, const GenTLCpp::FeatureTexts& texts) {
  if (!texts.displayNotation.empty())
    record.displayNotation = named(kNotations, texts.displayNotation);
  if (!texts.displayPrecision.empty())
    record.displayPrecision = static_cast<std::uint8_t>(std::strtol(texts.displayPrecision.c_str(), nullptr, 10));
  if (!texts.unit.empty())
    boundedCopy(record.unit, texts.unit);
  if (!texts.representation.empty())
    record.representation = named(kRepresentations, texts.representation);
}

oviErr catching(const char* site, const auto& work) {
  try {
    return work();
  } catch (const GenTLCpp::GenTLException& error) {
    OVI_LOG_ERROR(site) << "Caught GenTL exception. Failed to get feature parameter! Error: " << error.what();
    return mapGenTLError(error.code());
  } catch (const GenICam::GenericException& error) {
    OVI_LOG_ERROR(site) << "Caught GeniCam exception. Failed to get feature parameter! Error: "
                        << error.GetDescription();
    return OVI_ERR_UNKNOWN;
  }
}

}  // namespace

std::uint32_t featureTypeOf(GenApi::EInterfaceType type) {
  return mapped(kFeatureTypes, type, OVI_FEATURE_UNKNOWN);
}

std::uint32_t accessModeOf(GenApi::EAccessMode mode) {
  return mapped(kAccessModes, mode, 0);
}

bool isUsable(GenApi::INode& node) {
  return GenApi::IsAvailable(node.GetAccessMode());
}

oviErr nodeToFeatureParameter(oviFeatureParameter* record, GenApi::INode* node, const FoundNode& found,
                              std::uint64_t handle, std::uint32_t selector) {
  if (node == nullptr || record == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  GenTLCpp::Feature* const feature = getFeatureFromModule(found.features, node);
  fillIdentity(*record, *node, feature);
  fillByteOrder(*record, found, handle, selector);
  if (record->accessMode <= kNotAvailable)
    return OVI_SUCCESS;
  if (!record->isFeature && record->featureType != OVI_FEATURE_ENUM_ENTRY)
    return OVI_SUCCESS;
  const oviErr result = fillValues(*record, *node);
  if (feature != nullptr)
    fillDisplayProperties(*record, feature->getTexts());
  return result;
}

oviErr oviGetFeatureParameter(std::uint64_t handle, const char* name, oviFeatureParameter* record,
                              std::uint32_t selector) {
  if (!isInitialized())
    return OVI_ERR_NOT_INITIALIZED;
  if (name == nullptr || record == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  std::memset(record, 0, sizeof *record);
  FoundNode found;
  if (const oviErr code = getBaseNode(handle, name, found, selector); code != OVI_SUCCESS)
    return code;
  return catching("OVI::oviGetFeatureParameter",
                  [&] { return nodeToFeatureParameter(record, found.node, found, handle, selector); });
}

oviErr oviGetFeatureAccessMode(std::uint64_t handle, const char* name, std::uint32_t* accessMode,
                               std::uint32_t selector) {
  if (!isInitialized())
    return OVI_ERR_NOT_INITIALIZED;
  if (name == nullptr || accessMode == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  FoundNode found;
  getBaseNode(handle, name, found, selector);
  // A name that is not found is not an error of its own: following the empty pointer throws, and that is what is told.
  return catching("OVI::oviGetFeatureAccessMode", [&]() -> oviErr {
    *accessMode = accessModeOf(GenApi::CNodePtr(found.node)->GetAccessMode());
    return OVI_SUCCESS;
  });
}

}  // namespace OVI
