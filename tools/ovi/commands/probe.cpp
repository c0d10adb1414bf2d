// ovi probe: asks one producer about itself and its cameras. Run by ovi doctor in a process of its own, which a broken
// producer may take down.
#include <memory>

#include "commands.h"
#include "doctor/producer_probe.h"
#include "paths.h"
#include "platform/console.h"
#include "terminal.h"

namespace tool {

namespace {

void tellLine(const nlohmann::ordered_json& line) {
  printJson(line, -1);
}

// What the library demands of the machine before it loads a producer of this name. Nothing is loaded: there is no file
// below a file.
bool isRefused(const std::string& path) {
  const std::filesystem::path file = pathFromText(path);
  const auto info = std::make_unique<oviTLProducerInfos>();
  const oviErr code =
      oviGetTLProducerInfobyFilePath(info.get(), toLibraryText(pathText(file / file.filename())).c_str());
  if (code != OVI_ERR_HYPERVISOR_NOT_DISABLED && code != OVI_ERR_NO_KITHARA_PROCESSORS)
    return false;
  tellLine({{"is", "refused"}, {"reason", ovi::makeErrorCode(code).message()}});
  return true;
}

void probe(Session& session, const std::string& path) {
  if (!isRefused(path))
    probeProducer(pathFromText(path), std::chrono::milliseconds(session.options().timeout), tellLine);
}

}  // namespace

void addProbe(CLI::App& app, CommonOptions& /*common*/, Action& action) {
  CLI::App* command = app.add_subcommand("probe", "Ask a producer about itself");
  command->group("");  // for ovi doctor, not for people
  auto path = std::make_shared<std::string>();
  command->add_option("FILE", *path, "The producer")->required();
  command->callback([=, &action] { action = [=](Session& session) { probe(session, *path); }; });
}

}  // namespace tool
