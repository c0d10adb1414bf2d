// Command nodes: a value that is written to start something and that changes when it is done.
#pragma once

#include "nodes/value_node.h"
#include "nodes/value_source.h"

namespace GenApiEngine {

class CommandNode final : public ValueNode<Api::ICommand> {
 public:
  CommandNode(NodeMap& map, NodeIndex index) : ValueNode(map, index), source_(*this) {}

  void Execute(bool verify) override;
  void operator()() override { CommandNode::Execute(true); }
  bool IsDone(bool verify) override;

  std::int64_t readInt(ReadFlags flags) override;
  double readFloat(ReadFlags flags) override { return static_cast<double>(readInt(flags)); }
  void writeInt(std::int64_t value, bool verify) override;
  void writeFloat(double value, bool verify) override { writeInt(value != 0.0 ? 1 : 0, verify); }
  NodeCore* valueSource() const override { return source_.node(*this); }
  void checkErrors() override;
  bool isPolledNow() override { return executing_; }

 protected:
  std::string textValue(ReadFlags flags) override;
  void setText(std::string_view text, bool verify) override;
  EAccessMode naturalAccess() override { return Api::Combine(source_.access(*this), neededAccessOfOperands()); }

 private:
  void execute(bool verify);
  std::int64_t commandValue();
  /// Asks the source, past all caches.
  bool readDone();

  mutable ValueSource<std::int64_t> source_;
  bool executing_ = false;
};

}  // namespace GenApiEngine
