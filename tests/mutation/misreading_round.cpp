#include "mutation/misreading_round.hpp"

#include <algorithm>
#include <array>
#include <iomanip>
#include <sstream>
#include <tuple>

namespace tamo::mutation {
namespace {

namespace fs = std::filesystem;

struct Span {
  std::size_t begin;
  std::size_t end;
  const std::string* after;
};

struct OutcomeName {
  const char* name;
  Outcome outcome;
  const char* told;
};

constexpr std::array<OutcomeName, 7> outcomes{{
    {"test", Outcome::caughtByTest, "caught by a test"},
    {"time", Outcome::caughtByTime, "caught by hanging"},
    {"crash", Outcome::caughtByCrash, "caught by a crash"},
    {"survived", Outcome::survived, "survived"},
    {"build", Outcome::notCompiling, "does not build"},
    {"gone", Outcome::placeGone, "its place is gone"},
    {"none", Outcome::notRun, "was not run"},
}};

bool isCaught(Outcome outcome) {
  return outcome == Outcome::caughtByTest || outcome == Outcome::caughtByTime ||
         outcome == Outcome::caughtByCrash;
}

/// What the programs are called together.
struct Kind {
  const char* name;
  /// How its programs' names begin.
  const char* prefix;
};

constexpr std::array<Kind, 7> kinds{{
    {"unit", "unit_"},
    {"contract", "contract"},
    {"scenario", "scenario"},
    {"exhaustion", "exhaustion"},
    {"simulation", "simulat"},
    {"faults", "faults"},
    {"soak", "soak"},
}};

struct Row {
  std::size_t entries = 0;
  std::array<std::size_t, kinds.size()> caught{};
  std::size_t notCaught = 0;
};

void add(Row& row, const Finding& finding) {
  ++row.entries;
  if (!isCaught(finding.outcome)) {
    ++row.notCaught;
    return;
  }
  for (std::size_t kind = 0; kind < kinds.size(); ++kind)
    if (finding.program.starts_with(kinds[kind].prefix)) ++row.caught[kind];
}

void writeRow(std::ostream& out, const std::string& name, const Row& row) {
  out << std::left << std::setw(16) << name << std::right << std::setw(8) << row.entries;
  for (const auto count : row.caught)
    out << std::setw(12) << count;
  out << std::setw(12) << row.notCaught << '\n';
}

void writeHead(std::ostream& out) {
  out << std::left << std::setw(16) << "" << std::right << std::setw(8) << "entries";
  for (const auto& kind : kinds)
    out << std::setw(12) << kind.name;
  out << std::setw(12) << "not caught" << '\n';
}

Finding findingOf(const Misreading& entry, const std::map<std::string, Finding>& findings) {
  const auto found = findings.find(entry.name);
  return found == findings.end() ? Finding{} : found->second;
}

std::string tellingOf(Outcome outcome) {
  return std::ranges::find(outcomes, outcome, &OutcomeName::outcome)->told;
}

}  // namespace

Changed withMisreading(const fs::path& project, const Misreading& misreading) {
  std::map<std::string, std::vector<Span>> spans;
  Changed changed;
  for (const auto& [file, before, after] : misreading.replacements) {
    const auto& text = changed.texts.try_emplace(file, wholeText(project / file)).first->second;
    const auto first = text.find(before);
    if (first == std::string::npos) return {.texts = {}, .fault = "its text is not in " + file};
    if (text.find(before, first + 1) != std::string::npos)
      return {.texts = {}, .fault = "its text is in " + file + " more than once"};
    spans[file].push_back({.begin = first, .end = first + before.size(), .after = &after});
  }
  for (auto& [file, places] : spans) {
    // From the end on, so that the places in front stay where they are.
    std::ranges::sort(places, std::greater<>(), &Span::begin);
    for (std::size_t at = 0; at < places.size(); ++at) {
      if (at > 0 && places[at].end > places[at - 1].begin)
        return {.texts = {}, .fault = "two of its texts overlap in " + file};
      changed.texts[file].replace(places[at].begin, places[at].end - places[at].begin, *places[at].after);
    }
  }
  return changed;
}

void sortForBuilding(std::vector<Misreading>& entries) {
  std::ranges::sort(entries, {}, [](const auto& entry) {
    return std::tuple(entry.table, entry.replacements.front().file, entry.line);
  });
}

std::map<std::string, Finding> findingsIn(const std::string& text) {
  std::map<std::string, Finding> findings;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    std::istringstream fields(line);
    std::string name;
    std::string outcome;
    Finding finding;
    std::getline(fields, name, '\t');
    std::getline(fields, outcome, '\t');
    std::getline(fields, finding.program, '\t');
    std::getline(fields, finding.test, '\t');
    const auto known = std::ranges::find(outcomes, outcome, &OutcomeName::name);
    if (known == outcomes.end()) continue;
    finding.outcome = known->outcome;
    findings[name] = finding;
  }
  return findings;
}

MisreadingReport reportOn(const std::vector<Misreading>& entries,
                          const std::map<std::string, Finding>& findings) {
  std::map<std::string, Row> rows;
  std::map<Outcome, std::size_t> counts;
  Row total;
  std::ostringstream out;
  for (const auto& entry : entries) {
    const auto finding = findingOf(entry, findings);
    add(rows[entry.table], finding);
    add(total, finding);
    ++counts[finding.outcome];
    if (isCaught(finding.outcome)) continue;
    out << entry.table << ": " << entry.name << ' ' << tellingOf(finding.outcome) << "\n    " << entry.rule
        << '\n';
  }
  if (total.notCaught > 0) out << '\n';
  writeHead(out);
  for (const auto& [name, row] : rows)
    writeRow(out, name, row);
  writeRow(out, "all", total);
  for (const auto& [name, outcome, told] : outcomes)
    if (counts.contains(outcome)) out << counts[outcome] << ' ' << told << '\n';
  return {.text = out.str(), .notCaught = total.notCaught};
}

}  // namespace tamo::mutation
