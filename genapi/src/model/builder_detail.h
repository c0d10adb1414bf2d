// The two steps of building: records and properties out of the XML tree, then everything that links nodes.
#pragma once

#include <pugixml.hpp>

#include <bitset>
#include <chrono>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "model/model.h"
#include "model/text.h"

namespace GenApiEngine {

/// Warnings of one build, bounded.
class WarningList {
 public:
  void add(std::uint32_t line, std::string text);
  std::vector<ModelWarning> take() { return std::move(warnings_); }
  std::size_t suppressed() const { return suppressed_; }

 private:
  std::vector<ModelWarning> warnings_;
  std::size_t suppressed_ = 0;
};

/// Where the lines of the texts begin. Parsing in place destroys the line ends, so the texts are prepared once more
/// when somebody asks; most descriptions are loaded without a question.
class LineTable {
 public:
  LineTable(std::span<const std::string_view> texts, bool cutAtFirstEnd)
      : texts_(texts),
        cutAtFirstEnd_(cutAtFirstEnd) {}

  std::uint32_t lineOf(std::uint32_t offset) const { return positionOf(offset).line; }
  struct Position {
    std::uint32_t line, column;
  };
  /// Both counted from 1, within the document that holds the offset.
  Position positionOf(std::uint32_t offset) const;

 private:
  struct Document {
    std::size_t firstEnd;
    std::uint32_t offset;
  };
  void readTexts() const;

  std::span<const std::string_view> texts_;
  bool cutAtFirstEnd_;
  mutable std::vector<std::uint32_t> ends_;
  mutable std::vector<Document> documents_;
};

/// First step: the XML tree becomes records and properties.
class ModelBuilder {
 public:
  ModelBuilder(Model& model, const LineTable& lines, WarningList& warnings)
      : model_(model),
        lines_(lines),
        warnings_(warnings) {}

  /// False when the text cannot be parsed and might be with cutAtFirstEnd, with which it throws instead.
  static bool build(Model& model, std::span<const std::string_view> texts, bool cutAtFirstEnd);

 private:
  struct Span {
    std::uint32_t offset = 0;
    std::uint32_t length = 0;
  };
  using ElementSet = std::bitset<static_cast<std::size_t>(Element::Unknown) + 1>;
  struct Nested {
    pugi::xml_node xml;
    NodeKind kind;
    std::uint32_t property;
  };

  void addDocument(pugi::xml_node root, bool first);
  void readRoot(pugi::xml_node root);
  void addAny(pugi::xml_node xml, ElementMatch match);
  NodeIndex addNode(pugi::xml_node xml, NodeKind kind, NodeIndex owner, std::span<const Property> inherited = {});
  void completeRegister(pugi::xml_node xml, const NodeRecord& record, const ElementSet& present);
  void addStruct(pugi::xml_node xml);
  void emitAttributes(pugi::xml_node xml, NodeRecord& record);
  void emitChildren(pugi::xml_node xml, NodeKind kind, NodeRecord& record, std::vector<Nested>& nested);
  void emitChild(pugi::xml_node child, Element element, NodeKind kind, NodeRecord& record);
  void buildNested(const std::vector<Nested>& nested, NodeIndex owner);
  void checkRequired(NodeIndex index, const ElementSet& present);
  Property makeProperty(Element element, Span span);
  Span textOf(pugi::xml_node element);
  Span spanOf(const char* text) const;
  std::string nameOf(const NodeRecord& record) const { return std::string(model_.name(record)); }
  // Piece by piece: "'" + nameOf(record) makes gcc 12 warn of an overlap that is none.
  std::string quotedNameOf(const NodeRecord& record) const {
    std::string text = "'";
    text += model_.name(record);
    return text += '\'';
  }
  void warn(pugi::xml_node xml, std::string text);

  Model& model_;
  const LineTable& lines_;
  WarningList& warnings_;
  std::vector<std::uint8_t> documentOfNode_;
  std::uint8_t document_ = 0;
};

/// Second step: names, references, dependents, features, cycles.
class ModelLinker {
 public:
  ModelLinker(Model& model, const LineTable& lines, WarningList& warnings, const std::vector<std::uint8_t>& documents)
      : model_(model),
        lines_(lines),
        warnings_(warnings),
        documentOfNode_(documents) {}

  void link();

 private:
  void indexNames();
  bool insertName(NodeIndex index, std::string_view full);
  Model::IndexSlot slotOf(std::uint32_t hash, NodeIndex index) const;
  NodeIndex resolveDuplicate(NodeIndex first, NodeIndex second);
  void mergeFeatures(NodeIndex into, NodeIndex from);
  void removeDropped();
  NodeIndex defaultPort() const;
  void resolveReferences();
  void collectDependents();
  void markFeatures();
  void markCycles();
  void collectLists();
  void warn(const NodeRecord& node, std::string text);

  Model& model_;
  const LineTable& lines_;
  WarningList& warnings_;
  const std::vector<std::uint8_t>& documentOfNode_;
  std::vector<bool> dropped_;
  bool anyDropped_ = false;
};

}  // namespace GenApiEngine
