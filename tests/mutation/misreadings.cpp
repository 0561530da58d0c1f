#include "mutation/misreadings.hpp"

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

#include "mutation/campaign.hpp"

namespace tamo::mutation {
namespace {

namespace fs = std::filesystem;

/// Nothing of the Mac's adapters is built here, and a test that is changed shows nothing.
bool isProduct(const std::string& file) {
  if (file.starts_with("platform/macos/") || file.starts_with("values/macos/")) return false;
  const auto folders = decisionFolders();
  // The played Mac and the reader of the log are no product, but what they tell of one has rules of its own.
  return file == "CMakeLists.txt" || file.starts_with("stage/") || file.starts_with("support/") ||
         std::ranges::any_of(folders, [&](const auto& folder) { return file.starts_with(folder + "/"); });
}

bool isKebab(const std::string& name) {
  const auto isAllowed = [](char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-'; };
  return !name.empty() && name.front() != '-' && std::ranges::all_of(name, isAllowed);
}

std::vector<std::string> words(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> all;
  for (std::string word; in >> word;)
    all.push_back(word);
  return all;
}

/// Goes through a table line by line.
class TableReader {
 public:
  explicit TableReader(const std::string& table) : table_(table) {}

  Misreadings read(const std::string& text) {
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
      ++at_;
      if (block_ != Block::None) {
        insideBlock(line);
      } else {
        outsideBlock(line);
      }
    }
    if (block_ != Block::None) fault(blockLine_, "a block has no end");
    endEntry();
    return std::move(made_);
  }

 private:
  enum class Block { None, Before, After };

  void fault(std::size_t line, const std::string& what) {
    made_.faults.push_back(table_ + ".txt:" + std::to_string(line) + ": " + what);
  }

  void insideBlock(const std::string& line) {
    auto& replacements = made_.entries.back().replacements;
    if (line == "====" && block_ == Block::Before) {
      block_ = Block::After;
    } else if (line == ">>>>" && block_ == Block::After) {
      endBlock(replacements.back());
    } else if (line == "<<<<" || line == "====" || line == ">>>>") {
      fault(at_, "\"" + line + "\" is out of place");
    } else {
      (block_ == Block::Before ? replacements.back().before : replacements.back().after) += line + "\n";
    }
  }

  void endBlock(const Replacement& made) {
    block_ = Block::None;
    if (made.before.empty()) fault(blockLine_, "a block replaces nothing");
    if (made.before == made.after) fault(blockLine_, "a block changes nothing");
  }

  void outsideBlock(const std::string& line) {
    if (line.empty() || line.starts_with('#')) return;
    if (line.starts_with("misreading: ")) return beginEntry(line.substr(12));
    if (made_.entries.empty()) return fault(at_, "no entry has begun: " + line);
    auto& entry = made_.entries.back();
    if (line.starts_with("breaks: ")) return once(entry.rule, line.substr(8));
    if (line.starts_with("tests: ")) return takePrograms(entry, words(line.substr(7)));
    if (line.starts_with("in: ")) return takeFile(line.substr(4));
    if (line == "<<<<") return beginBlock(entry);
    fault(at_, "unknown: " + line);
  }

  void beginEntry(const std::string& name) {
    endEntry();
    if (!isKebab(name)) fault(at_, "no name in kebab case: " + name);
    made_.entries.push_back(
        {.name = name, .rule = {}, .programs = {}, .table = table_, .line = at_, .replacements = {}});
  }

  void endEntry() {
    if (made_.entries.empty()) return;
    const auto& entry = made_.entries.back();
    const auto missing = [&](const char* what) { fault(entry.line, entry.name + " has no " + what); };
    if (entry.rule.empty()) missing("\"breaks:\"");
    if (entry.programs.empty()) missing("\"tests:\"");
    if (entry.replacements.empty()) missing("block");
    file_.clear();
  }

  void once(std::string& field, const std::string& value) {
    if (!field.empty()) fault(at_, "told twice");
    field = value;
  }

  void takePrograms(Misreading& entry, const std::vector<std::string>& programs) {
    if (!entry.programs.empty()) fault(at_, "told twice");
    for (const auto& program : programs)
      if (std::ranges::find(misreadingPrograms(), program.substr(0, program.find(':'))) ==
          misreadingPrograms().end())
        fault(at_, "no test program: " + program);
    entry.programs = programs;
  }

  void takeFile(const std::string& file) {
    file_ = file;
    if (!isProduct(file)) fault(at_, "no source of the product that is built here: " + file);
  }

  void beginBlock(Misreading& entry) {
    if (file_.empty()) fault(at_, "a block belongs to no file");
    block_ = Block::Before;
    blockLine_ = at_;
    entry.replacements.push_back({.file = file_, .before = {}, .after = {}});
  }

  std::string table_;
  std::size_t at_ = 0;
  Block block_ = Block::None;
  std::size_t blockLine_ = 0;
  std::string file_;
  Misreadings made_;
};

void append(Misreadings& all, Misreadings more) {
  std::ranges::move(more.entries, std::back_inserter(all.entries));
  std::ranges::move(more.faults, std::back_inserter(all.faults));
}

void findTwins(Misreadings& all) {
  std::map<std::string, const Misreading*> seen;
  for (const auto& entry : all.entries) {
    const auto [first, isNew] = seen.emplace(entry.name, &entry);
    if (isNew) continue;
    all.faults.push_back(entry.table + ".txt:" + std::to_string(entry.line) + ": " + entry.name + " is in " +
                         first->second->table + ".txt as well");
  }
}

}  // namespace

const std::vector<std::string>& misreadingPrograms() {
  static const std::vector<std::string> programs{
      "unit_values", "unit_platform", "unit_guard", "unit_hardstop", "unit_launch", "unit_move",
      "unit_app",    "unit_support",  "unit_stage", "contract",      "scenario",    "exhaustion",
      "simulate",    "simulation",    "faults",     "soak_account"};
  return programs;
}

Misreadings readTable(const std::string& table, const std::string& text) {
  return TableReader(table).read(text);
}

Misreadings readTables(const fs::path& folder) {
  std::set<fs::path> files;
  if (fs::is_directory(folder))
    for (const auto& entry : fs::directory_iterator(folder))
      if (entry.path().extension() == ".txt") files.insert(entry.path());
  Misreadings all;
  for (const auto& file : files)
    append(all, readTable(file.stem().string(), wholeText(file)));
  findTwins(all);
  if (all.entries.empty()) all.faults.push_back("no misreading in " + folder.string());
  return all;
}

Misreadings chosenFrom(const Misreadings& all, const std::vector<std::string>& names) {
  if (names.empty()) return all;
  Misreadings some{.entries = {}, .faults = all.faults};
  std::set<std::string> unknown(names.begin(), names.end());
  for (const auto& entry : all.entries) {
    const bool isNamed = std::ranges::find(names, entry.name) != names.end();
    const bool isOfTable = std::ranges::find(names, entry.table) != names.end();
    if (isNamed || isOfTable) some.entries.push_back(entry);
    if (isNamed) unknown.erase(entry.name);
    if (isOfTable) unknown.erase(entry.table);
  }
  for (const auto& name : unknown)
    some.faults.push_back("no misreading and no table: " + name);
  return some;
}

}  // namespace tamo::mutation
