#include "acceptance/summary.hpp"

#include <algorithm>

namespace tamo::acceptance {
namespace {

std::string padded(std::string text, std::size_t width) {
  text.resize(std::max(width, text.size()), ' ');
  return text;
}

/// "8 held, 1 failed": what there is none of is left out.
std::string countsText(const Counts& counts) {
  std::string text;
  const auto add = [&](std::size_t count, const std::string& what) {
    if (count > 0) text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + what;
  };
  add(counts.held, "held");
  add(counts.failed, "FAILED");
  add(counts.notPlayed, "not played here");
  return text;
}

std::string firstFault(const Played& played) {
  const auto& all = played.findings.judgements();
  const auto fault = std::ranges::find(all, false, &Judgement::holds);
  if (fault == all.end()) return "nothing was judged";
  return "not so: " + fault->what;
}

}  // namespace

std::string themeRows(const std::vector<Played>& checks) {
  std::string rows;
  for (auto first = checks.begin(); first != checks.end();) {
    const auto last =
        std::find_if(first, checks.end(), [&](const Played& one) { return one.theme != first->theme; });
    std::chrono::milliseconds took{0};
    for (const auto& one : std::vector<Played>(first, last))
      took += one.took;
    rows += "  " + padded(first->theme, 12) + padded(countsText(countsOf({first, last})), 34) +
            secondsText(took) + "\n";
    first = last;
  }
  return rows;
}

void Summary::line(const std::string& text) {
  out_ << (live_ ? "\r\033[K" : "") << text << "\n" << std::flush;
}

void Summary::begins(const Check& check) {
  if (!live_) return;
  out_ << "\r\033[K" << ended_ + 1 << " of " << count_ << ": " << check.name << std::flush;
}

void Summary::ends(const Played& played) {
  ++ended_;
  if (played.outcome != Outcome::Failed) return;
  line("FAILED " + std::string(played.check->name) + " (" + secondsText(played.took) +
       "): " + firstFault(played));
}

void Summary::closes(const Report& report, const std::string& folder) {
  line("");
  out_ << themeRows(report.checks) << "\n";
  line(countsText(countsOf(report.checks)) + " in " + secondsText(report.took) + "; the report: " + folder +
       "/report.md");
}

}  // namespace tamo::acceptance
