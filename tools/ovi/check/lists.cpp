// The lists of interfaces, devices and streams, brought up to date.
#include "check/lists.h"

#include <set>

#include "check/stopwatch.h"
#include "text.h"

namespace tool::check {

std::vector<std::string> interfaceIds(Checker& check, TL_HANDLE tl) {
  const ProducerFunctions& gentl = check.gentl();
  bool8_t changed = 0;
  check.need(gentl.TLUpdateInterfaceList, tl, &changed, kUpdateTime);
  std::uint32_t count = 0;
  check.need(gentl.TLGetNumInterfaces, tl, &count);
  std::vector<std::string> ids;
  for (std::uint32_t i = 0; i < count; ++i)
    ids.push_back(askText("TLGetInterfaceID(" + std::to_string(i) + ")",
                          [&](char* text, std::size_t* size) { return gentl.TLGetInterfaceID(tl, i, text, size); }));
  return ids;
}

std::vector<std::string> deviceIds(Checker& check, IF_HANDLE iface) {
  const ProducerFunctions& gentl = check.gentl();
  bool8_t changed = 0;
  check.need(gentl.IFUpdateDeviceList, iface, &changed, kUpdateTime);
  std::uint32_t count = 0;
  check.need(gentl.IFGetNumDevices, iface, &count);
  std::vector<std::string> ids;
  for (std::uint32_t i = 0; i < count; ++i)
    ids.push_back(askText("IFGetDeviceID(" + std::to_string(i) + ")",
                          [&](char* text, std::size_t* size) { return gentl.IFGetDeviceID(iface, i, text, size); }));
  return ids;
}

std::vector<std::string> streamIds(Checker& check, DEV_HANDLE device) {
  const ProducerFunctions& gentl = check.gentl();
  std::uint32_t count = 0;
  check.need(gentl.DevGetNumDataStreams, device, &count);
  std::vector<std::string> ids;
  for (std::uint32_t i = 0; i < count; ++i)
    ids.push_back(askText("DevGetDataStreamID(" + std::to_string(i) + ")", [&](char* text, std::size_t* size) {
      return gentl.DevGetDataStreamID(device, i, text, size);
    }));
  return ids;
}

void requireUnique(const std::vector<std::string>& ids) {
  if (std::set<std::string>(ids.begin(), ids.end()).size() != ids.size())
    throw Broken("an ID occurs twice: " + join(ids, ", "));
}

void timeUpdate(Checker& check, const char* function, const std::function<GC_ERROR()>& update) {
  constexpr std::int64_t kLong = 500;
  const Stopwatch watch;
  const GC_ERROR code = update();
  const std::int64_t taken = watch.milliseconds();
  if (code != GC_ERR_SUCCESS)
    throw Broken(std::string(function) + " with a time-out of " + std::to_string(kUpdateTime) + " ms returned " +
                 codeText(code) + " after " + std::to_string(taken) + " ms");
  (taken > kLong ? check.warn(std::string(function) + " took " + std::to_string(taken) +
                              " ms: programs that wait less miss its cameras")
                 : check.seen(std::string(function) + " took " + std::to_string(taken) + " ms"));
}

}  // namespace tool::check
