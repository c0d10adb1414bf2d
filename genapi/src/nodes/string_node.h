// String nodes: a text that lies in the node or in another one.
#pragma once

#include "model/text.h"
#include "nodes/string_base.h"

namespace GenApiEngine {

class StringNode final : public StringBase {
 public:
  StringNode(NodeMap& map, NodeIndex index)
      : StringBase(map, index),
        source_(propertyNode(Element::pValue)),
        constant_(toUtf8(propertyText(Element::Value))) {}

  std::int64_t maxLength() override;
  NodeCore* valueSource() const override { return other(source_); }

 protected:
  void fetchString(std::string& out, ReadFlags flags) override;
  void storeString(std::string_view value, bool verify) override;
  EAccessMode naturalAccess() override;

 private:
  NodeIndex source_;
  std::string constant_;
};

}  // namespace GenApiEngine
