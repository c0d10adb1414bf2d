// What every node is made of: its place in the model, its guards, caches and callbacks, and how nodes ask each other.
#pragma once

#include <cfloat>
#include <cstdint>
#include <limits>
#include <memory>
#include <string_view>
#include <vector>

#include "GenApi/GenApi.h"
#include "model/model.h"

namespace GenApiEngine {

using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;
namespace Api = GENAPI_NAMESPACE;
using Api::EAccessMode;

class NodeMap;

/// How a value is asked for.
struct ReadFlags {
  bool verify = false;
  bool ignoreCache = false;
};

/// A number that is either constant or another node's.
struct IntOperand {
  NodeIndex node = kNoNode;
  std::int64_t constant = 0;
};
struct FloatOperand {
  NodeIndex node = kNoNode;
  double constant = 0;
};

inline gcstring toGc(std::string_view text) {
  return text.empty() ? gcstring() : gcstring(text.data(), text.size());
}

/// The base of all nodes.
///
/// The public interface takes the map's lock and remembers the outermost call; the nodes talk to each other through the
/// protected-by-convention lower-case functions, which expect the lock to be held. A node never calls another node's
/// public interface.
class NodeCore : public Api::ISelector, public Api::IUserData, public Api::INode {
 public:
  NodeCore(NodeMap& map, NodeIndex index);
  NodeCore(const NodeCore&) = delete;
  NodeCore& operator=(const NodeCore&) = delete;
  ~NodeCore() override;

  // INode
  gcstring GetName(bool fullQualified) const override;
  Api::ENameSpace GetNameSpace() const override;
  Api::EVisibility GetVisibility() const override;
  void InvalidateNode() override;
  bool IsCachable() const override;
  Api::EYesNo IsAccessModeCacheable() const override;
  Api::ECachingMode GetCachingMode() const override;
  int64_t GetPollingTime() const override;
  gcstring GetToolTip() const override;
  gcstring GetDescription() const override;
  gcstring GetDisplayName() const override;
  gcstring GetDeviceName() const override;
  void GetChildren(Api::NodeList_t& children, Api::ELinkType linkType) const override;
  void GetParents(Api::NodeList_t& parents) const override;
  Api::CallbackHandleType RegisterCallback(Api::CNodeCallback* callback) override;
  bool DeregisterCallback(Api::CallbackHandleType handle) override;
  Api::INodeMap* GetNodeMap() const override;
  gcstring GetEventID() const override;
  bool IsStreamable() const override;
  void GetPropertyNames(gcstring_vector& names) const override;
  bool GetProperty(const gcstring& name, gcstring& value, gcstring& attribute) override;
  void ImposeAccessMode(EAccessMode mode) override;
  void ImposeVisibility(Api::EVisibility visibility) override;
  INode* GetAlias() const override;
  INode* GetCastAlias() const override;
  gcstring GetDocuURL() const override;
  bool IsDeprecated() const override;
  Api::EInterfaceType GetPrincipalInterfaceType() const override;
  bool IsFeature() const override;
  // IBase
  EAccessMode GetAccessMode() const override;
  bool FindInterface(int type, void** found) override;
  // ISelector
  bool IsSelector() const override;
  void GetSelectedFeatures(Api::FeatureList_t& features) const override;
  void GetSelectingFeatures(Api::FeatureList_t& features) const override;
  // IUserData
  Api::UserData_t GetUserData() const override;
  Api::UserData_t SetUserData(Api::UserData_t data) override;

  NodeMap& map() const { return map_; }
  /// Cannot be built; every use of it fails.
  bool isBroken() const { return broken_; }
  NodeIndex index() const { return index_; }
  const NodeRecord& record() const;
  std::string_view name() const;
  /// The first property of that element, or null.
  const Property* property(Element element) const;
  /// Its text, or empty.
  std::string_view propertyText(Element element) const;
  NodeIndex propertyNode(Element element) const;
  std::span<const Property> properties() const;
  /// The node's own property of that element, or that of the next node towards the value which has one.
  const Property* inherited(Element element) const;
  /// Null for the node that does not exist.
  NodeCore* other(NodeIndex index) const;

  // What other nodes ask. All expect the lock.
  EAccessMode accessMode();
  Api::ECachingMode cachingMode();
  bool accessCacheable();
  Api::EVisibility visibility();
  virtual std::int64_t readInt(ReadFlags flags);
  virtual double readFloat(ReadFlags flags);
  /// Whether the node says yes where another one asks it as a guard: any value but zero.
  virtual bool saysYes(ReadFlags flags) { return readInt(flags) != 0; }
  virtual void writeInt(std::int64_t value, bool verify);
  virtual void writeFloat(double value, bool verify);
  virtual void readString(std::string& out, ReadFlags flags);
  virtual void writeString(std::string_view value, bool verify);
  virtual std::int64_t intMin() { return std::numeric_limits<std::int64_t>::min(); }
  virtual std::int64_t intMax() { return std::numeric_limits<std::int64_t>::max(); }
  virtual std::int64_t intInc() { return 1; }
  virtual double floatMin() { return -DBL_MAX; }
  virtual double floatMax() { return DBL_MAX; }
  /// False when the value has no increment.
  virtual bool floatInc(double& /*increment*/) { return false; }
  virtual std::int64_t maxLength() { return 0; }
  /// The node that the value comes from, from which also come unit and representation; null when there is none.
  virtual NodeCore* valueSource() const { return nullptr; }
  Api::ERepresentation representation() const;
  std::string unit() const;
  Api::EDisplayNotation displayNotation() const;
  std::int64_t displayPrecision() const;
  /// Appends the values that the user may choose of; nothing when all are.
  virtual void validInts(std::vector<std::int64_t>& /*values*/) {}
  virtual void validFloats(std::vector<double>& /*values*/) {}
  /// The value of an entry by its symbol; throws for nodes that have none.
  virtual std::int64_t entryValue(std::string_view symbolic);
  virtual Api::IValue* asValue() { return nullptr; }
  /// Compiles the node's formulas; throws what is wrong with them.
  virtual void compileFormulas() {}
  /// Throws when an error node of this one reports an error.
  virtual void checkErrors();
  virtual bool isPolledNow() { return true; }

  /// Drops what the node remembers. Of a node that is kept only the access mode falls.
  void dropCaches(std::uint32_t keepEpoch);
  /// The freshly written value stays valid through the invalidation that the write causes.
  void keepThroughWrite();
  void dropValue() { clear(kValid); }
  bool hasCallbacks() const { return callbacks_ != nullptr; }
  void fireCallbacks(Api::ECallbackType phase);

  // Scratch of the map's walks.
  std::uint32_t visited = 0;
  std::uint64_t pollSum = 0;

  void requireReadable(const char* text = "Node is not readable.");
  void requireWritable(const char* text = "Node is not writable.");
  void requireAvailable();

  /// Throws E with the text, this node's name and the outermost call.
  template<class E, class... Args>
  [[noreturn]] void failWith(const char* type, const char* file, unsigned line, const char* format,
                             Args... args) const {
    throw E(GENICAM_NAMESPACE::FormatExceptionText(format, args...).c_str(), file, line, entryPoint().c_str(),
            gcstring(nodeName().c_str()).c_str(), type);
  }
  std::string nodeName() const;

 protected:
  /// The access mode that the kind of node has by itself and through its value, guards apart.
  virtual EAccessMode naturalAccess() { return Api::RW; }
  virtual bool obeysGuards() const { return true; }
  virtual EAccessMode adjustAccess(EAccessMode mode) { return mode; }
  virtual Api::ECachingMode ownCaching() { return Api::WriteThrough; }
  virtual Api::EVisibility ownVisibility();
  virtual std::string defaultDisplayName() const;
  virtual void onInvalidate(bool /*kept*/) {}
  /// Answers FindInterface for the kinds of interface that the node has beside INode.
  virtual void* interfaceOf(int /*type*/) { return nullptr; }

  /// The part of access that a node needs of one that it computes with: not implemented, not available, or nothing.
  EAccessMode neededAccess(NodeIndex index) const;
  /// Leaves each node of a list once, in the order of first mention.
  void keepOnce(std::vector<NodeIndex>& nodes) const;
  /// neededAccess over all properties of the class Computes and Reads (limits), but not the guards.
  EAccessMode neededAccessOfOperands();

  enum State : std::uint8_t {
    kValid = 1,      ///< the value is cached
    kReadable = 2,   ///< the cached access mode says readable
    kReady = 3,      ///< both
    kValueBusy = 4,  ///< the value is just being computed
    kAccessBusy = 8,
    kWatchesInvalidation = 16,  ///< wants onInvalidate
    kImposedLimits = 32,
    kWriteBusy = 64,  ///< the value is just being written; it may be read meanwhile, by the limits of what it goes to
  };
  bool isSet(State bit) const { return (state_ & bit) != 0; }
  void set(State bit) { state_ = static_cast<std::uint8_t>(state_ | bit); }
  void clear(State bit) { state_ = static_cast<std::uint8_t>(state_ & ~bit); }
  /// Whether the cached value may be given without asking anything.
  bool isReady() const { return (state_ & kReady) == kReady; }
  /// Marks the value as cached when the node caches at all.
  void valueRead();
  void valueWritten();

 private:
  struct Callbacks;
  gcstring entryPoint() const;
  EAccessMode computeAccess(bool& reliable);
  EAccessMode guardAccess(bool& reliable);
  bool guardValue(NodeIndex index, EAccessMode onFailure, EAccessMode& failure, bool& reliable) const;
  void collectTerminals(std::vector<NodeIndex>& out) const;

  static constexpr std::uint8_t kUnknownAccess = 0xFF;
  static constexpr std::uint8_t kUnknownCaching = 0xFF;

  NodeMap& map_;
  std::unique_ptr<Callbacks> callbacks_;
  Api::UserData_t userData_ = nullptr;
  NodeIndex index_;
  std::uint32_t keepEpoch_ = 0;
  std::uint8_t access_ = kUnknownAccess;
  std::uint8_t runtimeAccess_ = Api::RW;
  std::uint8_t runtimeVisibility_ = Api::Beginner;
  std::uint8_t caching_ = kUnknownCaching;
  std::uint8_t accessCacheable_ = 2;  // 0 no, 1 yes, 2 not known
  bool hasGuards_ = false;
  bool hasErrors_ = false;
  bool broken_ = false;

 protected:
  std::uint8_t state_ = 0;
};

/// Throws an exception of the GenICam namespace in the context of a node.
#define NODE_FAIL(node, Type, ...) (node).failWith<GENICAM_NAMESPACE::Type>(#Type, __FILE__, __LINE__, __VA_ARGS__)

/// One level of a node asking itself: throws when the value needs itself or the chain is too long.
class ValueDescent {
 public:
  /// @param busyBit  marks in state that the node is asking; 0 where it may ask itself, as limits may
  ValueDescent(NodeCore& node, std::uint8_t& state, std::uint8_t busyBit);
  ValueDescent(const ValueDescent&) = delete;
  ValueDescent& operator=(const ValueDescent&) = delete;
  ~ValueDescent();

 private:
  NodeMap& map_;
  std::uint8_t& state_;
  std::uint8_t busyBit_;
};

}  // namespace GenApiEngine
