#include "acceptance/session.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <iostream>
#include <unistd.h>
#include <utility>

#include "acceptance/report.hpp"
#include "acceptance/set.hpp"
#include "acceptance/summary.hpp"

namespace tamo::acceptance {
namespace {

std::string nowText() {
  const auto now = std::time(nullptr);
  std::tm parts{};
  ::gmtime_r(&now, &parts);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts);
  return text.data();
}

/// The first that was not played though it can be, with the reason; empty when there is none.
std::string leftOut(const std::vector<Played>& checks, const Venue& venue) {
  if (!venue.unplayable) return "";
  for (const auto& played : checks) {
    const bool known = std::ranges::find(*venue.unplayable, played.check->name) != venue.unplayable->end();
    if (played.outcome == Outcome::NotPlayed && !known)
      return std::string(played.check->name) + ": " + played.reason;
  }
  return "";
}

/// Writes the report as it grows, so that a run that is cut off leaves what it has found.
class GrowingReport {
 public:
  GrowingReport(const Orders& orders, const Venue& venue)
      : folder_(orders.report), venue_(venue), report_{.place = venue.facts, .begun = nowText()} {
    clearReport(folder_);
  }
  void add(const Played& played) {
    report_.checks.push_back(played);
    report_.took = sinceBegun();
    written_ = writeKept(played, folder_, venue_.secrets) && writeTexts(report_, folder_, venue_.secrets);
  }
  /// In the order of the set.
  Report whole(std::vector<Played> checks) {
    report_.checks = std::move(checks);
    report_.took = sinceBegun();
    written_ = written_ && writeTexts(report_, folder_, venue_.secrets);
    return report_;
  }
  [[nodiscard]] bool written() const { return written_; }

 private:
  [[nodiscard]] std::chrono::milliseconds sinceBegun() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - began_);
  }
  const std::string folder_;
  const Venue& venue_;
  const std::chrono::steady_clock::time_point began_ = std::chrono::steady_clock::now();
  Report report_;
  bool written_ = true;
};

}  // namespace

int playSession(const Orders& orders, const Venue& venue) {
  const auto choice = chosen(orders.names);
  if (!choice.unknown.empty()) {
    std::cerr << "accept: there is no check and no theme \"" << choice.unknown << "\"; see ./accept --list\n";
    return 2;
  }
  Summary summary(std::cout, choice.checks.size(), ::isatty(STDOUT_FILENO) == 1);
  GrowingReport growing(orders, venue);
  const Watching watching{.begins = [&](const Check& check) { summary.begins(check); },
                          .ends =
                              [&](const Played& played) {
                                growing.add(played);
                                summary.ends(played);
                              }};
  const auto lay = [&](const Chosen& one) { return venue.lay(*one.check); };
  const auto report = growing.whole(playSet(choice.checks, lay, venue.offer, orders.atOnce, watching));
  summary.closes(report, orders.report);
  if (!growing.written())
    std::cerr << "accept: the report could not be written whole to " << orders.report << "\n";
  const auto counts = countsOf(report.checks);
  const auto missed = leftOut(report.checks, venue);
  if (!missed.empty()) std::cerr << "accept: not played, though it can be here: " << missed << "\n";
  if (counts.failed > 0 || counts.held == 0 || !missed.empty()) return 1;
  return growing.written() ? 0 : 3;
}

}  // namespace tamo::acceptance
