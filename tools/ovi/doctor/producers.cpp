// Every producer tried in a process of its own, with its interfaces and the cameras that it tells.
#include "doctor/producers.h"

#include <algorithm>
#include <sstream>

#include "doctor/binary_file.h"
#include "paths.h"
#include "platform/binary_format.h"
#include "platform/child_process.h"
#include "text.h"

namespace tool {

namespace {

using nlohmann::ordered_json;

constexpr const char* kHarmAdvice =
    "every program that loads it suffers the same: ask its maker for another version, and take its folder out of the "
    "search path meanwhile";

std::string textIn(const ordered_json& object, const char* key) {
  return object.value(key, std::string());
}

// The last line that a process wrote.
std::string lastLine(const std::string& text) {
  const std::vector<std::string> lines = split(text, "\r\n");
  return lines.empty() ? "" : lines.back();
}

// "crashed in FUNCTION" on the standard error of a watched process.
constexpr std::string_view kCrashMark = "crashed in ";

std::string crashPlace(const std::string& messages) {
  const std::size_t at = messages.find(kCrashMark);
  if (at == std::string::npos)
    return {};
  const std::size_t start = at + kCrashMark.size();
  return messages.substr(start, messages.find_first_of("\r\n", at) - start);
}

std::string adviceForLoading(const ordered_json& answer) {
  const std::string reason = textIn(answer, "reason");
  std::vector<std::string> missing;
  for (const ordered_json& library : answer.value("missing", ordered_json::array()))
    missing.push_back(textIn(library, "library"));
  if (!missing.empty())
    return "install what has " + join(missing, " and ") + ", or add the folder that holds it to " + kLibraryPath;
  if (matchesPattern("crashes", reason))
    return "ask its maker for another version";
  if (matchesPattern("*version*not found*", reason))
    return "it was built for a newer system: ask its maker for one for this system";
  if (matchesPattern("undefined symbol", reason))
    return "it does not fit the libraries that it finds here: ldd -r shows which ones they are";
  if (matchesPattern("executable", reason))
    return "it is a program: is it the right file?";
  return "install it again: the file may be damaged";
}

std::string reasonForLoading(const std::string& name, const ordered_json& answer) {
  std::string text;
  for (const ordered_json& library : answer.value("missing", ordered_json::array())) {
    const std::string neededBy = textIn(library, "neededBy");
    text += (text.empty() ? "" : ", and ") + ("it needs " + textIn(library, "library")) +
            (neededBy == pathText(pathFromText(name).filename()) ? "" : " (for " + neededBy + ")") +
            ", which is not there";
  }
  if (!text.empty())
    return "does not load: " + text;
  // The reason names the file, as our text does.
  const std::string reason = textIn(answer, "reason");
  return reason.starts_with(name + " ") ? reason.substr(name.size() + 1) : reason;
}

std::string adviceForFault(const ordered_json& fault) {
  const std::string result = textIn(fault, "result");
  if (matchesPattern("RESOURCE_IN_USE", result) || matchesPattern("ACCESS_DENIED", result))
    return "another program may hold it: close that program";
  if (matchesPattern("TIMEOUT", result))
    return "give it more time: ovi doctor --timeout 5000";
  return "is the maker's driver or service installed and running? ovi check FILE.cti tells more";
}

// The answers of one producer's process, put into words.
class Interpreter {
 public:
  Interpreter(const std::filesystem::path& file, const BinaryFile& binary, ProducerExamination& result)
      : file_(file),
        name_(pathText(file)),
        result_(result) {
    facts_ = {{"file", name_}, {"architecture", binary.kind}};
  }

  void interpret(const ChildResult& child) {
    std::istringstream lines(child.output);
    for (std::string line; std::getline(lines, line);) {
      const ordered_json answer = ordered_json::parse(line, nullptr, false);
      if (answer.is_object())
        take(answer);
    }
    const std::string place = crashPlace(child.messages);
    if (!child.started)
      problem("cannot be tried: no process could be started: " + child.refusal, "close other programs, and try again");
    else if (child.crashed)
      harm((ended_ ? std::string("crashes at the program's end")
                   : "crashes" + (place.empty() ? place : " in " + place)) +
           ": " + child.crash);
    else if (hung_.empty() && child.timedOut)
      harm(ended_ ? "hangs: the program does not end when it was loaded" : "hangs: it gave no answer in time");
    else if (!hung_.empty())
      harm("hangs: " + hung_ + " does not come back");
    else if (!ended_ && !failed_ && lastLine(child.messages).starts_with("ovi: "))
      problem(lastLine(child.messages).substr(5), kHarmAdvice);
    else if (!ended_ && !failed_)
      harm("ends the program that loads it, with exit code " + std::to_string(child.exitCode));
    if (!failed_)
      good();
    tellMessages(child.messages);
  }

  void problem(const std::string& text, const std::string& advice) {
    failed_ = true;
    facts_["loads"] = false;
    facts_["reason"] = text;
    result_.producers.push_back({Level::kProblem, name_ + ": " + text, advice, facts_});
  }

 private:
  void harm(const std::string& text) {
    result_.harmful.push_back(file_);
    problem(text, kHarmAdvice);
  }

  void good() {
    const std::string version = textIn(facts_, "version");
    const std::string gentl = textIn(facts_, "gentl");
    facts_["loads"] = true;
    result_.producers.push_back(
        {Level::kGood,
         name_ + ": " + textIn(facts_, "displayName") + (version.empty() ? "" : ", version " + version) +
             (gentl.empty() ? "" : ", GenTL " + gentl) + ", loads (" + textIn(facts_, "architecture") + ")",
         "", facts_});
  }

  // What the producer printed itself: about its settings, its licence, its driver.
  void tellMessages(const std::string& messages) {
    constexpr std::size_t kMost = 5;
    std::vector<std::string> lines = split(messages, "\r\n");
    std::erase_if(lines, [](const std::string& line) {
      return line.starts_with("ovi: ") || line.starts_with("try: ") || line.starts_with(kCrashMark);
    });
    if (lines.size() > kMost)
      lines.resize(kMost);
    for (const std::string& line : lines)
      result_.producers.push_back({Level::kNote, pathText(file_.filename()) + " says: " + line,
                                   "mend what it complains about, or ask its maker what is meant"});
  }

  void take(const ordered_json& answer) {
    const std::string what = textIn(answer, "is");
    if (what == "refused")
      takeRefusal(textIn(answer, "reason"));
    else if (what == "unloadable")
      problem(reasonForLoading(name_, answer), adviceForLoading(answer));
    else if (what == "missing")
      takeMissing(answer.value("functions", std::vector<std::string>()));
    else if (what == "producer")
      facts_.update(answer);
    else if (what == "interface")
      takeInterface(answer);
    else if (what == "camera")
      takeCamera(answer);
    else if (what == "fault")
      takeFault(answer);
    else if (what == "hung")
      hung_ = textIn(answer, "function");
    else if (what == "end")
      ended_ = true;
    facts_.erase("is");
  }

  // A real-time producer on a machine that is not prepared for it.
  void takeRefusal(const std::string& reason) {
    problem("is not loaded, because this machine is not prepared for a real-time producer: " + reason,
            "turn the hypervisor off and set processors aside, as its maker's manual says, or use the maker's ordinary "
            "producer");
  }

  void takeMissing(const std::vector<std::string>& functions) {
    const bool isProducer = std::ranges::none_of(
        functions, [](const std::string& function) { return function == "GCInitLib" || function == "TLOpen"; });
    if (!isProducer)
      problem("is no GenTL producer: " + std::to_string(functions.size()) + " functions are not exported, " +
                  functions.front() + " among them",
              "is it the right file? Its maker's installation has the one that is meant");
    else
      result_.producers.push_back(
          {Level::kNote, name_ + ": does not export " + join(functions, ", ") + ": what needs them fails",
           "ask its maker for a newer version; ovi check " + name_ + " tells what else it lacks"});
  }

  void takeInterface(const ordered_json& answer) {
    const auto cameras = answer.value("cameras", std::uint64_t{0});
    const std::string name = textIn(answer, "name").empty() ? textIn(answer, "id") : textIn(answer, "name");
    ordered_json facts{{"producer", name_}};
    facts.update(answer);
    facts.erase("is");
    result_.interfaces.push_back(
        {Level::kGood,
         name + " (" + textIn(answer, "type") + ") of " + pathText(file_.filename()) + ": " +
             (cameras == 0 ? "no camera" : std::to_string(cameras) + (cameras == 1 ? " camera" : " cameras")) +
             ", searched for " + std::to_string(answer.value("milliseconds", std::int64_t{0})) + " ms",
         "", facts});
  }

  void takeCamera(const ordered_json& answer) {
    result_.cameras.push_back({file_, textIn(answer, "interface"), textIn(answer, "id"), textIn(answer, "vendor"),
                               textIn(answer, "model"), textIn(answer, "serial"), textIn(answer, "userName"),
                               answer.value("access", std::uint32_t{0})});
  }

  void takeFault(const ordered_json& answer) {
    const std::string module = textIn(answer, "module");
    const std::string function = textIn(answer, "function");
    const std::string text = function + " " + textIn(answer, "result");
    if (function == "TLClose" || function == "IFClose" || function == "GCCloseLib")
      result_.producers.push_back({Level::kNote, name_ + ": " + text, "ovi check " + name_ + " tells more"});
    else if (module.empty() && !failed_)
      problem(text, adviceForFault(answer));
    else if (!module.empty())
      result_.interfaces.push_back(
          {Level::kProblem, module + " of " + pathText(file_.filename()) + ": " + text, adviceForFault(answer)});
  }

  std::filesystem::path file_;
  std::string name_;
  ProducerExamination& result_;
  ordered_json facts_;
  std::string hung_;
  bool ended_ = false;
  bool failed_ = false;
};

void examineProducer(const Session& session, const std::filesystem::path& file, ProducerExamination& result) {
  const BinaryFile binary = inspectBinary(file);
  Interpreter interpreter(file, binary, result);
  if (!binary.readable)
    return interpreter.problem(binary.kind, "let this user read it, or install the producer again");
  if (binary.bits == 0)
    return interpreter.problem(binary.kind, "install the producer again: this is not what its maker delivers");
  if (!binary.fits)
    return interpreter.problem(binary.kind + "; this program can load: " + loadableKind(),
                               "install its maker's producer for this kind of machine");
  // Longer than the watch over single calls, which names the function that hangs.
  const auto patience = std::chrono::milliseconds(session.options().timeout) * 3 + std::chrono::seconds(30);
  interpreter.interpret(runChild(
      ownProgram(), {"probe", pathText(file), "--timeout", std::to_string(session.options().timeout)}, patience));
}

}  // namespace

ProducerExamination examineProducers(const Session& session, const std::vector<std::filesystem::path>& files,
                                     const std::function<void(const std::filesystem::path& file)>& begin) {
  ProducerExamination result;
  for (const std::filesystem::path& file : files) {
    throwIfInterrupted();
    begin(file);
    examineProducer(session, file, result);
  }
  throwIfInterrupted();
  if (files.empty())
    result.producers.push_back({Level::kProblem, "there is none", "install the camera maker's producer"});
  return result;
}

}  // namespace tool
