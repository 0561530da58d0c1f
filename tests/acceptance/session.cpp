#include "acceptance/session.hpp"

#include <array>
#include <ctime>
#include <iostream>
#include <unistd.h>

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

}  // namespace

int playSession(const Orders& orders, const Venue& venue) {
  const auto choice = chosen(orders.names);
  if (!choice.unknown.empty()) {
    std::cerr << "accept: there is no check and no theme \"" << choice.unknown << "\"; see ./accept --list\n";
    return 2;
  }
  Summary summary(std::cout, choice.checks.size(), ::isatty(STDOUT_FILENO) == 1);
  const Watching watching{.begins = [&](const Check& check) { summary.begins(check); },
                          .ends = [&](const Played& played) { summary.ends(played); }};
  Report report{.place = venue.facts, .begun = nowText()};
  const auto began = std::chrono::steady_clock::now();
  report.checks = playSet(choice.checks, venue.lay, venue.offer, orders.atOnce, watching);
  report.took =
      std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - began);
  const bool written = writeReport(report, orders.report, venue.secrets);
  summary.closes(report, orders.report);
  if (!written) std::cerr << "accept: the report could not be written to " << orders.report << "\n";
  const auto counts = countsOf(report.checks);
  if (counts.failed > 0 || counts.held == 0) return 1;
  return written ? 0 : 3;
}

}  // namespace tamo::acceptance
