// ovi probe: asks one producer about itself. Run by ovi doctor in a process of its own, which a broken producer may
// take down.
#include <memory>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "platform/console.h"
#include "terminal.h"

namespace tool {

namespace {

void probe(Session& session, const std::string& path) {
  const auto info = std::make_unique<oviTLProducerInfos>();
  const oviErr code = oviGetTLProducerInfobyFilePath(info.get(), toLibraryText(path).c_str());
  nlohmann::ordered_json json;
  json["loads"] = code == OVI_SUCCESS;
  json["result"] = code == OVI_SUCCESS ? "Success" : ovi::makeErrorCode(code).message();
  json["name"] = fromLibraryText(info->name);
  json["displayName"] = fromLibraryText(info->displayName);
  json["messages"] = session.takeMessages();
  printData(json.dump(2, ' ', false, nlohmann::json::error_handler_t::replace));
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
