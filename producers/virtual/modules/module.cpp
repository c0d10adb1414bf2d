// Events and the end of modules.
#include "modules/module.h"

#include <cstring>

namespace vcam {

void* Module::registerEvent(EVENT_TYPE type) {
  if (type != EVENT_ERROR && type != EVENT_MODULE) {
    fail(GC_ERR_NOT_IMPLEMENTED, "this module has no events of type ", type);
  }
  return events_.add(std::make_unique<QueuedEvent>(type));
}

void Module::fireModuleEvent(std::uint64_t id, std::initializer_list<std::uint64_t> data) {
  if (!events_.has(EVENT_MODULE) || !features().notifies(id)) {
    return;
  }
  events_.fire(EVENT_MODULE, {id, {}, std::as_bytes(std::span(data.begin(), data.size()))});
}

void Module::fireError(GC_ERROR code, std::string_view text) {
  // Sign-extended, so that its low half is the code.
  events_.fire(EVENT_ERROR, {static_cast<std::uint64_t>(std::int64_t{code}), {}, std::as_bytes(std::span(text))});
}

void Module::close(void* handle, Kind kind, const char* what) {
  Object* object = HandleTable::claim(handle, kind);
  if (object == nullptr) {
    fail(GC_ERR_INVALID_HANDLE, "not the handle of an open ", what);
  }
  static_cast<Module*>(object)->shutDown();
}

void Module::shutDown() {
  void* const me = handle();
  endCalls();
  HandleTable::drain(me);
  closeChildren();
  events_.removeAll();
  const std::unique_ptr<Module> ending = detach();
  HandleTable::erase(me);
}

}  // namespace vcam
