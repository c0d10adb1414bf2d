// Start and end of the producer, and the cables of its cameras.
#include "modules/library.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <new>

#include "camera/camera_model.h"
#include "modules/recorder.h"
#include "modules/system.h"
#include "platform/own_path.h"

namespace vcam {

namespace {

constexpr std::size_t kInterfaces = 2;

ProducerIdentity identify(const std::string& path, const std::string& tlType) {
  ProducerIdentity me;
  me.pathName = path;
  me.name = path.substr(path.find_last_of("/\\") + 1);
  me.id = path;
  me.vendor = "Kestrova";
  me.model = "Virtual Camera Producer";
  me.version = "1.0.0";
  me.tlType = tlType;
  me.displayName = "Kestrova Virtual Camera (" + me.name + ")";
  return me;
}

std::unique_ptr<Session> makeSession() {
  auto session = std::make_unique<Session>();
  const std::string path = ownPath();
  session->options = loadOptions(path);
  session->identity = identify(path, session->options.cameras.tlType);
  std::vector<std::unique_ptr<Camera>> cameras = makeDefaultCameras(session->options.cameras);
  if (session->options.variant == Variant::Recording) {
    session->recorder = std::make_shared<Recorder>(session->options.recordingBytes);
  }
  const std::size_t perInterface = (cameras.size() + kInterfaces - 1) / kInterfaces;
  for (std::size_t i = 0; i < cameras.size(); ++i) {
    auto slot = std::make_unique<CameraSlot>();
    slot->interfaceIndex = i / perInterface;
    slot->camera = std::move(cameras[i]);
    const auto& choices = session->options.cameras.choices;
    if (const auto choice = choices.find(slot->camera->identity().serialNumber); choice != choices.end()) {
      slot->present = choice->second.plugged;
      slot->foreignSubnet = choice->second.foreignSubnet;
    }
    session->cameras.push_back(std::move(slot));
  }
  for (std::size_t i = 0; i < kInterfaces; ++i) {
    const std::string number = std::to_string(i);
    session->interfaces.push_back(
        {"VirtualInterface" + number, "Virtual Interface " + number, session->identity.tlType});
  }
  return session;
}

}  // namespace

Library& Library::instance() {
  alignas(Library) static std::array<std::byte, sizeof(Library)> place;
  static Library& instance = *new (place.data()) Library;
  return instance;
}

void Library::open() {
  const std::lock_guard lock(mutex_);
  if (session_) {
    fail(GC_ERR_RESOURCE_IN_USE, "the library is already initialised");
  }
  session_ = makeSession();
  for (const auto& slot : session_->cameras) {
    if (const auto ordered = orders_.find(slot->camera->identity().id); ordered != orders_.end()) {
      follow(*slot, ordered->second);
    }
  }
  initialized_.store(true, std::memory_order_release);
}

void Library::close() {
  const std::lock_guard lock(mutex_);
  if (!session_) {
    fail(GC_ERR_NOT_INITIALIZED, "the library is not initialised");
  }
  initialized_.store(false, std::memory_order_release);
  void* system = nullptr;
  {
    const std::lock_guard systemLock(systemMutex_);
    system = system_ ? system_->handle() : nullptr;
  }
  if (system != nullptr) {
    if (Object* claimed = HandleTable::claim(system, kSystem)) {
      static_cast<System*>(claimed)->shutDown();
    } else {
      HandleTable::awaitErased(system);
    }
  }
  session_.reset();
}

ProducerIdentity Library::identity() {
  const std::lock_guard lock(mutex_);
  if (!session_) {
    fail(GC_ERR_NOT_INITIALIZED, "the library is not initialised");
  }
  return session_->identity;
}

std::shared_ptr<Recorder> Library::recorder() {
  const std::lock_guard lock(mutex_);
  if (!session_) {
    fail(GC_ERR_NOT_INITIALIZED, "the library is not initialised");
  }
  return session_->recorder;
}

void* Library::openSystem() {
  const std::lock_guard lock(mutex_);
  if (!session_) {
    fail(GC_ERR_NOT_INITIALIZED, "the library is not initialised");
  }
  const std::lock_guard systemLock(systemMutex_);
  if (system_) {
    fail(GC_ERR_RESOURCE_IN_USE, "the system is already open");
  }
  auto system = std::make_unique<System>(*session_);
  HandleTable::insert(*system);
  system_ = std::move(system);
  return system_->handle();
}

std::unique_ptr<System> Library::takeSystem() {
  const std::lock_guard lock(systemMutex_);
  return std::move(system_);
}

// Notes an order about the devices that are meant, and lets those that exist follow it.
template<class Change>
bool Library::order(const std::string& deviceId, Change change) {
  const std::lock_guard lock(mutex_);
  bool known = false;
  for (const CameraModel& model : defaultModels()) {
    const std::string& id = model.identity.id;
    if (!deviceId.empty() && id != deviceId) {
      continue;
    }
    known = true;
    change(orders_[id]);
    for (std::size_t i = 0; session_ && i < session_->cameras.size(); ++i) {
      if (session_->cameras[i]->camera->identity().id == id) {
        follow(*session_->cameras[i], orders_[id]);
      }
    }
  }
  return known;
}

void Library::follow(CameraSlot& slot, const Order& order) {
  slot.camera->setBusyPolls(order.busyPolls);
  const bool present = order.present.value_or(slot.present);
  if (slot.present.exchange(present) == present) {
    return;
  }
  if (present) {
    ++slot.plugs;
  } else {
    slot.camera->disconnect();
  }
  const std::lock_guard systemLock(systemMutex_);
  if (system_) {
    system_->cableChanged(slot, present);
  }
}

bool Library::setPresent(const std::string& deviceId, bool present) {
  return order(deviceId, [present](Order& order) { order.present = present; });
}

bool Library::setBusyPolls(const std::string& deviceId, std::uint32_t polls) {
  return order(deviceId, [polls](Order& order) { order.busyPolls = polls; });
}

void Library::withdrawOrders() {
  order({}, [](Order& order) { order = {true, 0}; });
  const std::lock_guard lock(mutex_);
  orders_.clear();
}

}  // namespace vcam
