// The ledger of an acquisition in words and as data.
#include <nlohmann/json.hpp>

#include "acquisition.h"
#include "text.h"

namespace tool {

namespace {

std::string countText(std::uint64_t count, const char* singular, const char* plural) {
  return std::to_string(count) + " " + (count == 1 ? singular : plural);
}

}  // namespace

bool Ledger::fellSilent() const {
  constexpr double kUsual = 5;  // times the mean of the time between two
  const std::uint64_t came = delivered + incomplete;
  return waiting && came > 0 && silence > kUsual * (seconds - silence) / static_cast<double>(came);
}

std::string rateText(const Ledger& ledger) {
  return fixedText(ledger.framesPerSecond(), 1) + " frames/s, " + fixedText(ledger.bytesPerSecond() / 1e6, 1) + " MB/s";
}

std::string latencyText(const Ledger& ledger) {
  constexpr double kMillisecond = 1e-3;
  const std::string time = ledger.latency < kMillisecond ? fixedText(ledger.latency * 1e6, 0) + " us"
                                                         : fixedText(ledger.latency * 1e3, 1) + " ms";
  return time + " from the " + (ledger.ofCamera ? "camera's" : "library's") + " time stamp";
}

std::string lossText(const Ledger& ledger) {
  return std::to_string(ledger.made()) + " made by the camera, " + std::to_string(ledger.onTheWay()) +
         " lost on the way, " + std::to_string(ledger.incomplete) + " incomplete, " +
         std::to_string(ledger.noBuffer()) + " without a free buffer";
}

std::string verdictText(const Ledger& ledger) {
  if (ledger.delivered == 0 && ledger.incomplete == 0)
    return "no image came" + (ledger.failure.empty() ? ledger.trigger : ": " + ledger.failure);
  std::string text;
  const auto add = [&](const std::string& sentence) { text += (text.empty() ? "" : "; ") + sentence; };
  if (ledger.noBuffer() > 0)
    add(countText(ledger.noBuffer(), "image", "images") +
        " found no free buffer: this program or the disk was too slow. More --buffers, a lower frame rate or --save "
        "raw help");
  if (ledger.onTheWay() > 0)
    add(countText(ledger.onTheWay(), "image", "images") +
        " never arrived: the way from the camera is overloaded or disturbed. ovi doctor shows the machine's settings");
  if (ledger.incomplete > 0)
    add(countText(ledger.incomplete, "image", "images") +
        " arrived without all data: packets were lost. A lower rate or larger packets help, and so does ovi doctor");
  if (ledger.badPattern > 0)
    add(countText(ledger.badPattern, "image", "images") +
        " did not show the test pattern: data were changed on the way");
  if (ledger.notReleased > 0)
    add("the producer refused to take " + countText(ledger.notReleased, "buffer", "buffers") + " back (" +
        ledger.releaseError + "), which it cannot fill again. ovi check tells what it does wrong");
  if (ledger.late > 0)
    add(countText(ledger.late, "image", "images") + " came after one that was made later");
  if (ledger.stopError.empty() && ledger.fellSilent())
    add("no image came in the last " + fixedText(ledger.silence, 1) + " s" + ledger.trigger);
  if (!ledger.failure.empty())
    add("it ended early: " + ledger.failure);
  if (!ledger.stopError.empty())
    add("the camera could not be stopped (" + ledger.stopError + "): its cable, its power or the link may have failed");
  return text.empty() ? "every image arrived whole" : text;
}

nlohmann::ordered_json ledgerJson(const Ledger& ledger) {
  nlohmann::ordered_json json;
  json["frames"] = ledger.delivered;
  json["seconds"] = ledger.seconds;
  json["framesPerSecond"] = ledger.framesPerSecond();
  json["bytes"] = ledger.bytes;
  json["bytesPerSecond"] = ledger.bytesPerSecond();
  json["made"] = ledger.made();
  json["lost"] = ledger.lost;
  json["lostOnTheWay"] = ledger.onTheWay();
  json["incomplete"] = ledger.incomplete;
  json["withoutBuffer"] = ledger.noBuffer();
  json["late"] = ledger.late;
  json["underruns"] = ledger.underruns;
  json["notReleased"] = ledger.notReleased;
  json["badPattern"] = ledger.badPattern;
  json["latencySeconds"] = ledger.latency;
  json["latencyFrom"] = ledger.ofCamera ? "camera" : "library";
  json["longestGapSeconds"] = ledger.longestGap;
  json["silenceSeconds"] = ledger.silence;
  json["timedOut"] = ledger.timedOut;
  json["verdict"] = verdictText(ledger);
  return json;
}

}  // namespace tool
