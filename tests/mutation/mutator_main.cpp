#include <algorithm>
#include <charconv>
#include <fstream>
#include <iostream>
#include <sstream>

#include "mutation/misreading_round.hpp"
#include "mutation/report.hpp"

/// The part of prove/mutate that reads and writes sources: what is built and run in between is the script's. A round of
/// mutants is kept in its work folder: `files` and `sample` say what is tried, `apart` which mutants have to be built
/// alone, `hopeless` which are no C++. `refused` remembers those two for later rounds, by file, line and change. A
/// round of misreadings has a work folder of its own: `names` says which were asked for, `entries` which programs each
/// is shown to, in the order in which they are best built. Each of its lanes has the copy in a folder within.
namespace {

namespace fs = std::filesystem;
using namespace tamo::mutation;

std::vector<std::string> lines(const fs::path& file) {
  std::vector<std::string> all;
  std::ifstream in(file);
  for (std::string line; std::getline(in, line);)
    all.push_back(line);
  return all;
}

std::size_t toNumber(const std::string& text) {
  std::size_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

using Numbers = std::set<std::size_t>;

Numbers numbers(const fs::path& file) {
  Numbers all;
  for (const auto& line : lines(file))
    all.insert(toNumber(line));
  return all;
}

void write(const fs::path& file, const Numbers& all) {
  std::ofstream out(file);
  for (const auto number : all)
    out << number << '\n';
}

std::vector<Planned> planOf(const Tree& tree) {
  auto all = planned(tree.original, lines(tree.work / "files"));
  const auto sample = lines(tree.work / "sample");
  return sample.empty() ? all : sampled(std::move(all), toNumber(sample.front()));
}

/// What is not in its slot.
Numbers outside(const Tree& tree) {
  auto all = numbers(tree.work / "apart");
  all.merge(numbers(tree.work / "hopeless"));
  return all;
}

std::string keyOf(const Planned& one, const char* kind) {
  return std::string(kind) + '\t' + one.file + '\t' + one.lineText + '\t' + changeOf(one);
}

void remember(const Tree& tree, const std::vector<Planned>& all, const Numbers& apart,
              const Numbers& hopeless) {
  auto known = lines(tree.work / "refused");
  for (const auto& one : all) {
    if (apart.contains(one.id)) known.push_back(keyOf(one, "apart"));
    if (hopeless.contains(one.id)) known.push_back(keyOf(one, "hopeless"));
  }
  std::ranges::sort(known);
  const auto twice = std::ranges::unique(known);
  known.erase(twice.begin(), twice.end());
  std::ofstream out(tree.work / "refused");
  for (const auto& key : known)
    out << key << '\n';
}

/// Begins a round: those without a slot, and those that an earlier round could not build, are outside from the start.
int plan(const Tree& tree) {
  const auto refused = lines(tree.work / "refused");
  const std::set<std::string> known(refused.begin(), refused.end());
  Numbers apart;
  Numbers hopeless;
  const auto all = planOf(tree);
  std::ofstream list(tree.work / "mutants");
  for (const auto& one : all) {
    const auto text = wholeText(tree.original / one.file);
    const bool isHopeless = known.contains(keyOf(one, "hopeless"));
    const bool isApart = known.contains(keyOf(one, "apart")) || !hasSlot(structure(tokens(text)), one.mutant);
    if (isHopeless) hopeless.insert(one.id);
    if (isApart && !isHopeless) apart.insert(one.id);
    list << one.id << '\t' << one.file << ':' << one.line << '\t' << changeOf(one) << '\n';
  }
  write(tree.work / "apart", apart);
  write(tree.work / "hopeless", hopeless);
  writeTree(tree, all, outside(tree));
  std::cout << all.size() << " mutants\n";
  return 0;
}

/// Takes out what the compiler does not accept; 1 when it is not a mutant's fault.
int blame(const Tree& tree, const fs::path& log) {
  auto apart = numbers(tree.work / "apart");
  auto hopeless = numbers(tree.work / "hopeless");
  const auto before = apart.size() + hopeless.size();
  auto found = blamed(tree, log);
  hopeless.merge(found.hopeless);
  apart.merge(found.apart);
  std::erase_if(apart, [&hopeless](auto id) { return hopeless.contains(id); });
  write(tree.work / "apart", apart);
  write(tree.work / "hopeless", hopeless);
  const auto all = planOf(tree);
  remember(tree, all, apart, hopeless);
  writeTree(tree, all, outside(tree));
  const auto taken = apart.size() + hopeless.size() - before;
  std::cout << taken << " mutants cannot be built beside their original\n";
  return taken == 0 ? 1 : 0;
}

/// Puts one mutant into its file; with number 0 the tree is as it was before.
int alone(const Tree& tree, std::size_t id) {
  const auto all = planOf(tree);
  writeTree(tree, all, outside(tree));
  for (const auto& one : all)
    if (one.id == id) writeAlone(tree, one);
  return 0;
}

std::map<std::size_t, Verdict> verdicts(const fs::path& file) {
  const std::map<std::string, Verdict> names{
      {"test", Verdict::caughtByTest},   {"time", Verdict::caughtByTime},
      {"crash", Verdict::caughtByCrash}, {"second", Verdict::caughtBySecondLine},
      {"build", Verdict::notCompiling},  {"survived", Verdict::survived},
  };
  std::map<std::size_t, Verdict> all;
  for (const auto& line : lines(file)) {
    std::istringstream in(line);
    std::size_t id = 0;
    std::string name;
    in >> id >> name;
    if (const auto found = names.find(name); found != names.end()) all[id] = found->second;
  }
  return all;
}

int tell(const fs::path& project, const Tree& tree) {
  const auto explained = explainedIn(wholeText(project / "tests/mutation/survivors.txt"));
  const bool sample = !lines(tree.work / "sample").empty();
  const auto made = report(planOf(tree), verdicts(tree.work / "verdicts"), explained, sample);
  std::cout << made.text;
  return made.open == 0 ? 0 : 1;
}

int begin(const Tree& tree, std::vector<std::string> named) {
  if (named.empty()) named = decisionFolders();
  std::ofstream out(tree.work / "files");
  for (const auto& file : sourcesOf(tree.original, named))
    out << file << '\n';
  out.close();
  return plan(tree);
}

Misreadings misreadingsOf(const Tree& tree) {
  auto chosen =
      chosenFrom(readTables(tree.original / "tests/mutation/misreadings"), lines(tree.work / "names"));
  if (chosen.faults.empty()) sortForBuilding(chosen.entries);
  return chosen;
}

/// Begins a round of misreadings; 1 when the tables are not what they should be.
int planMisreadings(const Tree& tree, const std::vector<std::string>& names) {
  std::ofstream asked(tree.work / "names");
  for (const auto& name : names)
    asked << name << '\n';
  asked.close();
  const auto chosen = misreadingsOf(tree);
  for (const auto& fault : chosen.faults)
    std::cout << fault << '\n';
  if (!chosen.faults.empty()) return 1;
  std::ofstream list(tree.work / "entries");
  for (const auto& entry : chosen.entries) {
    list << entry.name << '\t';
    for (const auto& program : entry.programs)
      list << program << ' ';
    list << '\n';
  }
  std::cout << chosen.entries.size() << " misreadings\n";
  return 0;
}

/// Puts one misreading into the copy and takes the one before it out; 1 when its place is gone, which leaves the copy
/// as it was before all of them.
int misread(const Tree& tree, const std::string& name) {
  const auto all = misreadingsOf(tree);
  const auto entry = std::ranges::find(all.entries, name, &Misreading::name);
  if (entry == all.entries.end()) return 2;
  const auto changed = withMisreading(tree.original, *entry);
  writeTexts(tree, changed.texts);
  if (changed.fault) std::cout << *changed.fault << '\n';
  return changed.fault ? 1 : 0;
}

int tellMisreadings(const Tree& tree) {
  const auto made = reportOn(misreadingsOf(tree).entries, findingsIn(wholeText(tree.work / "findings.tsv")));
  std::cout << made.text;
  return made.notCaught == 0 ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
  const std::vector<std::string> given(arguments + 1, arguments + count);
  if (given.size() < 3) return 2;
  const fs::path project = given[1];
  const fs::path work = given[2];
  const std::vector<std::string> rest(given.begin() + 3, given.end());
  if (given[0] == "plan") return begin(snapshot(project, work), rest);
  if (given[0] == "plan-misreadings") return planMisreadings(snapshot(project, work), rest);
  const Tree tree{.original = work / "original", .work = work};
  if (given[0] == "blame" && rest.size() == 1) return blame(tree, rest[0]);
  if (given[0] == "alone" && rest.size() == 1) return alone(tree, toNumber(rest[0]));
  if (given[0] == "misread" && rest.size() == 1) return misread(tree, rest[0]);
  if (given[0] == "as-it-was") return writeTexts(tree, {}), 0;
  if (given[0] == "report-misreadings") return tellMisreadings(tree);
  if (given[0] == "report") return tell(project, tree);
  return 2;
}
