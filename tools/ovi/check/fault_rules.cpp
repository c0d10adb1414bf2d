// Rules of calls that make no sense.
#include "check/groups.h"
#include "check/stream_session.h"

namespace tool::check {

void checkFaults(Checker& check) {
  const ProducerFunctions& gentl = check.gentl();
  const std::unique_ptr<StreamSession> session = openStream(check);
  if (!session)
    return;
  const Modules& m = session->modules();
  INFO_DATATYPE type = 0;
  std::size_t size = 0;
  check.rule("No handle and handles of other kinds are refused", [&] {
    check.prefer("without a handle", {GC_ERR_INVALID_HANDLE}, gentl.TLGetInfo, nullptr, TL_INFO_ID, &type, nullptr,
                 &size);
    check.prefer("without a handle", {GC_ERR_INVALID_HANDLE}, gentl.DevClose, nullptr);
    check.prefer("of a system", {GC_ERR_INVALID_HANDLE}, gentl.DSGetInfo, m.tl, STREAM_INFO_ID, &type, nullptr, &size);
    check.prefer("of a stream", {GC_ERR_INVALID_HANDLE}, gentl.DevGetInfo, m.stream, DEVICE_INFO_ID, &type, nullptr,
                 &size);
    check.prefer("without a buffer", {GC_ERR_INVALID_HANDLE, GC_ERR_INVALID_BUFFER}, gentl.DSQueueBuffer, m.stream,
                 nullptr);
  });
  check.rule("Missing places for results are refused", [&] {
    std::uint32_t count = 0;
    check.prefer("without a size", {GC_ERR_INVALID_PARAMETER}, gentl.DevGetInfo, m.device, DEVICE_INFO_ID, &type,
                 nullptr, nullptr);
    check.prefer("without a count", {GC_ERR_INVALID_PARAMETER}, gentl.TLGetNumInterfaces, m.tl, nullptr);
    check.prefer("without a handle's place", {GC_ERR_INVALID_PARAMETER}, gentl.DevGetPort, m.device, nullptr);
    check.prefer("without an ID", {GC_ERR_INVALID_PARAMETER, GC_ERR_INVALID_ID}, gentl.TLOpenInterface, m.tl, nullptr,
                 nullptr);
    check.need(gentl.TLGetNumInterfaces, m.tl, &count);
  });
  check.rule("Unknown commands are not implemented", [&] {
    check.prefer("of command 999", {GC_ERR_NOT_IMPLEMENTED}, gentl.TLGetInfo, m.tl, 999, &type, nullptr, &size);
    check.prefer("of command 999", {GC_ERR_NOT_IMPLEMENTED}, gentl.DevGetInfo, m.device, 999, &type, nullptr, &size);
    check.prefer("of command 999", {GC_ERR_NOT_IMPLEMENTED}, gentl.DSGetInfo, m.stream, 999, &type, nullptr, &size);
    check.prefer("of command 999", {GC_ERR_NOT_IMPLEMENTED}, gentl.GCGetPortInfo, m.remote, 999, &type, nullptr, &size);
  });
}

}  // namespace tool::check
