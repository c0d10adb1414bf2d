// What all modules of a producer have in common: a handle, a life, a port with a node map, and a feature list.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>

#include "core/hold.h"
#include "gentl/export_table.h"
#include "gentl/feature_list_place.h"
#include "gentl/port.h"
#include "gentl_interface/GenTL.h"

namespace GenTLCpp {

class Event;
class FeatureList;

enum ModuleType : int {
  kTransportLayerModule = 0,
  kInterfaceModule = 1,
  kDeviceModule = 2,
  kDataStreamModule = 3,
  kBufferModule = 4,
  kEventModule = 5
};

/** The name that a module's feature list bears. */
const char* moduleTypeName(int moduleType) noexcept;

/**
 * A module of a producer. A module holds its parent, never its children; nothing that a module caches (port, feature
 * list, node map) holds the module, so that it closes when its last user lets go.
 *
 * Modules may be used from several threads. Closing one while another thread is inside a producer call on it is the
 * application's fault, and ends at worst in the producer's error.
 */
class BaseModule : public std::enable_shared_from_this<BaseModule> {
 public:
  BaseModule(const BaseModule&) = delete;
  BaseModule& operator=(const BaseModule&) = delete;
  virtual ~BaseModule();

  /**
   * A thread's use of the module for one of the calls that applications make while others close it. Whoever closes a
   * device or a stream waits for the end of all uses first.
   */
  class Use {
   public:
    /** @throws ClosedException when the module is being closed already */
    explicit Use(const BaseModule& module) {
      if (!module.beginUse(inside_)) {
        module.throwClosed();
      }
    }

   private:
    OVI::Hold inside_;
  };
  /** The same without an exception. @return whether the use may begin; it lasts as long as the hold */
  bool beginUse(OVI::Hold& inside) const noexcept { return uses_.enter(inside); }
  /** No use begins any more. @return whether those that were under way were over in time */
  virtual bool shutUses() noexcept;

  /** Closes the module and drops its feature list and port. @return the producer's status, not checked */
  virtual GC_ERROR close();
  /** The producer's close alone; once. */
  virtual GC_ERROR closeModule() = 0;
  /** Closed itself, or its parent is. */
  virtual bool isClosed() const = 0;
  virtual bool isOpen() const = 0;
  /** Whether the module itself is open. @throws ClosedException when its parent is closed */
  virtual bool isAccessible() const = 0;
  virtual int moduleType() const = 0;
  /** Registers an event of an EVENT_TYPE; empty when the producer gives no event, or the module has none. */
  virtual std::shared_ptr<Event> registerEvent(EVENT_TYPE eventType) = 0;
  /** The GenTL handle, whatever state the module is in. */
  virtual void* getRawHandle() const noexcept { return handle_.load(std::memory_order_relaxed); }
  virtual LibraryHandle getLibraryHandle() const = 0;

  /** A node map from the description that is found through the port, connected to it; empty when it does not connect.
   * The name is asked of the port again. */
  virtual NodeMapPtr createNodeMap(const std::shared_ptr<ConcretePort>& port, const std::string& portName);
  virtual NodeMapPtr createNodeMap(const std::shared_ptr<ConcretePort>& port);
  virtual NodeMapPtr getNodeMap();
  /** The module's own port, made on first use or when renewed. */
  virtual std::shared_ptr<ConcretePort> getPort(bool renew);
  /** The module's features, made on first use; empty when that fails without an exception, and tried again next time.
   */
  virtual std::shared_ptr<FeatureList> getFeatureList();
  /** The same for the length of a call. */
  FeatureList* getFeatureList(OVI::Hold& hold);
  virtual std::shared_ptr<FeatureList> makeFeatureList(const std::string& typeName);
  virtual std::shared_ptr<FeatureList> createFeatureList(const NodeMapPtr& nodeMap, const std::string& typeName);

  /** @throws std::bad_weak_ptr when nothing shares the module */
  virtual std::shared_ptr<BaseModule> sharedFromThis() { return shared_from_this(); }

 protected:
  /** @throws ClosedException when the module is being closed already */
  void requireOpenForUses() const {
    if (!uses_.isOpen()) {
      throwClosed();
    }
  }

  explicit BaseModule(void* handle) : handle_(handle) {}

  /** The module as what it is; for children that keep it. */
  template<class T>
  std::shared_ptr<T> sharedAs() {
    return std::static_pointer_cast<T>(shared_from_this());
  }

  void setHandle(void* handle) noexcept { handle_.store(handle, std::memory_order_relaxed); }

  /** Takes a list out of its place and ends its polling. @return what to retire once the producer's side is closed */
  static std::shared_ptr<FeatureList> takeOut(FeatureListPlace& place) noexcept;

  FeatureListPlace featureList_;

  std::mutex portMutex_;
  std::shared_ptr<ConcretePort> port_;

 private:
  [[noreturn]] void throwClosed() const;

  std::atomic<void*> handle_;
  OVI::UseGate uses_;
};

}  // namespace GenTLCpp
