// ovi probe: asks one producer about itself and its cameras. Run by ovi doctor in a process of its own, which a broken
// producer may take down.
#include <memory>

#include "commands.h"
#include "doctor/producer_probe.h"
#include "paths.h"
#include "sole_producer.h"
#include "terminal.h"

namespace tool {

namespace {

void tellLine(const nlohmann::ordered_json& line) {
  printJson(line, -1);
}

void probe(Session& session, const std::string& path) {
  if (const std::string reason = refusalOf(pathFromText(path)); !reason.empty())
    tellLine({{"is", "refused"}, {"reason", reason}});
  else
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
