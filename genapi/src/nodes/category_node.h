// Category nodes: the branches of the feature tree.
#pragma once

#include "nodes/value_node.h"

namespace GenApiEngine {

class CategoryNode final : public ValueNode<Api::ICategory> {
 public:
  using ValueNode::ValueNode;

  void GetFeatures(Api::FeatureList_t& features) const override;

 protected:
  /// A category is there when one of its features is.
  EAccessMode naturalAccess() override;
  bool obeysGuards() const override { return false; }
  /// As visible as its most visible feature.
  Api::EVisibility ownVisibility() override;
  std::string textValue(ReadFlags flags) override;
  void setText(std::string_view text, bool verify) override;
};

}  // namespace GenApiEngine
