#include "acceptance/report.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>

#include "platform/posix/posix_files.hpp"

namespace tamo::acceptance {
namespace {

std::string inCell(const std::string& text) {
  std::string cell;
  for (const char character : text)
    cell += character == '\n'  ? std::string("; ")
            : character == '|' ? std::string("\\|")
                               : std::string(1, character);
  return cell.ends_with("; ") ? cell.substr(0, cell.size() - 2) : cell;
}

std::string fenced(const std::string& text) {
  return "```\n" + text + (text.ends_with('\n') ? "" : "\n") + "```\n";
}

std::string head(const Report& report) {
  const auto counts = countsOf(report.checks);
  return "# Acceptance on a " + report.place.kind + "\n\n| | |\n|---|---|\n| system | " +
         inCell(report.place.system) + " |\n| processor | " + inCell(report.place.processor) +
         " |\n| signature | " + inCell(report.place.signature) + " |\n| begun | " + report.begun +
         " |\n| took | " + secondsText(report.took) + " |\n| held | " + std::to_string(counts.held) +
         " |\n| failed | " + std::to_string(counts.failed) + " |\n| not played here | " +
         std::to_string(counts.notPlayed) + " |\n\n" +
         "docs/first-time-on-a-mac.md says what each check means when it does not hold.\n";
}

std::string failure(const Played& played) {
  std::string text =
      "\n### " + std::string(played.check->name) + "\n\n" + std::string(played.check->sees) + "\n";
  for (const auto& judgement : played.findings.judgements()) {
    if (judgement.holds) continue;
    text += "\nNot so: " + judgement.what + "\n\n";
    if (!judgement.expected.empty()) text += "expected\n\n" + fenced(judgement.expected);
    text += "seen\n\n" + fenced(judgement.seen);
  }
  return text;
}

std::string failures(const Report& report) {
  std::string text;
  for (const auto& played : report.checks)
    if (played.outcome == Outcome::Failed) text += failure(played);
  return text.empty() ? "\nNothing failed.\n" : "\n## What did not hold\n" + text;
}

std::string table(const Report& report) {
  std::string text =
      "\n## Every check\n\n| theme | check | outcome | time | what must be seen |\n|---|---|---|---|---|\n";
  for (const auto& played : report.checks) {
    const auto reason = played.reason.empty() ? "" : ": " + inCell(played.reason);
    text += "| " + played.theme + " | " + std::string(played.check->name) + " | " +
            outcomeText(played.outcome) + reason + " | " + secondsText(played.took) + " | " +
            std::string(played.check->sees) + " |\n";
  }
  return text;
}

std::string facts(const Report& report) {
  std::string text = "\n## Facts\n\nAsked and not judged.\n\n| check | question | answer |\n|---|---|---|\n";
  for (const auto& played : report.checks)
    for (const auto& fact : played.findings.facts())
      text += "| " + std::string(played.check->name) + " | " + inCell(fact.question) + " | " +
              inCell(fact.answer) + " |\n";
  return text;
}

Findings withoutSecrets(const Findings& findings, const std::vector<Secret>& secrets) {
  Findings told;
  for (const auto& [holds, what, expected, seen] : findings.judgements())
    told.add({holds, what, redacted(expected, secrets), redacted(seen, secrets)});
  for (const auto& [question, answer] : findings.facts())
    told.fact(question, redacted(answer, secrets));
  for (const auto& kept : findings.kept())
    told.keep(kept.name, redacted(kept.text, secrets));
  return told;
}

/// What was seen, and not the words around it: a user may be called "true", or have a quotation mark in his name.
Report withoutSecrets(const Report& report, const std::vector<Secret>& secrets) {
  auto told = report;
  for (auto& played : told.checks) {
    played.reason = redacted(played.reason, secrets);
    played.findings = withoutSecrets(played.findings, secrets);
  }
  return told;
}

}  // namespace

Counts countsOf(const std::vector<Played>& checks) {
  const auto count = [&](Outcome outcome) {
    return static_cast<std::size_t>(std::ranges::count(checks, outcome, &Played::outcome));
  };
  return {count(Outcome::Held), count(Outcome::Failed), count(Outcome::NotPlayed)};
}

std::string outcomeText(Outcome outcome) {
  static constexpr std::array texts = {"held", "failed", "not played here"};
  return texts.at(static_cast<std::size_t>(outcome));
}

std::string secondsText(std::chrono::milliseconds time) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.1f s", static_cast<double>(time.count()) / 1000);
  return text.data();
}

std::string markdownOf(const Report& report) {
  return head(report) + failures(report) + table(report) + facts(report);
}

/// Whatever else lies in the folder is not ours, whatever it is called.
void clearReport(const std::string& folder) {
  if (!std::filesystem::exists(folder + "/report.json")) return;
  std::error_code ignored;
  for (const auto& theme : allThemes())
    for (const auto& check : theme.checks)
      std::filesystem::remove_all(folder + "/" + std::string(check.name), ignored);
}

bool writeKept(const Played& played, const std::string& folder, const std::vector<Secret>& secrets) {
  if (played.findings.kept().empty()) return true;
  const auto own = folder + "/" + std::string(played.check->name);
  bool written = platform::posix::createDirectories(own);
  for (const auto& kept : played.findings.kept())
    written =
        platform::posix::writeAtomically(own + "/" + kept.name, redacted(kept.text, secrets)) && written;
  return written;
}

bool writeTexts(const Report& report, const std::string& folder, const std::vector<Secret>& secrets) {
  const auto told = withoutSecrets(report, secrets);
  return platform::posix::createDirectories(folder) &&
         platform::posix::writeAtomically(folder + "/report.json", jsonOf(told)) &&
         platform::posix::writeAtomically(folder + "/report.md", markdownOf(told));
}

}  // namespace tamo::acceptance
