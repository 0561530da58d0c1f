#include "simulation/report_rules.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <variant>

#include "simulation/course_rules.hpp"
#include "simulation/job_texts.hpp"
#include "simulation/move_rules.hpp"
#include "simulation/receipt_text.hpp"
#include "simulation/stop_rules.hpp"

namespace tamo::simulation::Referee {
namespace {

using platform::LogFormat;
using platform::LogLine;

constexpr std::array<std::string_view, 6> agentActions{"register", "unregister", "reseat",
                                                       "restart",  "sync",       "status"};

std::string text(const LogLine& line, std::size_t index) {
  return std::get<std::string>(line.arguments.at(index));
}

bool isKnown(std::string_view action) {
  return std::find(agentActions.begin(), agentActions.end(), action) != agentActions.end();
}

/// The error that ended the action; absent when none did.
std::optional<platform::Error> errorOf(const Companion& companion) {
  if (!isKnown(actionOf(companion))) return platform::Error("TamoCore", 64, "Unknown action");
  return companion.record.lastError;
}

/// The status that was told so many readings before the last.
std::int64_t toldBefore(const Companion& companion, std::size_t readings) {
  const auto& statuses = companion.record.statuses;
  return readings < statuses.size() ? statuses[statuses.size() - 1 - readings] : -1;
}

bool succeeded(const Companion& companion) {
  const auto& action = actionOf(companion);
  if (errorOf(companion)) return false;
  if (action == "status") return true;
  return toldBefore(companion, 2) == (action == "unregister" ? 0 : 1);
}

/// The settings are opened between the first two readings of the status that follow the route of an action, and so
/// before the last three of all.
bool needsApproval(const Companion& companion) {
  const auto& action = actionOf(companion);
  const bool may = action == "register" || action == "reseat" || action == "restart";
  return may && !errorOf(companion) && toldBefore(companion, 3) == 2;
}

std::string deedsOf(const Companion& companion) {
  if (errorOf(companion)) return "";
  const auto& record = companion.record;
  const auto kickstart = record.kickstart ? " kickstart " + std::to_string(*record.kickstart) : "";
  return kickstart + (record.definitionChanged ? " reseated definition" : "");
}

void judgeOutcome(Companion& companion, const LogLine& line) {
  const auto error = errorOf(companion);
  constexpr auto rule = Invariant::Truth;
  companion.expect(text(line, 0) == actionOf(companion), Invariant::Requested, text(line, 0));
  companion.expect(std::get<std::int64_t>(line.arguments[1]) == toldBefore(companion, 0), rule, "the status");
  companion.expect(text(line, 2) == (succeeded(companion) ? "Optional(true)" : "Optional(false)"), rule,
                   "ok");
  companion.expect(text(line, 3) == deedsOf(companion), rule, text(line, 3));
  const auto told = error ? " error " + error->domain() + " " + std::to_string(error->code()) : "";
  companion.expect(text(line, 4) == told, rule, text(line, 4));
  companion.expect(companion.record.settingsOpened == (needsApproval(companion) ? 1 : 0), Invariant::Settings,
                   "by the time of the outcome");
  companion.expect(text(line, 5) == (error ? " " + error->description() : ""), rule, text(line, 5));
}

/// Whether a side of a comparison is told as the definition is.
bool tells(const LogLine& line, std::size_t side, const JobDefinition& definition) {
  std::string arguments;
  for (const auto& argument : definition.arguments)
    arguments += (arguments.empty() ? "" : " ") + argument;
  const auto timeout = definition.exitTimeout ? std::to_string(*definition.exitTimeout) : "-";
  return text(line, side) == arguments && text(line, side + 1) == timeout;
}

/// The line of a comparison has to agree with itself, and its sides with what was read of the bundle and of a print that
/// succeeded.
void judgeDefinition(Companion& companion, const LogLine& line) {
  const bool known = text(line, 0) != "unknown" && text(line, 2) != "unknown";
  const bool timed = text(line, 1) != "-" && text(line, 3) != "-";
  const bool differs = text(line, 0) != text(line, 2) || (timed && text(line, 1) != text(line, 3));
  const bool changed = std::get<bool>(line.arguments[4]);
  auto& record = companion.record;
  companion.expect(changed == (known && differs), Invariant::Truth, "whether the definition changed");
  record.definitionChanged = changed;
  const auto& bundled = record.bundledDefinition;
  companion.expect(!bundled || tells(line, 2, jobDefinitions()[*bundled]), Invariant::Truth,
                   "the bundled definition");
  const bool succeeded = !record.tools.empty() && record.tools.back().status == 0;
  const auto& print = record.print;
  companion.expect(!print || !succeeded || tells(line, 0, jobDefinitions()[print->definition]),
                   Invariant::Truth, "the loaded definition");
  companion.expect(succeeded || text(line, 0) == "unknown", Invariant::Truth, "a print that failed");
}

void judgeRefusal(Companion& companion, const LogLine& line) {
  const auto refusal = "tamo.test_copy_refused_live_data app=" + companion.plan.copy +
                       " (only /Applications/Tamo.app opens the founder's data and Core)";
  companion.expect(text(line, 0) == actionOf(companion), Invariant::Requested, text(line, 0));
  companion.expect(text(line, 1) == refusal, Invariant::Lines, text(line, 1));
}

/// The receipt that belongs to the outcome line.
ReceiptMembers membersDue(const Companion& companion) {
  const auto& record = companion.record;
  ReceiptMembers due{{"bundle", companion.bundlePath()},
                     {"ok", succeeded(companion) ? "true" : "false"},
                     {"operation", actionOf(companion)},
                     {"pid", std::to_string(companion.pid())},
                     {"status", std::to_string(toldBefore(companion, 1))}};
  if (record.stopText) due["hardStop"] = *record.stopText;
  if (const auto error = errorOf(companion)) {
    due["domain"] = error->domain();
    due["code"] = std::to_string(error->code());
    due["description"] = error->description();
    return due;
  }
  if (record.kickstart) due["kickstart"] = std::to_string(*record.kickstart);
  if (record.definitionChanged) due["reseated"] = "definition";
  if (needsApproval(companion)) due["needsApproval"] = "true";
  return due;
}

bool hasOutcome(const Companion& companion) {
  const auto& lines = companion.record.lines;
  return std::any_of(lines.begin(), lines.end(),
                     [](const auto& line) { return line.format == LogFormat::outcome; });
}

}  // namespace

void logs(Companion& companion, const LogLine& line) {
  companion.record.lines.push_back(line);
  companion.expect(companion.record.terminations == 0, Invariant::Lines,
                   "a line after the terminate request");
  switch (line.format) {
    case LogFormat::outcome:
      return judgeOutcome(companion, line);
    case LogFormat::refused:
      return judgeRefusal(companion, line);
    case LogFormat::definition:
      return judgeDefinition(companion, line);
    case LogFormat::hardStop:
      return stopNoted(companion, line);
    case LogFormat::moveResult:
      return movedOrNot(companion, line);
    case LogFormat::moveRefused:
    case LogFormat::receiptFailed:
      return;
  }
}

void opensSettings(Companion& companion) {
  auto& record = companion.record;
  companion.note("opens the settings");
  const auto& action = actionOf(companion);
  const bool may = action == "register" || action == "reseat" || action == "restart";
  const bool due = may && courseOf(companion) == Course::Agent && !record.lastError &&
                   !hasOutcome(companion) && toldBefore(companion, 0) == 2 && record.settingsOpened == 0;
  companion.expect(due, Invariant::Settings, "opened out of turn");
  ++record.settingsOpened;
}

void writesReceipt(Companion& companion, std::string_view path, std::string_view bytes) {
  auto& record = companion.record;
  constexpr auto rule = Invariant::Receipt;
  const auto file = std::string(Places::home) + "/Library/Application Support/TamoPKG1/M2/" +
                    std::to_string(companion.pid()) + "-core.json";
  const bool due = companion.plan.writesReceipts && !record.receipt && hasOutcome(companion);
  companion.expect(due && record.terminations == 0, rule, "written out of turn");
  companion.expect(path == file, rule, path);
  record.receipt = std::string(bytes);
  auto members = receiptMembers(bytes);
  companion.expect(members.has_value(), rule, "not of the receipt's form");
  if (!members) return;
  companion.expect(members->erase("timestamp") == 1, rule, "no timestamp");
  companion.expect(*members == membersDue(companion), rule, bytes);
}

}  // namespace tamo::simulation::Referee
