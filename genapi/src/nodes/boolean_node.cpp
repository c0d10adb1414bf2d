// Reading and writing Boolean nodes.
#include "nodes/boolean_node.h"

#include <cinttypes>

#include "model/text.h"

namespace GenApiEngine {

BooleanNode::BooleanNode(NodeMap& map, NodeIndex index)
    : ValueNode(map, index),
      source_(*this),
      isConstant_(propertyNode(Element::pValue) == kNoNode) {
  const Model& model = map.model();
  if (const Property* on = property(Element::OnValue); on != nullptr && model.hasNumber(*on)) {
    on_ = model.integer(*on);
  }
  if (const Property* off = property(Element::OffValue); off != nullptr && model.hasNumber(*off)) {
    off_ = model.integer(*off);
  }
}

void BooleanNode::SetValue(bool value, bool verify) {
  WriteCall call(*this, "SetValue");
  writeBool(value, verify);
  call.finish(verify);
}

void BooleanNode::operator=(bool value) {
  BooleanNode::SetValue(value, true);
}

bool BooleanNode::GetValue(bool verify, bool ignoreCache) const {
  const Api::AutoLock lock(map().GetLock());
  if (isReady() && !verify && !ignoreCache) {
    return value_;
  }
  const Frame frame(*this, "GetValue");
  auto& self = const_cast<BooleanNode&>(*this);
  const bool value = self.readBool({verify, ignoreCache});
  if (verify) {
    self.checkErrors();
  }
  return value;
}

bool BooleanNode::readBool(ReadFlags flags) {
  if (isReady() && !flags.verify && !flags.ignoreCache) {
    return value_;
  }
  requireReadable();
  if (isSet(kValid) && !flags.verify && !flags.ignoreCache) {
    return value_;
  }
  const ValueDescent descent(*this, state_, kValueBusy);
  const std::int64_t raw = source_.read(*this, flags);
  // A constant is written as true or false whatever stands for them elsewhere.
  const bool isOn = isConstant_ ? raw != 0 : raw == on_;
  if (!isConstant_ && !isOn && raw != off_) {
    NODE_FAIL(*this, RuntimeException, "The value %" PRId64 " is neither OnValue %" PRId64 " nor OffValue %" PRId64 ".",
              raw, on_, off_);
  }
  value_ = isOn;
  valueRead();
  return isOn;
}

void BooleanNode::writeBool(bool value, bool verify) {
  if (verify) {
    requireWritable();
  }
  const ValueDescent descent(*this, state_, kWriteBusy);
  source_.write(*this, isConstant_ ? std::int64_t{value} : value ? on_ : off_, verify);
  value_ = value;
  valueWritten();
}

void BooleanNode::setText(std::string_view text, bool verify) {
  text = trim(text);
  const bool on = text == "1" || equalsIgnoringCase(text, "true");
  if (!on && text != "0" && !equalsIgnoringCase(text, "false")) {
    NODE_FAIL(*this, InvalidArgumentException, "Node '%s' : cannot convert string '%s' to bool.", nodeName().c_str(),
              std::string(text).c_str());
  }
  writeBool(on, verify);
}

}  // namespace GenApiEngine
