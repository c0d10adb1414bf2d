// Resolving of entry points, and GenICam's log, which hears about the missing ones.
#include "gentl/export_table.h"

#include <log4cpp/Category.hh>

#include <string>

#include "gentl/producer.h"

namespace GenTLCpp {

void* resolveExportOrWarn(LibraryHandle library, const char* name) {
  void* function = GenTLProducer::resolveExport(library, name);
  if (function == nullptr) {
    LOG4CPP_NS::Category::getInstance("TLProxy").warn(std::string(name) + " not exported.");
  }
  return function;
}

}  // namespace GenTLCpp
