// The two steps of building: records and properties out of the XML tree, then everything that links nodes.
#pragma once

#include <pugixml.hpp>

#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/limits.h"
#include "model/line_table.h"
#include "model/model.h"
#include "model/text.h"

namespace GenApiEngine {

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
  struct Nested {
    pugi::xml_node xml;
    NodeKind kind;
    std::uint32_t property;
  };
  // A node whose element is being read.
  struct Draft {
    Element element = Element::Node;  // its kind, or StructReg for what the entries have in common
    NodeRecord record;
    ElementSet present;          // the elements of its properties
    std::vector<Nested> nested;  // nodes within it, which become nodes of their own after it
  };

  void reserve();
  void addDocument(pugi::xml_node root, bool first);
  void readRoot(pugi::xml_node root);
  void addAny(pugi::xml_node xml, ElementMatch match);
  NodeIndex addNode(pugi::xml_node xml, NodeKind kind, NodeIndex owner, std::span<const Property> inherited = {});
  void completeRegister(pugi::xml_node xml, Draft& draft);
  void addStruct(pugi::xml_node xml);
  void emitAttributes(pugi::xml_node xml, Draft& draft);
  void emitChildren(pugi::xml_node xml, Draft& draft);
  void emitOther(pugi::xml_node child, Element element, Draft& draft);
  void emitAttributesOfChild(pugi::xml_node child, Draft& draft);
  std::optional<std::uint32_t> addNumber(pugi::xml_node child, Element element, Span span, Draft& draft);
  Property& emit(Draft& draft, Element element, Span text) {
    draft.present.add(element);
    const std::uint32_t lengthAndElement =
        (std::min(text.length, kMaxTextLength) << 8) | static_cast<std::uint32_t>(element);
    return model_.properties_.emplace_back(Property{text.offset, lengthAndElement, 0, kNoNode});
  }
  void buildNested(const std::vector<Nested>& nested, NodeIndex owner);
  void checkRequired(NodeIndex index, const ElementSet& present);
  void checkIndices(NodeRecord& record);
  // Without text the span is empty; its offset then means nothing.
  Span textOf(pugi::xml_node element) const {
    if (const pugi::xml_node first = element.first_child()) {
      return joinedTextOf(element, first);
    }
    const char* const text = element.value();
    if (*text == '\0') {
      return {};
    }
    // The parser has cut blanks off; one that is written as an entity may still stand in front.
    const std::size_t length = textLength(text);
    return isBlank(*text)
               ? spanOf({text, length})
               : Span{static_cast<std::uint32_t>(text - model_.text_.get()), static_cast<std::uint32_t>(length)};
  }
  Span joinedTextOf(pugi::xml_node element, pugi::xml_node first) const;
  Span spanOf(std::string_view text) const {
    const std::string_view trimmed = trim(text);
    return {static_cast<std::uint32_t>(trimmed.data() - model_.text_.get()),
            static_cast<std::uint32_t>(trimmed.size())};
  }
  std::string nameOf(const NodeRecord& record) const { return std::string(model_.name(record)); }
  // Piece by piece: "'" + nameOf(record) makes gcc 12 warn of an overlap that is none.
  std::string quotedNameOf(const NodeRecord& record) const {
    std::string text = "'";
    text += model_.name(record);
    return text += '\'';
  }
  void warnRepeated(pugi::xml_node xml, pugi::xml_attribute attribute);
  void warn(pugi::xml_node xml, std::string text);

  Model& model_;
  const LineTable& lines_;
  WarningList& warnings_;
  std::vector<std::uint8_t> documentOfNode_;
  std::uint8_t document_ = 0;
  ElementFinder finder_;
  std::size_t repeatedNameBytes_ = 0;  // What entries have taken over of the names of their enumerations.
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
  // One node's influence on another.
  struct Edge {
    NodeIndex on;
    Dependent dependent;
  };

  void indexNames();
  bool insertName(NodeIndex index, std::string_view full);
  Model::IndexSlot slotOf(std::uint32_t hash, NodeIndex index) const;
  NodeIndex resolveDuplicate(NodeIndex first, NodeIndex second);
  void mergeCategories();
  void removeDropped();
  void keepInnerFormulas();
  NodeIndex defaultPort() const;
  void resolveReferences();
  bool resolve(NodeRecord& record, Property& property, NodeIndex impliedPort);
  bool suits(const NodeRecord& record, const Property& property) const;
  void collectDependents();
  void markFeatures();
  void markCycles();
  void warn(const NodeRecord& node, std::string text);

  Model& model_;
  const LineTable& lines_;
  WarningList& warnings_;
  const std::vector<std::uint8_t>& documentOfNode_;
  std::vector<std::pair<NodeIndex, NodeIndex>> merges_;  // a category and another of its name, which joins it
  std::vector<Edge> edges_;                              // in the order of the references
  std::vector<bool> dropped_;
  bool anyDropped_ = false;
  std::string_view lastPortName_;  // most registers have the port of the one before
  NodeIndex lastPort_ = kNoNode;
};

}  // namespace GenApiEngine
