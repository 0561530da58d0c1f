#include "mutation/report.hpp"

#include <algorithm>
#include <array>
#include <iomanip>
#include <set>
#include <sstream>

namespace tamo::mutation {
namespace {

struct Column {
  const char* name;
  Verdict verdict;
};

constexpr std::array<Column, 6> columns{{
    {"by test", Verdict::caughtByTest},
    {"by time", Verdict::caughtByTime},
    {"by crash", Verdict::caughtByCrash},
    {"2nd line", Verdict::caughtBySecondLine},
    {"no build", Verdict::notCompiling},
    {"survived", Verdict::survived},
}};

std::string folderOf(const Planned& planned) {
  return planned.file.substr(0, planned.file.find('/'));
}

Verdict verdictOf(const Planned& planned, const std::map<std::size_t, Verdict>& verdicts) {
  const auto found = verdicts.find(planned.id);
  return found == verdicts.end() ? Verdict::notRun : found->second;
}

bool explains(const Explained& entry, const Planned& planned) {
  return entry.file == planned.file && entry.lineText == planned.lineText &&
         entry.change == changeOf(planned);
}

std::size_t number(const Count& count, Verdict verdict) {
  const auto found = count.of.find(verdict);
  return found == count.of.end() ? 0 : found->second;
}

/// Hundredths of a percent, rounded down: a hundred is said only when it is so. The equivalent ones that are explained
/// are no gap, but no catch either.
std::string share(const Count& count) {
  const auto built = count.mutants - number(count, Verdict::notCompiling) - number(count, Verdict::notRun);
  const auto counted = built - count.explained;
  if (counted == 0) return "-";
  const auto caught = built - number(count, Verdict::survived);
  const auto tenths = caught * 1000 / counted;
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " %";
}

void writeRow(std::ostream& out, const std::string& name, const Count& count) {
  out << std::left << std::setw(10) << name << std::right << std::setw(8) << count.mutants;
  for (const auto& column : columns)
    out << std::setw(9) << number(count, column.verdict);
  out << std::setw(10) << count.explained << std::setw(9) << share(count) << '\n';
}

void writeTable(std::ostream& out, const std::map<std::string, Count>& counts, const Count& total) {
  out << std::left << std::setw(10) << "" << std::right << std::setw(8) << "mutants";
  for (const auto& column : columns)
    out << std::setw(9) << column.name;
  out << std::setw(10) << "explained" << std::setw(9) << "caught" << '\n';
  for (const auto& [name, count] : counts)
    writeRow(out, name, count);
  writeRow(out, "all", total);
}

void writeSurvivor(std::ostream& out, const Planned& planned) {
  out << planned.file << ':' << planned.line << ": " << changeOf(planned) << "\n    " << planned.lineText
      << '\n';
}

void add(Count& count, Verdict verdict, bool isExplained) {
  ++count.mutants;
  ++count.of[verdict];
  if (isExplained) ++count.explained;
}

}  // namespace

std::size_t Count::open() const {
  return number(*this, Verdict::survived) - explained;
}

std::string changeOf(const Planned& planned) {
  const auto after = planned.after.empty() ? std::string("nothing") : planned.after;
  return std::string(planned.mutant.rule).append(": ").append(planned.before).append(" -> ").append(after);
}

std::vector<Explained> explainedIn(const std::string& text) {
  std::vector<Explained> entries;
  std::vector<std::string> lines;
  std::istringstream in(text + "\n\n");
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with('#')) continue;
    if (!line.empty()) {
      lines.push_back(line);
    } else if (!lines.empty()) {
      lines.resize(std::max<std::size_t>(lines.size(), 4));
      std::string reason = lines[3];
      for (std::size_t more = 4; more < lines.size(); ++more)
        reason.append(" ").append(lines[more]);
      entries.push_back({.file = lines[0], .lineText = lines[1], .change = lines[2], .reason = reason});
      lines.clear();
    }
  }
  return entries;
}

Report report(const std::vector<Planned>& plan, const std::map<std::size_t, Verdict>& verdicts,
              const std::vector<Explained>& explained, bool sample) {
  std::map<std::string, Count> counts;
  Count total;
  std::set<const Explained*> used;
  std::set<std::string> files;
  std::ostringstream open;
  std::ostringstream known;
  for (const auto& planned : plan) {
    files.insert(planned.file);
    const auto verdict = verdictOf(planned, verdicts);
    const auto entry =
        std::ranges::find_if(explained, [&](const auto& each) { return explains(each, planned); });
    const bool isExplained =
        verdict == Verdict::survived && entry != explained.end() && !entry->reason.empty();
    add(counts[folderOf(planned)], verdict, isExplained);
    add(total, verdict, isExplained);
    if (verdict != Verdict::survived) continue;
    writeSurvivor(isExplained ? known : open, planned);
    if (isExplained) known << "    " << entry->reason << '\n';
    if (isExplained) used.insert(&*entry);
  }
  Report made{.text = {}, .open = total.open()};
  std::ostringstream out;
  if (!known.str().empty()) out << "Survivors that are explained:\n" << known.str() << '\n';
  if (!open.str().empty()) out << "Survivors:\n" << open.str() << '\n';
  for (const auto& entry : explained) {
    if (sample || used.contains(&entry) || !files.contains(entry.file)) continue;
    ++made.open;
    out << "No survivor needs this explanation: " << entry.file << ": " << entry.change << "\n    "
        << entry.lineText << '\n';
  }
  writeTable(out, counts, total);
  if (const auto left = number(total, Verdict::notRun); left > 0) out << left << " were not run\n";
  made.text = out.str();
  return made;
}

}  // namespace tamo::mutation
