// All that a node answers, as data.
#include "description/node_report.h"

#include <GenApi/EnumClasses.h>
#include <GenApi/GenApi.h>

#include <ovi_genapi/diagnostics.h>
#include <cmath>
#include <cstring>
#include <vector>

#include "hex.h"

namespace tool {

namespace {

using nlohmann::ordered_json;

std::string textOf(const GenICam::gcstring& text) {
  return {text.c_str(), text.size()};
}

template<class Class, class Value>
std::string enumText(Value value) {
  return textOf(Class::ToString(value));
}

template<class List>
ordered_json namesOf(const List& nodes) {
  ordered_json names = ordered_json::array();
  for (auto* item : nodes) {
    auto* const node = dynamic_cast<GenApi::INode*>(item);
    if (node != nullptr)
      names.push_back(textOf(node->GetName()));
  }
  return names;
}

// The answers of one node.
class Answers {
 public:
  explicit Answers(GenApi::INode& node) : node_(node) {}

  template<class Question>
  void ask(const char* name, Question&& question) {
    try {
      json_[name] = question();
    } catch (const GenICam::GenericException& error) {
      errors_[name] = exceptionText(error.what());
    }
  }

  template<class Question>
  void askText(const char* name, Question&& question) {
    ask(name, [&] { return textOf(question()); });
    if (const auto found = json_.find(name);
        found != json_.end() && found->is_string() && found->template get_ref<const std::string&>().empty())
      json_.erase(found);
  }

  void askNode() {
    json_["name"] = textOf(node_.GetName());
    json_["kind"] = GenApiEngine::nodeKindOf(node_);
    json_["interface"] = textOf(GenApi::GetInterfaceName(&node_));
    ask("access", [&] { return enumText<GenApi::EAccessModeClass>(node_.GetAccessMode()); });
    readable_ = json_.value("access", "") == "RO" || json_.value("access", "") == "RW";
    implemented_ = json_.value("access", "NI") != "NI";
    ask("visibility", [&] { return enumText<GenApi::EVisibilityClass>(node_.GetVisibility()); });
    ask("caching", [&] { return enumText<GenApi::ECachingModeClass>(node_.GetCachingMode()); });
    ask("accessCacheable", [&] { return node_.IsAccessModeCacheable() == GenApi::Yes; });
    ask("pollingTime", [&] { return node_.GetPollingTime(); });
    ask("streamable", [&] { return node_.IsStreamable(); });
    ask("feature", [&] { return node_.IsFeature(); });
    ask("deprecated", [&] { return node_.IsDeprecated(); });
    ask("nameSpace", [&] { return enumText<GenApi::ENameSpaceClass>(node_.GetNameSpace()); });
    ask("displayName", [&] { return textOf(node_.GetDisplayName()); });
    askText("toolTip", [&] { return node_.GetToolTip(); });
    askText("description", [&] { return node_.GetDescription(); });
    askText("docuURL", [&] { return node_.GetDocuURL(); });
    askText("eventID", [&] { return node_.GetEventID(); });
    if (GenApi::INode* const alias = node_.GetAlias())
      json_["alias"] = textOf(alias->GetName());
    if (GenApi::INode* const alias = node_.GetCastAlias())
      json_["castAlias"] = textOf(alias->GetName());
  }

  void askSelectors() {
    const auto* const selector = dynamic_cast<GenApi::ISelector*>(&node_);
    if (selector == nullptr)
      return;
    ask("selectors", [&] {
      GenApi::FeatureList_t features;
      selector->GetSelectingFeatures(features);
      return namesOf(features);
    });
    ask("selected", [&] {
      GenApi::FeatureList_t features;
      selector->GetSelectedFeatures(features);
      return namesOf(features);
    });
  }

  void askInteger(GenApi::IInteger& integer) {
    if (readable_)
      ask("value", [&] { return integer.GetValue(); });
    askLimits(integer, [](std::int64_t value) { return ordered_json(value); });
    ask("unit", [&] { return textOf(integer.GetUnit()); });
    ask("representation", [&] { return enumText<GenApi::ERepresentationClass>(integer.GetRepresentation()); });
  }

  void askFloat(GenApi::IFloat& number) {
    if (readable_)
      ask("value", [&] { return numberJson(number.GetValue()); });
    askLimits(number, numberJson);
    ask("unit", [&] { return textOf(number.GetUnit()); });
    ask("representation", [&] { return enumText<GenApi::ERepresentationClass>(number.GetRepresentation()); });
    ask("displayNotation", [&] { return enumText<GenApi::EDisplayNotationClass>(number.GetDisplayNotation()); });
    ask("displayPrecision", [&] { return number.GetDisplayPrecision(); });
  }

  void askEnumeration(GenApi::IEnumeration& enumeration) {
    if (readable_) {
      ask("value", [&] { return textOf(*enumeration); });
      ask("intValue", [&] { return enumeration.GetIntValue(); });
    }
    ask("entries", [&] {
      GenApi::NodeList_t entries;
      enumeration.GetEntries(entries);
      ordered_json list = ordered_json::array();
      for (GenApi::INode* entry : entries)
        list.push_back(entryJson(*entry));
      return list;
    });
  }

  void askRegister(GenApi::IRegister& bytes) {
    ask("address", [&] { return bytes.GetAddress(); });
    ask("length", [&] { return bytes.GetLength(); });
  }

  void askBytes(GenApi::IRegister& bytes) {
    constexpr std::int64_t kLongest = 1 << 20;
    const std::int64_t length = json_.value("length", std::int64_t{0});
    if (!readable_ || length <= 0)
      return;
    if (length > kLongest) {
      errors_["value"] = "too long to be shown";
      return;
    }
    ask("value", [&] {
      std::vector<std::uint8_t> content(static_cast<std::size_t>(length));
      bytes.Get(content.data(), length);
      return hexFromBytes(content);
    });
  }

  void askValue() {
    if (auto* const enumeration = dynamic_cast<GenApi::IEnumeration*>(&node_)) {
      askEnumeration(*enumeration);
    } else if (auto* const boolean = dynamic_cast<GenApi::IBoolean*>(&node_)) {
      if (readable_)
        ask("value", [&] { return boolean->GetValue(); });
    } else if (auto* const category = dynamic_cast<GenApi::ICategory*>(&node_)) {
      ask("features", [&] {
        GenApi::FeatureList_t features;
        category->GetFeatures(features);
        return namesOf(features);
      });
    } else if (auto* const command = dynamic_cast<GenApi::ICommand*>(&node_)) {
      if (implemented_)
        ask("done", [&] { return command->IsDone(false); });
    } else if (auto* const entry = dynamic_cast<GenApi::IEnumEntry*>(&node_)) {
      askEntry(*entry);
    } else if (node_.GetPrincipalInterfaceType() == GenApi::intfIFloat) {
      askFloat(dynamic_cast<GenApi::IFloat&>(node_));
    } else if (node_.GetPrincipalInterfaceType() == GenApi::intfIInteger) {
      askInteger(dynamic_cast<GenApi::IInteger&>(node_));
    } else if (auto* const text = dynamic_cast<GenApi::IString*>(&node_)) {
      if (readable_)
        ask("value", [&] { return textOf(text->GetValue()); });
      ask("maxLength", [&] { return text->GetMaxLength(); });
    }
    if (auto* const bytes = dynamic_cast<GenApi::IRegister*>(&node_)) {
      askRegister(*bytes);
      if (node_.GetPrincipalInterfaceType() == GenApi::intfIRegister)
        askBytes(*bytes);
    }
    if (auto* const value = dynamic_cast<GenApi::IValue*>(&node_);
        value != nullptr && readable_ && json_.contains("value") &&
        node_.GetPrincipalInterfaceType() != GenApi::intfIRegister)
      ask("text", [&] { return textOf(value->ToString()); });
  }

  void askProperties() {
    ask("properties", [&] {
      ordered_json properties = ordered_json::object();
      GenICam::gcstring_vector names;
      node_.GetPropertyNames(names);
      for (const GenICam::gcstring& name : names) {
        GenICam::gcstring value;
        GenICam::gcstring attribute;
        if (node_.GetProperty(name, value, attribute))
          properties[textOf(name)] = textOf(value);
      }
      return properties;
    });
  }

  ordered_json take() {
    if (!errors_.empty())
      json_["errors"] = std::move(errors_);
    return std::move(json_);
  }

  // An entry within its enumeration.
  static ordered_json entryJson(GenApi::INode& node) {
    Answers answers(node);
    answers.json_["node"] = textOf(node.GetName());
    if (auto* const entry = dynamic_cast<GenApi::IEnumEntry*>(&node)) {
      answers.json_["name"] = textOf(entry->GetSymbolic());
      answers.ask("value", [&] { return entry->GetValue(); });
    }
    answers.ask("access", [&] { return enumText<GenApi::EAccessModeClass>(node.GetAccessMode()); });
    answers.ask("displayName", [&] { return textOf(node.GetDisplayName()); });
    return answers.take();
  }

 private:
  void askEntry(GenApi::IEnumEntry& entry) {
    ask("symbolic", [&] { return textOf(entry.GetSymbolic()); });
    ask("value", [&] { return entry.GetValue(); });
    ask("numericValue", [&] { return numberJson(entry.GetNumericValue()); });
    ask("selfClearing", [&] { return entry.IsSelfClearing(); });
  }

  template<class Number, class ToJson>
  void askLimits(Number& number, ToJson&& toJson) {
    ask("min", [&] { return ordered_json(toJson(number.GetMin())); });
    ask("max", [&] { return ordered_json(toJson(number.GetMax())); });
    GenApi::EIncMode mode = GenApi::noIncrement;
    ask("incMode", [&] {
      mode = number.GetIncMode();
      return mode == GenApi::fixedIncrement  ? "fixedIncrement"
             : mode == GenApi::listIncrement ? "listIncrement"
                                             : "noIncrement";
    });
    if (mode == GenApi::fixedIncrement)
      ask("inc", [&] { return ordered_json(toJson(number.GetInc())); });
    if (mode == GenApi::listIncrement)
      ask("validValues", [&] {
        ordered_json list = ordered_json::array();
        const auto values = number.GetListOfValidValues();
        for (std::size_t i = 0; i < values.size(); ++i)
          list.push_back(toJson(values[i]));
        return list;
      });
  }

  GenApi::INode& node_;
  ordered_json json_;
  ordered_json errors_ = ordered_json::object();
  bool readable_ = false;
  bool implemented_ = true;
};

}  // namespace

nlohmann::ordered_json nodeJson(GenApi::INode& node) {
  Answers answers(node);
  answers.askNode();
  answers.askValue();
  answers.askSelectors();
  answers.askProperties();
  return answers.take();
}

std::string accessOf(GenApi::INode& node) {
  try {
    return enumText<GenApi::EAccessModeClass>(node.GetAccessMode());
  } catch (const GenICam::GenericException&) {
    return "??";
  }
}

nlohmann::ordered_json numberJson(double value) {
  if (std::isnan(value))
    return "NaN";
  if (std::isinf(value))
    return value > 0 ? "Infinity" : "-Infinity";
  return value;
}

std::string exceptionText(const std::string& what) {
  const std::size_t place = what.rfind(" (file '");
  return what.substr(0, place);
}

}  // namespace tool
