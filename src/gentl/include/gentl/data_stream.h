// A data stream of a device, and the operations on its buffers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "gentl/buffer_table.h"
#include "gentl/device.h"
#include "gentl/open_module.h"

namespace GenTLCpp {

class Buffer;
class NewBufferEvent;

struct DSFunctions {
  explicit DSFunctions(LibraryHandle handle) : library(handle) {}

  LibraryHandle library;
  Export<PDSAnnounceBuffer> DSAnnounceBuffer{library, "DSAnnounceBuffer"};
  Export<PDSAllocAndAnnounceBuffer> DSAllocAndAnnounceBuffer{library, "DSAllocAndAnnounceBuffer"};
  Export<PDSFlushQueue> DSFlushQueue{library, "DSFlushQueue"};
  Export<PDSStartAcquisition> DSStartAcquisition{library, "DSStartAcquisition"};
  Export<PDSStopAcquisition> DSStopAcquisition{library, "DSStopAcquisition"};
  Export<PDSGetInfo> DSGetInfo{library, "DSGetInfo"};
  Export<PDSGetBufferID> DSGetBufferID{library, "DSGetBufferID"};
  Export<PDSClose> DSClose{library, "DSClose"};
  Export<PDSRevokeBuffer> DSRevokeBuffer{library, "DSRevokeBuffer"};
  Export<PDSQueueBuffer> DSQueueBuffer{library, "DSQueueBuffer"};
  Export<PDSGetBufferInfo> DSGetBufferInfo{library, "DSGetBufferInfo"};
  Export<PDSGetBufferChunkData> DSGetBufferChunkData{library, "DSGetBufferChunkData"};
  Export<PDSGetParentDev> DSGetParentDev{library, "DSGetParentDev"};
  Export<PDSGetNumBufferParts> DSGetNumBufferParts{library, "DSGetNumBufferParts"};
  Export<PDSGetBufferPartInfo> DSGetBufferPartInfo{library, "DSGetBufferPartInfo"};
};

/** Made by Device::openDataStream. Checked operations throw GenTLException, the others return the producer's status. */
class DataStream final : public OpenModule<Device, DSFunctions, &DSFunctions::DSClose> {
 public:
  static constexpr int kModuleType = kDataStreamModule;

  DataStream(const std::shared_ptr<Device>& device, LibraryHandle library, DS_HANDLE handle, std::string id);
  ~DataStream() override;

  int moduleType() const override { return kModuleType; }
  /** The ID that it was opened by. */
  const std::string& id() const noexcept { return id_; }
  GC_ERROR closeModule() override;
  /** As the device does: the entry points are the producer's. */
  LibraryHandle getLibraryHandle() const override { return getParent()->getLibraryHandle(); }

  /** A buffer in the producer's memory, not queued; empty when the producer succeeds without one. Checked. */
  std::shared_ptr<Buffer> allocAndAnnounceBuffer(std::size_t size, void* userData);
  /** @return the user data of the announcement. Checked. */
  void* revokeBuffer(const Buffer& buffer);
  /** Not checked, but for what clearing asks of the producer. */
  GC_ERROR queueBuffer(const Buffer& buffer, bool clearFirst);
  GC_ERROR queueBuffer(BUFFER_HANDLE buffer);
  /** The same as a use of the stream, for a thread that holds it: whoever closes a stream waits for holds as well.
   * @throws ClosedException when the stream is being closed already */
  GC_ERROR queueBufferHeld(BUFFER_HANDLE buffer) {
    requireOpenForUses();
    return queueBuffer(buffer);
  }
  bool shutUses() noexcept override;
  GC_ERROR flushQueue(ACQ_QUEUE_TYPE operation);
  GC_ERROR startAcquisition(ACQ_START_FLAGS flags, std::uint64_t count);
  GC_ERROR stopAcquisition(ACQ_STOP_FLAGS flags);

  std::string getInfoString(STREAM_INFO_CMD cmd) const;
  /** @throws std::runtime_error for a number that no signed counter holds */
  std::int64_t getNumDelivered() const;
  /** @throws std::runtime_error for a number that no signed counter holds */
  std::int64_t getNumUnderrun() const;
  std::uint64_t getPayloadSize() const;
  bool definesPayloadSize() const;

  /** The buffers that allocAndAnnounceBuffer made and revokeBuffer has not taken away. */
  BufferTable& buffers() noexcept { return buffers_; }

  /** Registers for filled buffers; empty when the producer succeeds without an event. Checked. */
  std::shared_ptr<NewBufferEvent> registerNewBufferEvent();

  /** One info of a buffer of this stream, `size` bytes into `value`. The status is not checked; nothing is allocated.
   */
  GC_ERROR getBufferInfo(BUFFER_HANDLE buffer, BUFFER_INFO_CMD cmd, INFO_DATATYPE* type, void* value,
                         std::size_t* size) const {
    return getBufferInfo(getHandle(), buffer, cmd, type, value, size);
  }
  /** The same for many questions in a row, after one test whether the stream is open. @param handle  of getHandle */
  GC_ERROR getBufferInfo(DS_HANDLE handle, BUFFER_HANDLE buffer, BUFFER_INFO_CMD cmd, INFO_DATATYPE* type, void* value,
                         std::size_t* size) const {
    return functions().DSGetBufferInfo(handle, buffer, cmd, type, value, size);
  }

 private:
  const std::string id_;
  BufferTable buffers_;

  template<class T>
  T getInfoValue(STREAM_INFO_CMD cmd) const;
};

}  // namespace GenTLCpp
