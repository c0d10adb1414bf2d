// Where registers lie and how their bytes travel.
#include "nodes/register_access.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstring>

#include "base/limits.h"
#include "base/number_text.h"
#include "model/text.h"
#include "nodemap/call.h"
#include "nodes/port_node.h"
#include "nodes/property_values.h"

namespace GenApiEngine {
namespace {

constexpr std::int64_t kMaxNumberLength = 8;

EAccessMode accessFrom(std::string_view text) {
  return equalsIgnoringCase(text, "RW")                                    ? Api::RW
         : equalsIgnoringCase(text, "WO") || equalsIgnoringCase(text, "W") ? Api::WO
                                                                           : Api::RO;
}

}  // namespace

RegisterAccess::RegisterAccess(const NodeCore& owner) {
  const Model& model = owner.map().model();
  for (const Property& property : owner.properties()) {
    switch (property.element()) {
      case Element::Address:
        if (model.hasNumber(property)) {
          constant_ = static_cast<std::int64_t>(static_cast<std::uint64_t>(constant_) +
                                                static_cast<std::uint64_t>(model.integer(property)));
        }
        break;
      case Element::pAddress:
      case Element::IntSwissKnife:
      case Element::pIndex:
        dynamic_ = true;
        break;
      case Element::Length:
        if (model.hasNumber(property)) {
          length_ = model.integer(property);
        }
        break;
      case Element::pLength:
        lengthNode_ = property.target;
        break;
      case Element::AccessMode:
        access_ = static_cast<std::uint8_t>(accessFrom(model.text(property)));
        break;
      case Element::Cachable:
        caching_ = static_cast<std::uint8_t>(cachingFrom(model.text(property)));
        break;
      case Element::pPort:
        port_ = property.target;
        break;
      case Element::Sign:
        signed_ = equalsIgnoringCase(model.text(property), "Signed");
        break;
      case Element::Endianess:
        bigEndian_ = equalsIgnoringCase(model.text(property), "BigEndian");
        break;
      default:
        break;
    }
  }
}

PortNode* RegisterAccess::port(const NodeCore& owner) const {
  NodeCore* const node = owner.other(port_);
  return node != nullptr && node->record().kind == NodeKind::Port ? static_cast<PortNode*>(node) : nullptr;
}

EAccessMode RegisterAccess::access(NodeCore& owner, EAccessMode operands) {
  PortNode* const through = port(owner);
  if (through == nullptr) {
    return Api::NI;
  }
  return Api::Combine(Api::Combine(static_cast<EAccessMode>(access_), operands), through->accessMode());
}

std::int64_t RegisterAccess::length(NodeCore& owner) const {
  NodeCore* const node = owner.other(lengthNode_);
  const std::int64_t length = node == nullptr ? length_ : node->readInt({});
  if (length < 0 || length > kMaxRegisterLength) {
    NODE_FAIL(owner, RuntimeException, "The register's length is %" PRId64 ", at most %" PRId64 " is allowed.", length,
              kMaxRegisterLength);
  }
  return length;
}

std::int64_t RegisterAccess::address(NodeCore& owner) {
  if (!addressValid_) {
    address_ = dynamic_ ? computeAddress(owner) : constant_;
    addressValid_ = true;
    raw_ = nullptr;
  }
  return address_;
}

std::int64_t RegisterAccess::computeAddress(NodeCore& owner) const {
  auto sum = static_cast<std::uint64_t>(constant_);
  const std::span<const Property> all = owner.properties();
  for (std::size_t i = 0; i < all.size(); ++i) {
    const Property& property = all[i];
    // Only references have a target; what stands there in others is no node.
    if (property.element() == Element::pAddress || property.element() == Element::IntSwissKnife) {
      sum += static_cast<std::uint64_t>(owner.other(property.target)->readInt({}));
    } else if (property.element() == Element::pIndex) {
      // An index counts in its offset: a constant, the next property's node, or the register's length.
      std::int64_t offset = 0;
      if (const auto constant = describedInteger(owner.map().model().attribute(property))) {
        offset = *constant;
      } else if (i + 1 < all.size() && all[i + 1].element() == Element::pOffset) {
        offset = owner.other(all[i + 1].target)->readInt({});
      } else {
        offset = length(owner);
      }
      const std::int64_t index = owner.other(property.target)->readInt({});
      sum += static_cast<std::uint64_t>(index) * static_cast<std::uint64_t>(offset);
    }
  }
  return static_cast<std::int64_t>(sum);
}

RawBytes* RegisterAccess::raw(PortNode& through, std::int64_t address, std::int64_t length) {
  if (raw_ == nullptr || rawLength_ != length || rawGeneration_ != through.rawGeneration()) {
    raw_ = through.rawBytes(address, length);
    rawLength_ = length;
    rawGeneration_ = through.rawGeneration();
  }
  return raw_;
}

void RegisterAccess::readStart(NodeCore& owner, std::uint8_t* buffer, std::int64_t length, ReadFlags flags,
                               std::int64_t registerLength) {
  PortNode* const through = port(owner);
  if (through == nullptr) {
    NODE_FAIL(owner, AccessException, "The register has no port.");
  }
  if (length == 0) {
    return;
  }
  const std::int64_t at = address(owner);
  // Also a register that is not cached knows the shared bytes of its place: they fall with it. They are always those of
  // the whole register: an invalidation would leave alone what a read of another length had put aside.
  RawBytes* const kept = raw(*through, at, registerLength);
  if (caching() == Api::NoCache && !flags.ignoreCache) {
    through->read(owner, buffer, at, length);
    return;
  }
  const auto size = static_cast<std::size_t>(length);
  const bool useCache = kept != nullptr && !flags.ignoreCache;
  if (useCache && kept->valid) {
    std::memcpy(buffer, kept->data(), size);
    return;
  }
  if (kept != nullptr && flags.ignoreCache) {
    kept->valid = false;
  }
  const std::uint32_t generation = through->rawGeneration();
  through->read(owner, buffer, at, length);
  // The port may have called back into the node map and made it forget.
  if (useCache && length == registerLength && generation == through->rawGeneration()) {
    std::memcpy(kept->data(), buffer, size);
    kept->valid = true;
  }
}

void RegisterAccess::write(NodeCore& owner, const std::uint8_t* buffer, std::int64_t length) {
  PortNode* const through = port(owner);
  if (through == nullptr) {
    NODE_FAIL(owner, AccessException, "The register has no port.");
  }
  if (access_ == Api::RO) {
    NODE_FAIL(owner, AccessException, "Node is not writable.");
  }
  if (length == 0) {
    // A text register may have no bytes; a port is not asked for nothing.
    return;
  }
  const std::int64_t at = address(owner);
  const std::int64_t registerLength = this->length(owner);
  const bool whole = length == registerLength;
  const std::uint32_t generation = through->rawGeneration();
  through->write(owner, buffer, at, length);
  if (generation == through->rawGeneration()) {
    if (RawBytes* const kept = raw(*through, at, registerLength)) {
      kept->valid = whole && caching() == Api::WriteThrough;
      if (kept->valid) {
        std::memcpy(kept->data(), buffer, static_cast<std::size_t>(length));
      }
    }
  }
  if (caching() == Api::WriteThrough && whole) {
    owner.keepThroughWrite();
  }
  owner.map().markWritten(owner.index());
}

std::int64_t RegisterAccess::numberLength(NodeCore& owner) const {
  const std::int64_t length = this->length(owner);
  if (length < 1 || length > kMaxNumberLength) {
    NODE_FAIL(owner, RuntimeException, "A register of %" PRId64 " bytes holds no integer.", length);
  }
  return length;
}

std::uint64_t RegisterAccess::readUnsigned(NodeCore& owner, std::int64_t length, ReadFlags flags) {
  std::array<std::uint8_t, kMaxNumberLength> bytes{};
  read(owner, bytes.data(), length, flags);
  // All eight bytes, so that the compiler makes one load of them; those behind the register are zero.
  std::uint64_t big = 0;
  std::uint64_t little = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    big = (big << 8) | bytes[i];
    little |= std::uint64_t{bytes[i]} << (8 * i);
  }
  return bigEndian_ ? big >> (8 * (kMaxNumberLength - length)) : little;
}

std::int64_t RegisterAccess::readNumber(NodeCore& owner, ReadFlags flags) {
  const std::int64_t length = numberLength(owner);
  const std::uint64_t value = readUnsigned(owner, length, flags);
  const auto unused = static_cast<unsigned>(64 - 8 * length);
  return signed_ ? static_cast<std::int64_t>(value << unused) >> unused : static_cast<std::int64_t>(value);
}

void RegisterAccess::writeNumber(NodeCore& owner, std::uint64_t value) {
  const std::int64_t length = numberLength(owner);
  std::array<std::uint8_t, kMaxNumberLength> bytes{};
  for (std::int64_t i = 0; i < length; ++i) {
    bytes[static_cast<std::size_t>(bigEndian_ ? length - 1 - i : i)] = static_cast<std::uint8_t>(value >> (8 * i));
  }
  write(owner, bytes.data(), length);
}

// More than the register holds is cut, less leaves the rest of it alone.
void RegisterAccess::set(NodeCore& owner, const std::uint8_t* buffer, std::int64_t length, bool verify) {
  WriteCall call(owner, "Set");
  if (owner.isBroken()) {
    NODE_FAIL(owner, AccessException, "Node is not implemented.");
  }
  if (verify) {
    owner.requireWritable("Node is not writable");
  }
  if (buffer == nullptr || length <= 0) {
    NODE_FAIL(owner, InvalidArgumentException, "There are no bytes to write.");
  }
  write(owner, buffer, std::min(length, this->length(owner)));
  owner.dropValue();
  call.finish(verify);
}

void RegisterAccess::get(NodeCore& owner, std::uint8_t* buffer, std::int64_t length, ReadFlags flags) {
  const Call call(owner, "Get");
  owner.requireReadable("Node is not readable");
  if (buffer == nullptr || length < 0) {
    NODE_FAIL(owner, InvalidArgumentException, "There is no buffer to read into.");
  }
  const std::int64_t whole = this->length(owner);
  const std::int64_t own = std::min(length, whole);
  readStart(owner, buffer, own, flags, whole);
  std::fill(buffer + own, buffer + length, std::uint8_t{0});
}

std::int64_t RegisterAccess::publicLength(NodeCore& owner) const {
  const Call call(owner, "GetLength");
  return length(owner);
}

std::int64_t RegisterAccess::publicAddress(NodeCore& owner) {
  const Call call(owner, "GetAddress");
  if (owner.isBroken()) {
    NODE_FAIL(owner, AccessException, "Node is not available.");
  }
  const std::int64_t at = address(owner);
  PortNode* const through = port(owner);
  return through == nullptr ? at : through->offsetOf(owner, at);
}

void RegisterAccess::invalidate(NodeCore& owner, bool kept) {
  if (kept) {
    return;
  }
  // Only a register that was used since knows which bytes are meant.
  PortNode* const through = port(owner);
  if (addressValid_ && raw_ != nullptr && through != nullptr && rawGeneration_ == through->rawGeneration()) {
    raw_->valid = false;
  }
  addressValid_ = false;
}

}  // namespace GenApiEngine
