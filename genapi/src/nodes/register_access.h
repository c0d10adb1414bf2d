// A register's place and bytes: address arithmetic, port, raw cache. Shared by all kinds of register nodes.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "nodes/node_core.h"

namespace GenApiEngine {

class PortNode;
struct RawBytes;

class RegisterAccess {
 public:
  explicit RegisterAccess(const NodeCore& owner);

  std::int64_t address(NodeCore& owner);
  /// Throws when it is negative or beyond all reason.
  std::int64_t length(NodeCore& owner) const;
  /// The register's own mode combined with the port's and with what its address needs.
  EAccessMode access(NodeCore& owner, EAccessMode operands);
  Api::ECachingMode caching() const { return static_cast<Api::ECachingMode>(caching_); }
  Api::EEndianess endianess() const { return bigEndian_ ? Api::BigEndian : Api::LittleEndian; }
  bool isSigned() const { return signed_; }

  /// The register's bytes, from the raw cache where it may be used.
  void read(NodeCore& owner, std::uint8_t* buffer, std::int64_t length, ReadFlags flags) {
    readStart(owner, buffer, length, flags, length);
  }
  void write(NodeCore& owner, const std::uint8_t* buffer, std::int64_t length);

  /// The bytes as a number, sign-extended if the register is signed.
  std::int64_t readNumber(NodeCore& owner, ReadFlags flags);
  void writeNumber(NodeCore& owner, std::uint64_t value);
  std::uint64_t readUnsigned(NodeCore& owner, std::int64_t length, ReadFlags flags);
  /// Length of a register that holds a number; throws when it is not 1 to 8.
  std::int64_t numberLength(NodeCore& owner) const;

  // The calls of the public register interface.
  void set(NodeCore& owner, const std::uint8_t* buffer, std::int64_t length, bool verify);
  void get(NodeCore& owner, std::uint8_t* buffer, std::int64_t length, ReadFlags flags);
  std::int64_t publicLength(NodeCore& owner) const;
  std::int64_t publicAddress(NodeCore& owner);

  EAccessMode declaredAccess() const { return static_cast<EAccessMode>(access_); }
  void invalidate(NodeCore& owner, bool kept);

 private:
  PortNode* port(const NodeCore& owner) const;
  /// The first `length` bytes of a register of `registerLength`.
  void readStart(NodeCore& owner, std::uint8_t* buffer, std::int64_t length, ReadFlags flags,
                 std::int64_t registerLength);
  RawBytes* raw(PortNode& through, std::int64_t address, std::int64_t length);
  std::int64_t computeAddress(NodeCore& owner) const;

  std::int64_t constant_ = 0;  // the sum of the constant addresses
  std::int64_t address_ = 0;
  std::int64_t length_ = 4;
  RawBytes* raw_ = nullptr;
  std::int64_t rawLength_ = 0;
  std::uint32_t rawGeneration_ = 0;
  NodeIndex lengthNode_ = kNoNode;
  NodeIndex port_ = kNoNode;
  std::uint8_t access_ = Api::RO;
  std::uint8_t caching_ = Api::WriteThrough;
  bool bigEndian_ = false;
  bool signed_ = false;
  bool dynamic_ = false;  // the address has parts that other nodes give
  bool addressValid_ = false;
};

/// The register interface of a node that has it from its base or as an additional one.
template<class Base, class... Additional>
class RegisterCalls : public Base, public Additional... {
 public:
  RegisterCalls(NodeMap& map, NodeIndex index) : Base(map, index), register_(*this) {
    this->set(NodeCore::kWatchesInvalidation);
  }

  void Set(const uint8_t* buffer, int64_t length, bool verify) override {
    register_.set(*this, buffer, length, verify);
  }
  void Get(uint8_t* buffer, int64_t length, bool verify, bool ignoreCache) override {
    register_.get(*this, buffer, length, {verify, ignoreCache});
  }
  int64_t GetLength() override { return register_.publicLength(*this); }
  int64_t GetAddress() override { return register_.publicAddress(*this); }

 protected:
  EAccessMode naturalAccess() override { return register_.access(*this, this->neededAccessOfOperands()); }
  Api::ECachingMode ownCaching() override { return register_.caching(); }
  void onInvalidate(bool kept) override { register_.invalidate(*this, kept); }
  void* interfaceOf(int type) override {
    return type == Api::intfIRegister ? static_cast<Api::IRegister*>(this) : nullptr;
  }

  RegisterAccess register_;
};

/// The register interface on top of a value interface.
template<class Base>
class RegisterNode : public RegisterCalls<Base, Api::IRegister> {
 public:
  using RegisterCalls<Base, Api::IRegister>::RegisterCalls;
};

}  // namespace GenApiEngine
