// The description of a camera's modules, which the library reads but does not hand out.
#include "camera_description.h"

#include <optional>

#include "hex.h"
#include "module_view.h"
#include "platform/child_process.h"
#include "terminal.h"
#include "tool_error.h"

namespace tool {

namespace {

// "ovi: IFOpenDevice returned ..." without the name.
std::string reasonOf(const ChildResult& child) {
  if (!child.started)
    return "no process could be started to ask its producer: " + child.refusal;
  if (child.timedOut || child.crashed)
    return "its producer " + std::string(child.crashed ? "crashed" : "did not answer");
  std::string line = child.messages.substr(0, child.messages.find('\n'));
  if (!line.empty() && line.back() == '\r')
    line.pop_back();
  constexpr std::string_view kName = "ovi: ";
  return line.starts_with(kName) ? line.substr(kName.size()) : line;
}

}  // namespace

std::shared_ptr<const FeatureFacts> describedFeatures(Session& session, const Camera& camera, ovi::Module module) {
  constexpr std::chrono::seconds kPatience{30};
  ProgressLine line;
  line.show(-1.0, "reading the description", true);
  const ChildResult child = runChild(
      ownProgram(), {"describe", session.producerFile(camera), camera.interfaceId, camera.id, moduleText(module)},
      kPatience);
  line.clear();
  throwIfInterrupted();
  std::string_view digits = child.output;
  digits = digits.substr(0, digits.find_last_not_of("\r\n") + 1);
  const std::optional<std::vector<std::uint8_t>> bytes = bytesFromHex(digits);
  if (child.exitCode != 0 || !bytes || bytes->empty())
    throw ToolError(reasonOf(child));
  return std::make_shared<const FeatureFacts>("the description of " + camera.shortName(),
                                              std::string(bytes->begin(), bytes->end()));
}

}  // namespace tool
