// How the benchmarks tell their figures: each beside its target, for whoever reads along and as a row of a table.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace bench {

/** Prints figures; where OVI_BENCH_TABLE names a file, also appends them there as rows of a Markdown table. */
class Report {
 public:
  explicit Report(const char* program) : program_(program) {}

  static void heading(const std::string& text) { std::printf("\n%s\n", text.c_str()); }

  void atMost(const std::string& what, double value, double target, const std::string& note = "") {
    judge(what, value, target, value <= target, "at most ", note);
  }
  void atLeast(const std::string& what, double value, double target, const std::string& note = "") {
    judge(what, value, target, value >= target, "at least ", note);
  }
  /** A figure to compare others with. */
  void plain(const std::string& what, double value, const std::string& note = "") const {
    tell(what, text(value), "", "", note);
  }

  /** The program's exit code: 0 when every target was met, otherwise 3. */
  [[nodiscard]] int result() const {
    std::printf("\n%s: %s\n", program_,
                missed_ == 0 ? "all targets are met" : (std::to_string(missed_) + " targets are missed").c_str());
    constexpr int kTargetsMissed = 3;
    return missed_ == 0 ? EXIT_SUCCESS : kTargetsMissed;
  }

 private:
  static std::string text(double value) {
    char digits[32];
    std::snprintf(digits, sizeof digits, value < 10 ? "%.2f" : "%.1f", value);
    return digits;
  }

  void judge(const std::string& what, double value, double target, bool met, const char* side,
             const std::string& note) {
    char limit[48];
    std::snprintf(limit, sizeof limit, "%s%g", side, target);
    missed_ += met ? 0 : 1;
    tell(what, text(value), limit, met ? "met" : "MISSED", note);
  }

  void tell(const std::string& what, const std::string& value, const char* target, const char* verdict,
            const std::string& note) const {
    std::printf("  %-62s %9s  %-13s %-6s  %s\n", what.c_str(), value.c_str(), target, verdict, note.c_str());
    const char* const table = std::getenv("OVI_BENCH_TABLE");
    if (table == nullptr) {
      return;
    }
    if (std::FILE* const file = std::fopen(table, "a")) {
      std::fprintf(file, "| `%s` | %s | %s | %s | %s | %s |\n", program_, what.c_str(), value.c_str(), target, verdict,
                   note.c_str());
      std::fclose(file);
    }
  }

  const char* program_;
  int missed_ = 0;
};

/** A value and its unit, as a note behind a ratio. */
inline std::string withUnit(double value, const char* unit) {
  char text[64];
  std::snprintf(text, sizeof text, "%.1f %s", value, unit);
  return text;
}

}  // namespace bench
