// One GenTL producer library, from load to unload.
#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "gentl/export_table.h"
#include "gentl_interface/GenTL.h"

namespace GenTLCpp {

class TransportLayer;

struct ProducerFunctions {
  explicit ProducerFunctions(LibraryHandle handle) : library(handle) {}

  LibraryHandle library;
  Export<PGCGetInfo> GCGetInfo{library, "GCGetInfo"};
  Export<PGCGetLastError> GCGetLastError{library, "GCGetLastError"};
  Export<PGCInitLib> GCInitLib{library, "GCInitLib"};
  Export<PGCCloseLib> GCCloseLib{library, "GCCloseLib"};
};

/**
 * Loads and initialises a producer; its modules share ownership, so that the library stays loaded as long as anything
 * of it is in use. Destruction closes what is still open and unloads the library.
 */
class GenTLProducer : public std::enable_shared_from_this<GenTLProducer> {
  struct Private {
    explicit Private() = default;
  };

 public:
  /** @param path  the full path of the .cti file
   * @throws LoadLibraryException when it cannot be loaded, another GenTLException when GCInitLib fails or is missing */
  static std::shared_ptr<GenTLProducer> create(const std::string& path);

  GenTLProducer(Private, const std::string& path);
  GenTLProducer(const GenTLProducer&) = delete;
  GenTLProducer& operator=(const GenTLProducer&) = delete;
  ~GenTLProducer();

  /** Opens the system module. Called once per producer. */
  std::shared_ptr<TransportLayer> openTransportLayer();

  /** Calls GCCloseLib, once; whatever it answers, the producer is closed then. The library stays loaded. */
  void close() noexcept;
  bool isClosed() const noexcept { return closed_.load(std::memory_order_acquire); }
  bool isOpen() const noexcept { return !isClosed(); }

  std::string getInfoString(TL_INFO_CMD cmd) const;
  std::string getID() const { return getInfoString(TL_INFO_ID); }
  std::string getName() const { return getInfoString(TL_INFO_NAME); }
  std::string getPathName() const { return getInfoString(TL_INFO_PATHNAME); }
  std::string getDisplayName() const { return getInfoString(TL_INFO_DISPLAYNAME); }

  /** The text of this thread's last error in the producer; empty when it gives none. */
  std::string getLastErrorText() const;

  /** The path that this producer was loaded from. */
  const std::string& filePath() const noexcept { return path_; }
  int id() const noexcept { return id_; }
  LibraryHandle getLibraryHandle() const noexcept { return functions_ ? functions_->library : nullptr; }

  /** The entry point of that name in a loaded library, or null. */
  static void* resolveExport(LibraryHandle library, const char* name) noexcept;

  /**
   * The producer constructed last, none after any was destroyed: the one that error texts are asked of. The texts are
   * the right ones as long as one producer is in use; with several, they come from the latest, whoever failed.
   */
  static std::shared_ptr<GenTLProducer> current();

 private:
  std::atomic<bool> closed_{true};
  int id_;
  std::string path_;
  std::unique_ptr<ProducerFunctions> functions_;
};

}  // namespace GenTLCpp
