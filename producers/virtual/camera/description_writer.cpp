// Turns each declared feature into its nodes: the feature itself, its register, and knives for its formulas.
#include "description_writer.h"

#include <miniz.h>

#include <array>
#include <cctype>
#include <charconv>
#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <map>
#include <stdexcept>
#include <string_view>

namespace vcam {
namespace {

std::string escape(std::string_view text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += c;
    }
  }
  return result;
}

std::string hex(std::uint64_t value, int digits = 0) {
  std::array<char, 24> text{};
  std::snprintf(text.data(), text.size(), "%0*" PRIX64, digits, value);
  return text.data();
}

std::string decimal(double value) {
  std::array<char, 40> text{};
  char* end = text.data();
  for (int precision = 6; precision <= 17; ++precision) {
    // Not printf: the application's locale may write a comma.
    end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, precision).ptr;
    double read = 0.0;
    std::from_chars(text.data(), end, read);
    if (read == value) {
      break;
    }
  }
  return std::string(text.data(), end);
}

// "ExposureTime" becomes "Exposure Time", "LUTValueAll" "LUT Value All".
std::string spaced(const std::string& name) {
  const auto upper = [](char c) { return std::isupper(static_cast<unsigned char>(c)) != 0; };
  const auto lower = [](char c) { return std::islower(static_cast<unsigned char>(c)) != 0; };
  std::string result;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const bool wordStarts =
        i > 0 && upper(name[i]) && (lower(name[i - 1]) || (i + 1 < name.size() && lower(name[i + 1])));
    if (wordStarts && result.back() != ' ') {
      result += ' ';
    }
    result += name[i] == '_' ? ' ' : name[i];
  }
  return result;
}

// The same text gives the same GUID, a different one another.
std::string guidOf(std::string_view text) {
  std::array<std::uint64_t, 2> hash{0xCBF29CE484222325U, 0x84222325CBF29CE4U};
  for (const char c : text) {
    for (std::uint64_t& h : hash) {
      h = (h ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
    }
    hash[1] += hash[0] >> 7U;
  }
  const std::string digits = hex(hash[0], 16) + hex(hash[1], 16);
  return digits.substr(0, 8) + '-' + digits.substr(8, 4) + '-' + digits.substr(12, 4) + '-' + digits.substr(16, 4) +
         '-' + digits.substr(20, 12);
}

}  // namespace

class DescriptionWriter {
 public:
  DescriptionWriter(const FeatureMap& map, const DescriptionHeader& header) : map_(map), header_(header) {
    for (const Feature& feature : map.features()) {
      for (const std::string& selector : feature.selectors_) {
        selected_[selector].push_back(feature.name_);
      }
    }
  }

  std::string run() {
    const std::string guidSeed = header_.vendor + '/' + header_.model;
    out_ =
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<RegisterDescription ModelName=\"" + escape(header_.model) +
        "\" VendorName=\"" + escape(header_.vendor) + "\" ToolTip=\"" + escape(header_.toolTip) +
        "\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" "
        "MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" ProductGuid=\"" +
        guidOf(guidSeed) + "\" VersionGuid=\"" + guidOf(guidSeed + "/1.0.0") +
        "\" xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">\n";
    categories();
    for (const Feature& feature : map_.features()) {
      node(feature);
    }
    out_ += map_.extraXml();
    ports();
    out_ += "</RegisterDescription>\n";
    return std::move(out_);
  }

 private:
  void tag(std::string_view name, std::string_view text) {
    out_.append("    <").append(name).append(">").append(escape(text)).append("</").append(name).append(">\n");
  }
  void tagIf(std::string_view name, std::string_view text) {
    if (!text.empty()) {
      tag(name, text);
    }
  }
  void open(std::string_view kind, std::string_view name, bool standard) {
    out_.append("  <").append(kind).append(" Name=\"").append(name).append("\" NameSpace=\"");
    out_.append(standard ? "Standard" : "Custom").append("\">\n");
    openKind_ = kind;
  }
  void close() { out_.append("  </").append(openKind_).append(">\n"); }

  void categories() {
    open("Category", "Root", true);
    tag("ToolTip", "All features of the camera");
    categoryMembers("");
    close();
    for (const Category& category : map_.categories()) {
      open("Category", category.name, true);
      tag("ToolTip", category.toolTip);
      tag("DisplayName", spaced(category.name));
      categoryMembers(category.name);
      close();
    }
  }

  void categoryMembers(const std::string& name) {
    for (const Category& category : map_.categories()) {
      if (category.parent == name) {
        tag("pFeature", category.name);
      }
    }
    for (const Feature& feature : map_.features()) {
      if (!name.empty() && feature.category_ == name) {
        tag("pFeature", feature.name_);
      }
    }
    for (const auto& [category, feature] : map_.extraFeatures()) {
      if (category == name) {
        tag("pFeature", feature);
      }
    }
  }

  void ports() {
    open("Port", header_.portName, true);
    tag("ToolTip", "The register space of the camera");
    close();
    for (const DataPort& port : map_.ports()) {
      open("Port", port.name, false);
      tag(port.kind == DataPort::Kind::Event ? "EventID" : "ChunkID", hex(port.id, port.id > 0xFFFF ? 8 : 4));
      close();
    }
  }

  // Knives come before the node that uses them, so that the node is written in one go.
  void node(const Feature& f) {
    implemented_ = condition(f, f.implementedIf_, "_Implemented");
    available_ = condition(f, f.availableIf_, "_Available");
    locked_ = condition(f, f.lockedIf_, "_Locked");
    const bool hasLimits = f.step_ == 0 && (f.kind_ == FeatureKind::Integer || f.kind_ == FeatureKind::Float);
    min_ = hasLimits ? limit(f, f.min_, "Min") : std::string();
    max_ = hasLimits ? limit(f, f.max_, "Max") : std::string();
    inc_ = hasLimits ? limit(f, f.inc_, "Inc") : std::string();
    switch (f.kind_) {
      case FeatureKind::Integer:
        return integer(f);
      case FeatureKind::Float:
        return f.step_ != 0 ? converter(f) : floating(f);
      case FeatureKind::Boolean:
        return simple(f, "Boolean");
      case FeatureKind::Command:
        return command(f);
      case FeatureKind::Enumeration:
        return enumeration(f);
      case FeatureKind::String:
        return bare(f, "StringReg");
      case FeatureKind::Register:
        return bare(f, "Register");
    }
  }

  std::string condition(const Feature& f, const Formula& formula, const char* suffix) {
    if (formula.empty() || formula.isName()) {
      return formula.text();
    }
    return knife(f, formula, suffix, true);
  }

  // The element that states a limit.
  std::string limit(const Feature& f, const Formula& formula, const std::string& which) {
    if (formula.empty()) {
      return {};
    }
    const bool whole = f.kind_ == FeatureKind::Integer;
    if (formula.names().empty()) {
      const Formula::Lookup none = [](const std::string&) { return 0.0; };
      const std::string text = whole ? std::to_string(formula.integer(none)) : decimal(formula.floating(none));
      return "    <" + which + ">" + text + "</" + which + ">\n";
    }
    const std::string target = formula.isName() ? formula.text() : knife(f, formula, ("_" + which).c_str(), whole);
    return "    <p" + which + ">" + target + "</p" + which + ">\n";
  }

  std::string knife(const Feature& f, const Formula& formula, const char* suffix, bool whole) {
    const std::string name = f.name_ + suffix;
    open(whole ? "IntSwissKnife" : "SwissKnife", name, false);
    tag("Visibility", "Invisible");
    for (const std::string& variable : formula.names()) {
      out_ += "    <pVariable Name=\"" + variable + "\">" + variable + "</pVariable>\n";
    }
    tag("Formula", formula.text());
    close();
    return name;
  }

  void common(const Feature& f) {
    tag("ToolTip", f.toolTip_);
    tag("Description", f.description_.empty() ? f.toolTip_ : f.description_);
    tag("DisplayName", f.displayName_.empty() ? spaced(f.name_) : f.displayName_);
    tag("Visibility", f.visibility_);
    tagIf("pIsImplemented", implemented_);
    tagIf("pIsAvailable", available_);
    tagIf("pIsLocked", locked_);
  }

  void streamable(const Feature& f) {
    if (f.stored_) {
      tag("Streamable", "Yes");
    }
  }

  void selectedFeatures(const Feature& f) {
    if (const auto found = selected_.find(f.name_); found != selected_.end()) {
      for (const std::string& name : found->second) {
        tag("pSelected", name);
      }
    }
  }

  void registerElements(const Feature& f) {
    tag("Address", "0x" + hex(f.address_));
    for (std::size_t i = 0; i < f.selectors_.size() && !f.shared_; ++i) {
      out_ += "    <pIndex Offset=\"" + std::to_string(f.strides_[i] * f.length_) + "\">" + f.selectors_[i] +
              "_Reg</pIndex>\n";
    }
    tag("Length", std::to_string(f.length_));
    tag("AccessMode", f.access_ == Access::ReadOnly ? "RO" : f.access_ == Access::WriteOnly ? "WO" : "RW");
    tag("pPort", f.port_.empty() ? header_.portName : f.port_);
    if (f.port_.empty()) {
      tag("Cachable", f.cached_ && f.pollingMs_ == 0 ? "WriteThrough" : "NoCache");
    }
    if (f.pollingMs_ != 0) {
      tag("PollingTime", std::to_string(f.pollingMs_));
    }
    for (const std::string& name : f.invalidators_) {
      tag("pInvalidator", name);
    }
    if (f.stored_) {
      tag("pInvalidator", "UserSetLoad");
    }
  }

  void endianess() { tag("Endianess", map_.isBigEndian() ? "BigEndian" : "LittleEndian"); }

  void integerRegister(const Feature& f, const std::string& name) {
    open("IntReg", name, false);
    tag("Visibility", "Invisible");
    registerElements(f);
    tag("Sign", f.signed_ || f.step_ != 0 ? "Signed" : "Unsigned");
    endianess();
    close();
  }

  void integer(const Feature& f) {
    open("Integer", f.name_, f.standard_);
    common(f);
    streamable(f);
    tag("pValue", f.name_ + "_Reg");
    out_ += min_ + max_ + inc_;
    tagIf("Unit", f.unit_);
    tagIf("Representation", f.representation_);
    selectedFeatures(f);
    close();
    integerRegister(f, f.name_ + "_Reg");
  }

  void floating(const Feature& f) {
    open("Float", f.name_, f.standard_);
    common(f);
    streamable(f);
    tag("pValue", f.name_ + "_Reg");
    out_ += min_ + max_ + inc_;
    tagIf("Unit", f.unit_);
    tagIf("Representation", f.representation_);
    if (!f.notation_.empty()) {
      tag("DisplayNotation", f.notation_);
      tag("DisplayPrecision", std::to_string(f.precision_));
    }
    close();
    open("FloatReg", f.name_ + "_Reg", false);
    tag("Visibility", "Invisible");
    registerElements(f);
    endianess();
    close();
  }

  void converter(const Feature& f) {
    const Formula::Lookup none = [](const std::string&) { return 0.0; };
    const auto steps = [&](const Formula& formula) {
      return std::to_string(std::llround(formula.floating(none) / f.step_));
    };
    open("Converter", f.name_, f.standard_);
    common(f);
    streamable(f);
    tag("FormulaTo", "FROM / " + decimal(f.step_));
    tag("FormulaFrom", "TO * " + decimal(f.step_));
    tag("pValue", f.name_ + "_Raw");
    tagIf("Unit", f.unit_);
    tagIf("Representation", f.representation_);
    if (!f.notation_.empty()) {
      tag("DisplayNotation", f.notation_);
      tag("DisplayPrecision", std::to_string(f.precision_));
    }
    tag("Slope", "Increasing");
    close();
    open("Integer", f.name_ + "_Raw", false);
    tag("ToolTip", "The register behind " + f.name_);
    tag("Visibility", "Guru");
    tag("pValue", f.name_ + "_Reg");
    tag("Min", steps(f.min_));
    tag("Max", steps(f.max_));
    close();
    integerRegister(f, f.name_ + "_Reg");
  }

  void simple(const Feature& f, std::string_view kind) {
    open(kind, f.name_, f.standard_);
    common(f);
    streamable(f);
    tag("pValue", f.name_ + "_Reg");
    tag("OnValue", "1");
    tag("OffValue", "0");
    selectedFeatures(f);
    close();
    integerRegister(f, f.name_ + "_Reg");
  }

  void command(const Feature& f) {
    open("Command", f.name_, f.standard_);
    common(f);
    tag("pValue", f.name_ + "_Reg");
    tag("CommandValue", "1");
    if (f.pollingMs_ != 0) {
      tag("PollingTime", std::to_string(f.pollingMs_));
    }
    close();
    integerRegister(f, f.name_ + "_Reg");
  }

  void enumeration(const Feature& f) {
    std::vector<std::string> conditions;
    for (const EnumEntry& entry : f.entries_) {
      conditions.push_back(condition(f, entry.availableIf, ("_" + entry.name + "_Available").c_str()));
    }
    open("Enumeration", f.name_, f.standard_);
    common(f);
    streamable(f);
    for (std::size_t i = 0; i < f.entries_.size(); ++i) {
      const EnumEntry& entry = f.entries_[i];
      out_ +=
          "    <EnumEntry Name=\"" + entry.name + "\" NameSpace=\"" + (f.standard_ ? "Standard" : "Custom") + "\">\n";
      tagIf("ToolTip", entry.toolTip);
      tag("DisplayName", spaced(entry.name));
      tagIf("pIsAvailable", conditions[i]);
      tag("Value", std::to_string(entry.value));
      out_ += "    </EnumEntry>\n";
    }
    tag("pValue", f.name_ + "_Reg");
    selectedFeatures(f);
    close();
    integerRegister(f, f.name_ + "_Reg");
  }

  void bare(const Feature& f, std::string_view kind) {
    open(kind, f.name_, f.standard_);
    common(f);
    registerElements(f);
    close();
  }

  const FeatureMap& map_;
  const DescriptionHeader& header_;
  std::map<std::string, std::vector<std::string>> selected_;
  std::string out_;
  std::string openKind_;
  std::string implemented_;
  std::string available_;
  std::string locked_;
  std::string min_;
  std::string max_;
  std::string inc_;
};

std::string writeDescription(const FeatureMap& map, const DescriptionHeader& header) {
  return DescriptionWriter(map, header).run();
}

std::vector<std::byte> zipDescription(const std::string& text, const std::string& fileName) {
  mz_zip_archive archive{};
  void* bytes = nullptr;
  std::size_t size = 0;
  const bool done =
      mz_zip_writer_init_heap(&archive, 0, text.size() / 4) != 0 &&
      mz_zip_writer_add_mem(&archive, fileName.c_str(), text.data(), text.size(), MZ_BEST_COMPRESSION) != 0 &&
      mz_zip_writer_finalize_heap_archive(&archive, &bytes, &size) != 0;
  std::vector<std::byte> result;
  if (done) {
    const auto* const first = static_cast<const std::byte*>(bytes);
    result.assign(first, first + size);
    mz_free(bytes);
  }
  mz_zip_writer_end(&archive);
  if (!done) {
    throw std::runtime_error("The description " + fileName + " cannot be zipped");
  }
  return result;
}

}  // namespace vcam
