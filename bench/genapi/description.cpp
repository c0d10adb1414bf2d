// Generates descriptions.
#include "description.h"

namespace bench {
namespace {

std::string element(const std::string& name, const std::string& text) {
  return "<" + name + ">" + text + "</" + name + ">\n";
}
std::string open(const std::string& kind, const std::string& name) {
  return "<" + kind + " Name=\"" + name + "\" NameSpace=\"Custom\">\n";
}
std::string close(const std::string& kind) {
  return "</" + kind + ">\n";
}

std::string texts(const std::string& name) {
  return element("ToolTip", "What " + name + " does, in a short sentence as cameras have it.") +
         element("Description", "A longer text about " + name +
                                    ", which says in detail when it may be changed and what follows from it.") +
         element("DisplayName", name) + element("Visibility", "Expert");
}

std::string registerElements(std::size_t address, const char* cachable) {
  return element("Address", std::to_string(address)) + element("Length", "4") + element("AccessMode", "RW") +
         element("pPort", "Device") + element("Cachable", cachable);
}

constexpr std::size_t kNodesPerGroup = 14;
constexpr std::size_t kBytesPerGroup = 32;

// Features and the nodes behind them.
std::string group(std::size_t index) {
  const std::string n = std::to_string(index);
  const std::size_t address = index * kBytesPerGroup;
  return open("Integer", "Integer" + n) + texts("Integer" + n) + element("pIsLocked", "Locked" + n) +
         element("pValue", "IntegerReg" + n) + element("Min", "0") + element("Max", "4294967295") +
         element("Representation", "Linear") + close("Integer") + open("IntReg", "IntegerReg" + n) +
         registerElements(address, "WriteThrough") + element("Sign", "Unsigned") +
         element("Endianess", "LittleEndian") + close("IntReg") + open("MaskedIntReg", "Locked" + n) +
         registerElements(address + 4, "WriteThrough") + element("Bit", "31") + element("Sign", "Unsigned") +
         element("Endianess", "LittleEndian") + close("MaskedIntReg") + open("Enumeration", "Enumeration" + n) +
         texts("Enumeration" + n) + "<EnumEntry Name=\"Off\" NameSpace=\"Custom\">\n" + element("Value", "0") +
         close("EnumEntry") + "<EnumEntry Name=\"Once\" NameSpace=\"Custom\">\n" + element("Value", "1") +
         close("EnumEntry") + "<EnumEntry Name=\"Continuous\" NameSpace=\"Custom\">\n" + element("Value", "2") +
         close("EnumEntry") + "<EnumEntry Name=\"Custom\" NameSpace=\"Custom\">\n" + element("Value", "3") +
         close("EnumEntry") + element("pValue", "EnumerationReg" + n) + close("Enumeration") +
         open("IntReg", "EnumerationReg" + n) + registerElements(address + 8, "WriteThrough") +
         element("Sign", "Unsigned") + element("Endianess", "LittleEndian") + close("IntReg") +
         open("Float", "Float" + n) + texts("Float" + n) + element("pValue", "Converter" + n) + element("Unit", "us") +
         element("Representation", "Linear") + close("Float") + open("Converter", "Converter" + n) +
         element("FormulaTo", "FROM / 10") + element("FormulaFrom", "TO * 10") + element("pValue", "FloatReg" + n) +
         element("Slope", "Increasing") + close("Converter") + open("IntReg", "FloatReg" + n) +
         registerElements(address + 12, "WriteThrough") + element("Sign", "Unsigned") +
         element("Endianess", "LittleEndian") + close("IntReg") + open("IntReg", "Uncached" + n) +
         registerElements(address + 16, "NoCache") + element("Sign", "Unsigned") +
         element("Endianess", "LittleEndian") + close("IntReg");
}

}  // namespace

std::string makeDescription(std::size_t nodes, std::size_t dependents) {
  const std::size_t fixed = 3 + dependents;
  const std::size_t groups = nodes > fixed + kNodesPerGroup ? (nodes - fixed) / kNodesPerGroup : 1;
  std::string xml =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
      "<RegisterDescription ModelName=\"Bench\" VendorName=\"Ovi\" ToolTip=\"" +
      std::to_string(nodes) +
      " nodes\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" "
      "SchemaSubMinorVersion=\"0\" "
      "MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" "
      "ProductGuid=\"11111111-2222-3333-4444-555555555555\" "
      "VersionGuid=\"66666666-7777-8888-9999-AAAAAAAAAAAA\" xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">\n";
  xml += open("Category", "Root") + element("pFeature", "All") + close("Category") + open("Category", "All");
  for (std::size_t i = 0; i < groups; ++i) {
    for (const char* kind : {"Integer", "Enumeration", "Float"})
      xml += element("pFeature", kind + std::to_string(i));
  }
  xml += close("Category");
  for (std::size_t i = 0; i < groups; ++i)
    xml += group(i);
  for (std::size_t i = 0; i < dependents; ++i)
    xml += open("IntSwissKnife", "Dependent" + std::to_string(i)) + "<pVariable Name=\"A\">Integer0</pVariable>\n" +
           element("Formula", "A * 2 + " + std::to_string(i)) + close("IntSwissKnife");
  return xml + open("Port", "Device") + close("Port") + "</RegisterDescription>\n";
}

}  // namespace bench
