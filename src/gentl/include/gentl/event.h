// Registered events: waiting for them, reading them, and ending waits from another thread.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "gentl/base_module.h"
#include "gentl/export_table.h"
#include "gentl/wait_gate.h"

namespace GenTLCpp {

class DataStream;
class NewBufferEvent;

/** Made by registerEvent of a module; unregisters itself at the end. Operations throw GenTLException. */
class Event : public BaseModule {
 public:
  static constexpr int kModuleType = kEventModule;

  Event(std::shared_ptr<BaseModule> module, EVENT_TYPE eventType, EVENT_HANDLE handle);
  ~Event() override;

  // An event has no open state of its own.
  GC_ERROR closeModule() override { return GC_ERR_SUCCESS; }
  bool isClosed() const override { return false; }
  bool isOpen() const override { return false; }
  bool isAccessible() const override { return parent_->isAccessible(); }
  int moduleType() const override { return kModuleType; }
  std::shared_ptr<Event> registerEvent(EVENT_TYPE /*eventType*/) override { return nullptr; }
  LibraryHandle getLibraryHandle() const override { return parent_->getLibraryHandle(); }

  /** The module that the event is registered on. */
  const std::shared_ptr<BaseModule>& getParent() const noexcept { return parent_; }
  EVENT_TYPE getEventType() const noexcept { return eventType_; }
  /** The event as what it is, or null for any other. */
  virtual NewBufferEvent* asNewBufferEvent() noexcept { return nullptr; }

  /**
   * A thread's stay with an event: from before it waits until it has read what the event brought. Whoever closes the
   * event's module waits for the end of all stays first, so nothing may be closed from within one.
   *
   * While a stop takes buffers back, a stay for filled buffers begins when it is done.
   *
   * @param timeout  of the wait to come; less by what passed before the stay began
   * @throws AbortException when the event's waits are over for good; TimeoutException when the time-out was over first
   */
  class Stay {
   public:
    Stay(Event& event, std::uint64_t& timeout);
    Stay(const Stay&) = delete;
    Stay& operator=(const Stay&) = delete;
    ~Stay() { gate_.leave(ticket_); }

   private:
    friend class Event;
    WaitGate& gate_;
    WaitGate::Ticket ticket_ = 0;
  };

  /** @throws ClosedException when the module is closed */
  void requireOpenModule() const;

  /**
   * Waits for the event and copies its data. Holds no lock while it waits. A wait that meets a kill which another one
   * left over starts again, with its whole time-out.
   *
   * @param timeout  milliseconds, GENTL_INFINITE for ever
   * @return the number of bytes that the producer wrote, at most `size`
   * @throws TimeoutException; AbortException after a kill; ClosedException when the module is closed
   */
  std::size_t getData(void* buffer, std::size_t size, std::uint64_t timeout);
  /** The same within a stay of the caller. */
  std::size_t getData(const Stay& stay, void* buffer, std::size_t size, std::uint64_t timeout);

  /** One info about data of getData, as the producer gives it; the status is not checked.
   * @param outSize  in: room in `out`; out: bytes written, or needed when `out` is null */
  GC_ERROR getDataInfo(const void* buffer, std::size_t size, EVENT_DATA_INFO_CMD cmd, INFO_DATATYPE* type, void* out,
                       std::size_t* outSize) const {
    return functions_.EventGetDataInfo(eventHandle(), buffer, size, cmd, type, out, outSize);
  }
  /** The event's number. */
  std::uint64_t getDataNumericId(const void* buffer, std::size_t size) const;
  std::size_t getMaxDataSize() const;
  void flush();
  /** Ends one wait: one that is under way, or else the next. */
  void kill();
  /** For the application: drops what is queued and ends every wait that is under way, or else the next: also that of a
   * thread which has just read its data and comes back, so that no thread that is to end waits for ever.
   * @return false, and nothing is done, when the event's waits are over for good */
  bool killWaits();
  /** Ends the stays that are under way and waits until they are over, for two seconds at most; later ones are not
   * touched. May be called from any thread that does not stay itself, and never throws. @return whether they are over
   */
  bool endWaits() noexcept;
  /** Stays that would begin wait until they are let in, or their time-out is over, or the waits are for good. */
  void holdWaits() noexcept { gate_.hold(); }
  void letWaitsIn() noexcept { gate_.letIn(); }
  /** The same as endWaits, and every later wait is aborted at once. For whoever closes the module. */
  bool shutWaits() noexcept;

  /** Once, and only while the module is open. The producer's status is ignored. */
  void unregister() noexcept;
  /** The same for whoever has shut the uses of the module and closes it next. */
  void unregisterBeforeClose() noexcept;
  bool isUnregistered() const noexcept { return unregistered_.load(); }

  /** What belongs to the event and goes with it; attached before the event is shared. */
  void attach(std::shared_ptr<void> attachment) noexcept { attachment_ = std::move(attachment); }
  void* attachment() const noexcept { return attachment_.get(); }

 protected:
  EVENT_HANDLE eventHandle() const noexcept { return getRawHandle(); }

  /** EventGetData within a stay; the status is checked. @return bytes written */
  std::size_t wait(const Stay& stay, void* buffer, std::size_t size, std::uint64_t timeout);

 private:
  bool sendKill() noexcept;

  std::shared_ptr<BaseModule> parent_;
  EVENT_TYPE eventType_;
  EventFunctions functions_;
  EVENTSRC_HANDLE moduleHandle_;
  std::atomic<bool> unregistered_{false};
  std::shared_ptr<void> attachment_;
  WaitGate gate_;
};

/** The event of a filled buffer; its module is a DataStream. */
class NewBufferEvent final : public Event {
 public:
  NewBufferEvent(const std::shared_ptr<DataStream>& stream, EVENT_HANDLE handle);
  ~NewBufferEvent() override;

  NewBufferEvent* asNewBufferEvent() noexcept override { return this; }
  std::shared_ptr<DataStream> getStream() const;

  /** Waits for a filled buffer. Allocates nothing and holds no lock. Throws as getData does, but for a closed module.
   */
  EVENT_NEW_BUFFER_DATA waitForBuffer(std::uint64_t timeout);
  /** The same within a stay of the caller. */
  EVENT_NEW_BUFFER_DATA waitForBuffer(const Stay& stay, std::uint64_t timeout);
};

}  // namespace GenTLCpp
