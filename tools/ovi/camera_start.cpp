// What comes before a camera's images: its stream, and the start, with what the library tells of it only in its log.
#include "camera_start.h"

#include "last_error.h"
#include "platform/console.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

// Empty when the stream does not tell it.
std::string idOf(const ovi::Stream& stream) {
  try {
    return fromLibraryText(stream.feature("StreamID").asString());
  } catch (const ovi::Error&) {
    return {};
  }
}

}  // namespace

ovi::Stream openStream(const ModuleView& view, std::uint32_t buffers) {
  const std::uint64_t memory = mainMemory();
  std::int64_t size = 0;
  if (memory != 0 && oviGetImageSize(view.device().handle(), &size) == OVI_SUCCESS && size > 0 &&
      buffers > memory / static_cast<std::uint64_t>(size))
    throw ToolError(std::to_string(buffers) + " buffers of " + bytesText(static_cast<std::uint64_t>(size)) +
                        " need more than this machine's memory of " + bytesText(memory),
                    "a smaller number of --buffers", ExitCode::kUsage);
  return view.device().openStream(buffers);
}

bool startWasRefused(Session& session, const std::string& streamId) {
  const std::string prefix = "Failed to start acquisition ";
  return session.hasMessage(prefix + "for data stream: [" + streamId) || session.hasMessage(prefix + "on stream!");
}

void startCamera(const ModuleView& view, const ovi::Stream& stream) {
  Session& session = view.session();
  view.device().start();
  if (!startWasRefused(session))
    return;
  const std::string refusal = lastErrorOf(session.loadedProducer(view.camera()));
  if (!startWasRefused(session, idOf(stream)))
    return;  // It was another camera's.
  oviStopAcquisition(view.device().handle());
  throw ToolError(
      "the producer refused to start the stream" + (refusal.empty() ? " and told no reason" : ": " + refusal),
      session.checkCommand("--only stops", view.camera()));
}

}  // namespace tool
