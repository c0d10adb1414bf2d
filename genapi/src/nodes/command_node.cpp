// Executing commands and finding out when they are done.
#include "nodes/command_node.h"

#include "model/text.h"

namespace GenApiEngine {

std::int64_t CommandNode::commandValue() {
  if (NodeCore* const node = other(propertyNode(Element::pCommandValue))) {
    return node->readInt({});
  }
  const Property* constant = property(Element::CommandValue);
  return constant != nullptr && map().model().hasNumber(*constant) ? map().model().integer(*constant) : 1;
}

void CommandNode::Execute(bool verify) {
  WriteCall call(*this, "Execute");
  execute(verify);
  call.finish(verify);
}

void CommandNode::execute(bool verify) {
  if (verify) {
    requireWritable();
  }
  const ValueDescent descent(*this, state_, kWriteBusy);
  source_.write(*this, commandValue(), verify);
  // What cannot be read back, and a value that only the node itself holds, is done at once.
  NodeCore* const source = source_.node(*this);
  executing_ = source != nullptr && Api::IsReadable(source->accessMode());
}

bool CommandNode::readDone() {
  NodeCore* const source = source_.node(*this);
  if (source == nullptr || !Api::IsReadable(source->accessMode())) {
    return true;
  }
  const ValueDescent descent(*this, state_, kValueBusy);
  return source->readInt({false, true}) != commandValue();
}

bool CommandNode::IsDone(bool verify) {
  WriteCall call(*this, "IsDone");
  if (!Api::IsImplemented(accessMode())) {
    NODE_FAIL(*this, AccessException, "Node is not implemented.");
  }
  const bool wasExecuting = executing_;
  if (executing_ && readDone()) {
    executing_ = false;
    map().invalidate(index());
  }
  const bool done = !executing_;
  call.finish(verify && wasExecuting && done);
  return done;
}

void CommandNode::checkErrors() {
  if (!executing_) {
    NodeCore::checkErrors();
  }
}

std::int64_t CommandNode::readInt(ReadFlags flags) {
  requireReadable();
  const ValueDescent descent(*this, state_, kValueBusy);
  return source_.read(*this, flags);
}

void CommandNode::writeInt(std::int64_t value, bool verify) {
  if (value != 0) {
    execute(verify);
  }
}

std::string CommandNode::textValue(ReadFlags /*flags*/) {
  return !executing_ || readDone() ? "1" : "0";
}

void CommandNode::setText(std::string_view text, bool verify) {
  text = trim(text);
  if (text == "1" || equalsIgnoringCase(text, "true") || equalsIgnoringCase(text, "execute")) {
    execute(verify);
  } else if (text != "0" && !equalsIgnoringCase(text, "false")) {
    NODE_FAIL(*this, InvalidArgumentException, "Node '%s' : cannot convert string '%s' to a command.",
              nodeName().c_str(), std::string(text).c_str());
  }
}

}  // namespace GenApiEngine
