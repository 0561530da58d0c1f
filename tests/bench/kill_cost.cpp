#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

#include "figure_row.hpp"
#include "hardstop/hard_stop.hpp"
#include "process_cost.hpp"
#include "stage/control/app_copy.hpp"
#include "stage/control/stage_layout.hpp"
#include "stage/picture/journal_reading.hpp"

/// How late a Core that ignores SIGTERM is killed. Both moments are the stage's journal's, of one clock that nobody can
/// set: the watch's beginning, which is noted before the watch first looks at its own clock, and the signal, which is
/// noted right before it is sent. So what is told is never less than what it was.
///
///   kill_cost [RUNS]
namespace {

using tamo::bench::text;

constexpr double mostMillisecondsLate = 55;

std::vector<tamo::stage::Moment> momentsOf(const std::filesystem::path& journal) {
  std::ifstream in(journal, std::ios::binary);
  return tamo::stage::readJournal(std::string(std::istreambuf_iterator<char>(in), {})).moments;
}

bool isKill(const tamo::stage::Moment& moment) {
  return moment.word == "signals" && tamo::stage::numberIn(moment, 0) == SIGKILL;
}

/// Of each companion's kill, how long after the end of its watch's grace it came. launchd notes what it kills, too.
std::vector<double> delaysIn(const std::vector<tamo::stage::Moment>& moments) {
  const auto grace = std::chrono::duration_cast<std::chrono::microseconds>(tamo::HardStop::grace).count();
  std::vector<double> delays;
  tamo::stage::Moment watch;
  for (const auto& moment : moments) {
    if (moment.word == "watches") watch = moment;
    if (isKill(moment) && moment.pid == watch.pid)
      delays.push_back(static_cast<double>(moment.at - watch.at - grace) / 1e3);
  }
  return delays;
}

void print(const std::vector<double>& delays, int runs) {
  const auto inTime =
      std::ranges::count_if(delays, [](double delay) { return delay >= 0 && delay <= mostMillisecondsLate; });
  const double earliest = delays.empty() ? 0 : std::ranges::min(delays);
  const double latest = delays.empty() ? 0 : std::ranges::max(delays);
  tamo::bench::printRow({.what = "the kill of a Core that ignores SIGTERM, after the grace's end",
                         .asked = text("within %.0f ms, every one of %d", mostMillisecondsLate, runs),
                         .measured = text("%d of %d; %.2f to %.2f ms, the middle %.2f",
                                          static_cast<int>(inTime), static_cast<int>(delays.size()), earliest,
                                          latest, delays.empty() ? 0 : tamo::bench::median(delays)),
                         .held = inTime == runs && delays.size() == static_cast<std::size_t>(runs)});
}

}  // namespace

int main(int argc, char** argv) {
  const int runs = std::max(argc > 1 ? std::atoi(argv[1]) : 50, 1);
  const auto directory = std::filesystem::temp_directory_path() / ("tamo-kill-" + std::to_string(::getpid()));
  const auto root = tamo::stage::layStage({.directory = directory, .programs = TAMO_BINARY_DIR "/bin"});
  const auto program = root.host(tamo::stage::companionProgram(tamo::stage::copyPath(root, "installed")));
  ::setenv("TAMO_STAGE", root.directory().c_str(), 1);
  root.set("core", "term=ignore");
  static_cast<void>(tamo::bench::costOf({program, "--core-action", "register"}));
  for (int run = 0; run < runs; ++run)
    static_cast<void>(tamo::bench::costOf({program, "--core-action", "restart"}));
  print(delaysIn(momentsOf(root.control("journal"))), runs);
  ::unsetenv("TAMO_STAGE");
  tamo::stage::strikeStage(root.directory());
  return 0;
}
