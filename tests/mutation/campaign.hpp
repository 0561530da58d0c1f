#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "mutation/schemata.hpp"

/// A round of mutants: which there are, and the copy of the tree in which they are built. The checkout itself is only
/// read.
namespace tamo::mutation {

struct Planned {
  std::size_t id = 0;
  /// Relative to the project.
  std::string file;
  std::size_t line = 0;
  /// The line as it stands in the source, trimmed.
  std::string lineText;
  std::string before;
  std::string after;
  Mutant mutant;
};

/// The folders whose decisions are tried unless others are named.
[[nodiscard]] std::vector<std::string> decisionFolders();

/// The sources and headers of folders, and the named files, sorted. Platform code that is portable lies directly in
/// its folder, so folders below are not entered.
[[nodiscard]] std::vector<std::string> sourcesOf(const std::filesystem::path& project,
                                                 const std::vector<std::string>& named);

/// Numbered from 1 on, the same numbers for the same tree.
[[nodiscard]] std::vector<Planned> planned(const std::filesystem::path& project,
                                           const std::vector<std::string>& files);

/// So many of them, always the same ones, in their order; all when there are not as many.
[[nodiscard]] std::vector<Planned> sampled(std::vector<Planned> all, std::size_t count);

struct Tree {
  /// The checkout as it was when the round began: others may go on working in it.
  std::filesystem::path original;
  /// Holds `original`, `tree`, the copy, and `lines.tsv`, which says whose code stands where in it.
  std::filesystem::path work;
};

/// What a build needs of the project, in the work folder.
[[nodiscard]] Tree snapshot(const std::filesystem::path& project, const std::filesystem::path& work);

/// Brings the copy up to date, with the mutants in their slots except those that are `apart`. A file whose text does
/// not change is not touched, so that it is not built again.
void writeTree(const Tree& tree, const std::vector<Planned>& plan, const std::set<std::size_t>& apart);

/// Brings the copy up to date, with these texts in place of those of the original.
void writeTexts(const Tree& tree, const std::map<std::string, std::string>& changed);

/// One file of the copy with one change and none of the others.
void writeAlone(const Tree& tree, const Planned& planned);

/// Mutants that a compiler complains about.
struct Blame {
  /// Perhaps they only cannot stand beside the original.
  std::set<std::size_t> apart;
  /// Their own code is no C++, wherever it stands.
  std::set<std::size_t> hopeless;
};

[[nodiscard]] Blame blamed(const Tree& tree, const std::filesystem::path& log);

[[nodiscard]] std::string wholeText(const std::filesystem::path& file);

}  // namespace tamo::mutation
