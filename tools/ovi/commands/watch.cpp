// ovi watch: values of features as they change.
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <set>

#include "commands.h"
#include "feature_text.h"
#include "feature_view.h"
#include "platform/console.h"
#include "printable.h"
#include "terminal.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

struct WatchOptions {
  std::vector<std::string> names;
  std::string module = "device";
  double seconds = 0;
  std::uint64_t changes = 0;
};

// Names of features that may have changed, from the library's threads to the one that prints.
class Changes {
 public:
  void add(const std::string& name) {
    {
      const std::lock_guard lock(mutex_);
      names_.insert(name);
    }
    added_.notify_one();
  }
  std::set<std::string> take(std::chrono::milliseconds timeout) {
    std::unique_lock lock(mutex_);
    added_.wait_for(lock, timeout, [this] { return !names_.empty(); });
    return std::exchange(names_, {});
  }

 private:
  std::mutex mutex_;
  std::condition_variable added_;
  std::set<std::string> names_;
};

std::string valueOf(const ModuleView& view, const std::string& name) {
  const ovi::FeatureParameter parameter = requireParameter(view, name);
  return isReadable(parameter) ? readFeature(view, name) : "(" + accessModeText(parameter.accessMode) + ")";
}

void print(Session& session, double seconds, const std::string& name, const std::string& value) {
  if (session.options().json)
    printJson(nlohmann::ordered_json{{"seconds", seconds}, {"name", name}, {"value", value}}, -1);
  else
    printData(fixedText(seconds, 3) + "\t" + name + "=" + printable(value));
}

void watch(Session& session, const WatchOptions& options) {
  using Clock = std::chrono::steady_clock;
  // Before the view, so that it outlives the library's last calls.
  Changes changes;
  const ModuleView view(session, options.module, Use::kRead);
  std::map<std::string, std::string> values;
  for (const std::string& name : options.names) {
    if (requireParameter(view, name).featureType == OVI_FEATURE_CATEGORY)
      throw ToolError(name + " is a category and has no value", view.command("features " + name), ExitCode::kUsage);
    values[name] = valueOf(view, name);
  }
  const Clock::time_point start = Clock::now();
  for (const std::string& name : options.names)
    print(session, 0.0, name, values[name]);

  std::vector<ovi::FeatureWatch> watches;
  for (const std::string& name : options.names)
    watches.emplace_back(view.handle(), view.module(), toLibraryText(name),
                         [&changes, name](const char*) { changes.add(name); });
  std::uint64_t printed = 0;
  const auto elapsed = [&] { return std::chrono::duration<double>(Clock::now() - start).count(); };
  while (!interrupted() && (options.seconds <= 0 || elapsed() < options.seconds) &&
         (options.changes == 0 || printed < options.changes)) {
    for (const std::string& name : changes.take(std::chrono::milliseconds(100))) {
      std::string value = valueOf(view, name);
      if (value == values[name])
        continue;
      print(session, elapsed(), name, value);
      values[name] = std::move(value);
      ++printed;
    }
  }
  throwIfInterrupted();
}

}  // namespace

void addWatch(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("watch", "Print values of features as they change, until Ctrl-C");
  auto options = std::make_shared<WatchOptions>();
  command->add_option("FEATURE", options->names, "Names of features")->required();
  addNumberOption(*command, "-s,--seconds", options->seconds, "SECONDS", "For so long at most");
  addNumberOption(*command, "-n,--changes", options->changes, "N", "Ends after so many changes");
  addCameraOption(*command, common);
  addModuleOption(*command, options->module);
  command->footer("Examples:\n  ovi watch DeviceTemperature\n  ovi watch --json ExposureTime Gain --seconds 10");
  command->callback([=, &action] { action = [=](Session& session) { watch(session, *options); }; });
}

}  // namespace tool
