// One GenTL producer library, from load to unload.
#include "gentl/producer.h"

#include <array>
#include <mutex>
#include <utility>

#include "core/bounded_copy.h"
#include "gentl/exceptions.h"
#include "gentl/info_query.h"
#include "gentl/trace.h"
#include "gentl/transport_layer.h"
#include "log_forwarding.h"

namespace GenTLCpp {

namespace {

/** The producer that error texts are asked of. */
struct CurrentProducer {
  std::mutex mutex;
  std::weak_ptr<GenTLProducer> producer;

  static CurrentProducer& instance() {
    static CurrentProducer& current = *new CurrentProducer;
    return current;
  }
  void set(const std::shared_ptr<GenTLProducer>& to) {
    const std::lock_guard lock(mutex);
    producer = to;
  }
};

std::atomic<int> nextId{0};

}  // namespace

std::shared_ptr<GenTLProducer> GenTLProducer::create(const std::string& path) {
  static const bool forwarded = [] {
    forwardGenICamLog();
    return true;
  }();
  static_cast<void>(forwarded);
  auto producer = std::make_shared<GenTLProducer>(Private(), path);
  CurrentProducer::instance().set(producer);
  return producer;
}

GenTLProducer::GenTLProducer(Private, const std::string& path) : id_(nextId.fetch_add(1)), path_(path) {
  traceLine("GenTLProducer(", id_, ")");
  LibraryHandle library = OVI::platform::loadLibrary(path);
  if (library == nullptr) {
    throw LoadLibraryException("Failed to load CTI file; " + OVI::platform::lastErrorText());
  }
  functions_ = std::make_unique<ProducerFunctions>(library);
  // A library that failed to initialise stays loaded: what it has started by then is not known.
  checkGenTLError(functions_->GCInitLib(), false);
  closed_.store(false);
}

GenTLProducer::~GenTLProducer() {
  CurrentProducer::instance().set(nullptr);
  traceLine("~GenTLProducer(", id_, ")");
  close();
  OVI::platform::unload(getLibraryHandle());
}

std::shared_ptr<TransportLayer> GenTLProducer::openTransportLayer() {
  return std::make_shared<TransportLayer>(shared_from_this(), getLibraryHandle());
}

void GenTLProducer::close() noexcept {
  if (!closed_.exchange(true)) {
    static_cast<void>(functions_->GCCloseLib());
  }
}

std::string GenTLProducer::getInfoString(TL_INFO_CMD cmd) const {
  return OVI::platform::fromUtf8(queryText([&](INFO_DATATYPE* type, char* buffer, std::size_t* size) {
    return functions_->GCGetInfo(cmd, type, buffer, size);
  }));
}

std::string GenTLProducer::getLastErrorText() const {
  std::array<char, kInfoTextSize> buffer{};
  std::size_t size = buffer.size();
  GC_ERROR code = GC_ERR_SUCCESS;
  static_cast<void>(functions_->GCGetLastError(&code, buffer.data(), &size));
  return OVI::platform::fromUtf8(std::string(OVI::boundedText(buffer.data(), buffer.size())));
}

void* GenTLProducer::resolveExport(LibraryHandle library, const char* name) noexcept {
  return OVI::platform::resolve(library, name);
}

std::shared_ptr<GenTLProducer> GenTLProducer::current() {
  CurrentProducer& slot = CurrentProducer::instance();
  const std::lock_guard lock(slot.mutex);
  return slot.producer.lock();
}

}  // namespace GenTLCpp
