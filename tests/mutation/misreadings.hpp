#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

/// Misreadings: changes that somebody would make who had read one rule wrongly. They stand in tables of text, one for
/// each folder, which are read here.
namespace tamo::mutation {

struct Replacement {
  /// Relative to the project.
  std::string file;
  /// Occurs exactly once in the file; ends with a line's end.
  std::string before;
  std::string after;
};

struct Misreading {
  std::string name;
  /// The rule that it breaks, a sentence.
  std::string rule;
  /// The test programs that are asked, in this order, until one falls. Behind a colon may stand which of its tests.
  std::vector<std::string> programs;
  /// Its table's name, without the ending.
  std::string table;
  /// Where it begins there.
  std::size_t line = 0;
  std::vector<Replacement> replacements;
};

struct Misreadings {
  std::vector<Misreading> entries;
  /// What is wrong with the tables, each with its place. Entries are good for nothing while there is any.
  std::vector<std::string> faults;
};

/// The test programs that an entry may name.
[[nodiscard]] const std::vector<std::string>& misreadingPrograms();

/// One table. A form that is not kept is a fault: nothing is guessed.
[[nodiscard]] Misreadings readTable(const std::string& table, const std::string& text);

/// All tables of a folder, by name. A name that occurs twice is a fault, and so is a folder without an entry.
[[nodiscard]] Misreadings readTables(const std::filesystem::path& folder);

/// The entries of these names and of the tables of these names; all when none is given. An unknown name is a fault.
[[nodiscard]] Misreadings chosenFrom(const Misreadings& all, const std::vector<std::string>& names);

}  // namespace tamo::mutation
