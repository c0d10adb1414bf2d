// An announced buffer of a data stream.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "gentl/base_module.h"
#include "gentl/data_stream.h"
#include "gentl/info_query.h"

namespace GenTLCpp {

/** Made by DataStream::allocAndAnnounceBuffer. Whoever drops the last reference must have revoked it before. */
class Buffer final : public BaseModule {
 public:
  static constexpr int kModuleType = kBufferModule;

  Buffer(std::shared_ptr<DataStream> stream, AnnouncedBuffer& announced);
  ~Buffer() override;

  // A buffer has no open state of its own.
  GC_ERROR closeModule() override { return GC_ERR_SUCCESS; }
  bool isClosed() const override { return false; }
  bool isOpen() const override { return false; }
  bool isAccessible() const override { return getRawHandle() != nullptr; }
  int moduleType() const override { return kModuleType; }
  std::shared_ptr<Event> registerEvent(EVENT_TYPE /*eventType*/) override { return nullptr; }
  LibraryHandle getLibraryHandle() const override { return parent_->getLibraryHandle(); }

  const std::shared_ptr<DataStream>& getParent() const noexcept { return parent_; }
  /** @throws ClosedException when the stream is closed */
  BUFFER_HANDLE getHandle() const {
    static_cast<void>(parent_->getHandle());
    return getRawHandle();
  }
  /** The private pointer of the announcement. */
  void* getUserData() const noexcept { return userData_; }
  /** The buffer in the stream's table, until it is revoked. */
  AnnouncedBuffer& announced() const noexcept { return announced_; }

  /** One info of the buffer, a number or pointer of T's width. Allocates nothing. @throws GenTLException */
  template<class T = std::uint64_t>
  T getInfo(BUFFER_INFO_CMD cmd) const {
    return queryValue<T>([&](INFO_DATATYPE* type, void* value, std::size_t* size) {
      return parent_->getBufferInfo(getRawHandle(), cmd, type, value, size);
    });
  }
  void* getBase() const { return getInfo<void*>(BUFFER_INFO_BASE); }
  std::size_t getSize() const { return getInfo<std::size_t>(BUFFER_INFO_SIZE); }
  std::size_t getSizeFilled() const { return getInfo<std::size_t>(BUFFER_INFO_SIZE_FILLED); }

 private:
  std::shared_ptr<DataStream> parent_;
  AnnouncedBuffer& announced_;
  void* userData_;
};

}  // namespace GenTLCpp
