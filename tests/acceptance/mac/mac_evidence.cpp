#include "acceptance/mac/mac_evidence.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <thread>

#include "acceptance/child.hpp"
#include "acceptance/mac/unified_log.hpp"

namespace tamo::acceptance {
namespace {

using namespace std::chrono;

/// Local time in whole seconds, as the tool wants it.
std::string startText(std::int64_t micros) {
  const auto time = static_cast<std::time_t>(micros / 1'000'000);
  std::tm parts{};
  ::localtime_r(&time, &parts);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &parts);
  return text.data();
}

std::vector<Line> logged(std::int64_t since, const std::string& predicate) {
  const auto run = runProgram({.words = {"/usr/bin/log", "show", "--start", startText(since), "--style",
                                         "ndjson", "--predicate", predicate}},
                              seconds(120));
  if (run.status != 0) throw PlaceError("the log cannot be read: " + run.text);
  auto lines = linesOfUnifiedLog(run.text);
  std::erase_if(lines, [&](const Line& line) { return line.time < since; });
  return lines;
}

constexpr auto ownSubsystem = "subsystem == \"studio.pell.Tamo.Core\"";

}  // namespace

std::string logFault() {
  const auto run = runProgram(
      {.words = {"/usr/bin/log", "show", "--last", "1s", "--predicate", ownSubsystem}}, seconds(120));
  return run.status == 0 ? "" : "this user may not read the log: " + run.text;
}

std::int64_t MacEvidence::now() {
  return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
}

/// A line that was just written may not be in the store yet.
std::vector<Line> MacEvidence::lines(std::int64_t since, std::size_t endings) {
  const auto predicate = ownSubsystem + std::string(" AND category == \"lifecycle\"");
  const auto limit = steady_clock::now() + seconds(15);
  if (endings == 0) std::this_thread::sleep_for(seconds(1));
  auto lines = logged(since, predicate);
  const auto complete = [&] {
    return static_cast<std::size_t>(std::ranges::count_if(lines, endsAction)) >= endings;
  };
  while (!complete() && steady_clock::now() < limit) {
    std::this_thread::sleep_for(milliseconds(300));
    lines = logged(since, predicate);
  }
  return lines;
}

/// The companion's own faults: those of the system's libraries end nothing. A crash report is written some seconds after the crash.
std::vector<std::string> MacEvidence::crashes(std::int64_t since) {
  namespace fs = std::filesystem;
  std::this_thread::sleep_for(seconds(8));
  std::vector<std::string> noted;
  for (const auto& line : logged(since, ownSubsystem + std::string(" AND messageType == fault")))
    noted.push_back("fault: " + line.text);
  std::error_code none;
  const auto first = fs::file_time_type::clock::now() - microseconds(now() - since);
  for (const auto& item : fs::directory_iterator(settings_.home + "/Library/Logs/DiagnosticReports", none)) {
    const auto name = item.path().filename().string();
    if (name.starts_with("Tamo Core") && item.last_write_time(none) >= first)
      noted.push_back("report: " + name);
  }
  return noted;
}

}  // namespace tamo::acceptance
