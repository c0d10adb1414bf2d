// What the shells are told about unfinished lines, and what is made of it in bash.
#include <gmock/gmock.h>

#include "tool_run.h"

namespace tool_test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

struct Line {
  const char* typed;
  std::vector<const char*> offered;
  std::vector<const char*> notOffered;
};

TEST(Completion, KnowsCommandsOptionsCamerasFeaturesAndValues) {
  const std::vector<Line> lines = {
      {"ovi ", {"list\t", "stream\t"}, {"probe", "complete", "--json", "man"}},
      {"ovi st", {"stream\t"}, {"list"}},
      {"ovi file ", {"get\t", "put\t"}, {"stream"}},
      {"ovi file get ", {"UserSet1\n", "Firmware\n"}, {}},
      {"ovi file get UserSet1 ", {":files\n"}, {"UserSet1"}},
      {"ovi stream --fr", {"--frames\t"}, {"--save"}},
      {"ovi stream --frames ", {}, {"-"}},
      {"ovi grab --js", {"--json\t"}, {}},
      {"ovi grab --camera ", {"KV130001\tVC-1300M", "virtual"}, {"OB000008"}},
      {"ovi grab --camera=KV12", {"--camera=KV120002\t"}, {"KV130001"}},
      {"ovi info KV1", {"KV130001\t"}, {}},
      {"ovi stream --save ", {"png\n", "none\n"}, {}},
      {"ovi stream --to ", {":folders\n"}, {}},
      {"ovi get -c 1 Wid", {"Width\t"}, {"Height", "Width="}},
      {"ovi get exposuret", {"ExposureTime\t"}, {}},
      {"ovi features Analog", {"AnalogControl\tcategory"}, {}},
      {"ovi set Wid", {"Width=\t"}, {"WidthMax"}},
      {"ovi set Width=8 'PixelFormat'=Mono1", {"PixelFormat=Mono12p\n"}, {"Mono8"}},
      {"ovi grab --set PixelF", {"PixelFormat=\t"}, {}},
      {"ovi features -m ", {"stream\n", "local\n"}, {}},
      {"ovi get -c KV120002 -m stream Stream", {"StreamID\t"}, {"Width"}},
      {"ovi check --only st", {"stops\n"}, {"images"}},
      {"ovi nothing ", {}, {"list"}},
      {"ovi grab -c nobody --set ", {}, {"Width"}},
      {"ovi list \"unfinished", {}, {"list"}},
      {"", {}, {}},
  };
  for (const Line& line : lines) {
    SCOPED_TRACE(line.typed);
    const Outcome run = ovi({"complete", "--", line.typed});
    for (const char* text : line.offered)
      EXPECT_THAT(run.out, HasSubstr(text));
    for (const char* text : line.notOffered)
      EXPECT_THAT(run.out, Not(HasSubstr(text)));
  }
}

#ifndef _WIN32

// Sources the function as a shell does, and prints what it offers for the line.
std::vector<std::string> bashOffers(const std::string& line, const std::string& wordBreaks) {
  writeText("complete.sh", "set -u\nPATH=" + std::filesystem::path(OVI_PROGRAM).parent_path().string() +
                               ":$PATH\n"
                               "compopt() { :; }\n. " COMPLETION_DIR
                               "/ovi.bash\n"
                               "COMP_WORDBREAKS=" +
                               wordBreaks +
                               "\nCOMP_LINE=$1 COMP_POINT=${#1} COMP_WORDS=(ovi)\n_ovi\n"
                               "((${#COMPREPLY[@]} == 0)) || printf '%s\\n' \"${COMPREPLY[@]}\"\n");
  const Outcome run = shell({"bash", "complete.sh", line});
  EXPECT_THAT(run.err, IsEmpty());
  std::vector<std::string> offers;
  std::istringstream lines(run.out);
  for (std::string offer; std::getline(lines, offer);)
    offers.push_back(offer);
  return offers;
}

TEST(Completion, ReplacesOnlyWhatBashTakesForAWord) {
  EXPECT_THAT(bashOffers("ovi str", "' ='"), ElementsAre("stream"));
  EXPECT_THAT(bashOffers("ovi set -c KV130001 PixelFormat=Mono12", "' ='"), ElementsAre("Mono12", "Mono12p"));
  EXPECT_THAT(bashOffers("ovi set -c KV130001 PixelFormat=Mono12p", "' '"), ElementsAre("PixelFormat=Mono12p"));
  EXPECT_THAT(bashOffers("ovi grab -o ", "' ='"), IsEmpty());
  EXPECT_THAT(bashOffers("ovi nothing ", "' ='"), IsEmpty());
}

#endif

TEST(ManualPage, TellsEveryCommand) {
  const Outcome run = ovi({"man"});
  EXPECT_EQ(run.code, 0);
  EXPECT_THAT(run.out, AllOf(HasSubstr(".SS file put\n"), HasSubstr(".SS doctor\n"), HasSubstr("\\-\\-check\\-pattern"),
                             HasSubstr("GENICAM_GENTL64_PATH"), Not(HasSubstr(".SS probe"))));
}

}  // namespace
}  // namespace tool_test
