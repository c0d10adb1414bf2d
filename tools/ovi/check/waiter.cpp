// A wait for a stream's event on a thread of its own.
#include "check/waiter.h"

#include <chrono>

namespace tool::check {

Waiter::Waiter(const ProducerFunctions& gentl, EVENT_HANDLE event)
    : thread_([this, &gentl, event] {
        constexpr std::uint64_t kLongest = 5000;
        EVENT_NEW_BUFFER_DATA data{};
        std::size_t size = sizeof data;
        code_ = gentl.EventGetData(event, &data, &size, kLongest);
        done_ = true;
      }) {}

Waiter::~Waiter() {
  if (thread_.joinable())
    thread_.join();
}

GC_ERROR Waiter::code() {
  thread_.join();
  return code_;
}

void settle() {
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
}

}  // namespace tool::check
