#include "mutation/campaign.hpp"

#include <algorithm>
#include <fstream>
#include <random>
#include <regex>
#include <sstream>

namespace tamo::mutation {
namespace {

namespace fs = std::filesystem;

bool isSource(const fs::path& path) {
  return path.extension() == ".cpp" || path.extension() == ".hpp";
}

std::string trimmedLine(std::string_view source, std::size_t offset) {
  const auto begin = source.rfind('\n', offset) + 1;
  auto line = source.substr(begin, source.find('\n', offset) - begin);
  line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
  return std::string(line);
}

void writeIfChanged(const fs::path& file, const std::string& text) {
  if (fs::exists(file) && wholeText(file) == text) return;
  fs::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << text;
}

/// What a build needs; the mutator's own folder is there for its switch, and the pages for the one that a program holds.
std::vector<std::string> builtFolders() {
  return {"app",      "docs",  "guard",   "hardstop", "launch", "move",
          "platform", "stage", "support", "tests",    "values"};
}

/// What is no longer in the original leaves the copy as well: the build takes every source that it finds.
void removeVanished(const fs::path& original, const fs::path& copy) {
  if (!fs::exists(copy)) return;
  std::vector<fs::path> vanished;
  for (const auto& entry : fs::recursive_directory_iterator(copy))
    if (entry.is_regular_file() && !fs::exists(original / fs::relative(entry.path(), copy)))
      vanished.push_back(entry.path());
  for (const auto& file : vanished)
    fs::remove(file);
}

/// Copies a tree, except that some of its files get other texts.
void copyTree(const fs::path& original, const fs::path& copy,
              const std::map<std::string, std::string>& changed) {
  removeVanished(original, copy);
  const auto copyFile = [&](const std::string& name) {
    const auto found = changed.find(name);
    writeIfChanged(copy / name, found == changed.end() ? wholeText(original / name) : found->second);
  };
  copyFile("CMakeLists.txt");
  for (const auto& folder : builtFolders()) {
    for (const auto& entry : fs::recursive_directory_iterator(original / folder)) {
      if (entry.is_regular_file()) copyFile(fs::relative(entry.path(), original).string());
    }
  }
}

std::vector<Planned> plannedIn(const std::string& file, const std::string& text) {
  std::vector<Planned> plan;
  const auto words = tokens(text);
  for (auto& mutant : mutants(words, structure(words))) {
    const auto& edit = mutant.edits.front();
    const auto& first = words[edit.range.begin];
    plan.push_back({.file = file,
                    .line = first.line,
                    .lineText = trimmedLine(text, first.offset),
                    .before = written(words, edit.range),
                    .after = edit.text,
                    .mutant = std::move(mutant)});
  }
  return plan;
}

void writeOwners(const Tree& tree, const std::map<std::string, Rendered>& rendered) {
  std::ofstream out(tree.work / "lines.tsv");
  for (const auto& [file, made] : rendered)
    for (const auto& [line, ids] : made.owners)
      for (const auto id : ids)
        out << file << ':' << line << '\t' << id << '\n';
}

using Owners = std::map<std::string, std::set<std::size_t>>;

Owners readOwners(const Tree& tree) {
  Owners owners;
  std::ifstream in(tree.work / "lines.tsv");
  std::string where;
  for (std::size_t id = 0; in >> where >> id;)
    owners[where].insert(id);
  return owners;
}

/// Everything in the file of a place.
std::set<std::size_t> ownedIn(const Owners& owners, const std::string& place) {
  const auto file = place.substr(0, place.find(':') + 1);
  std::set<std::size_t> ids;
  for (const auto& [where, given] : owners)
    if (where.starts_with(file)) ids.insert(given.begin(), given.end());
  return ids;
}

}  // namespace

std::string wholeText(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return text.str();
}

Tree snapshot(const fs::path& project, const fs::path& work) {
  copyTree(project, work / "original", {});
  return {.original = work / "original", .work = work};
}

std::vector<std::string> decisionFolders() {
  return {"values", "platform", "guard", "hardstop", "launch", "move", "app"};
}

std::vector<std::string> sourcesOf(const fs::path& project, const std::vector<std::string>& named) {
  std::set<std::string> files;
  for (const auto& name : named) {
    if (!fs::is_directory(project / name)) {
      files.insert(fs::path(name).lexically_normal().string());
      continue;
    }
    // No test is linked with a main program.
    for (const auto& entry : fs::directory_iterator(project / name))
      if (entry.is_regular_file() && isSource(entry.path()) && entry.path().filename() != "main.cpp")
        files.insert((fs::path(name) / entry.path().filename()).lexically_normal().string());
  }
  return {files.begin(), files.end()};
}

std::vector<Planned> planned(const fs::path& project, const std::vector<std::string>& files) {
  std::vector<Planned> plan;
  for (const auto& file : files)
    for (auto& one : plannedIn(file, wholeText(project / file))) {
      one.id = plan.size() + 1;
      plan.push_back(std::move(one));
    }
  return plan;
}

std::vector<Planned> sampled(std::vector<Planned> all, std::size_t count) {
  std::mt19937 random(1);
  std::vector<Planned> some;
  // Selection sampling; the library's own would give other samples with another library.
  for (std::size_t at = 0; at < all.size() && some.size() < count; ++at)
    if (random() % (all.size() - at) < count - some.size()) some.push_back(std::move(all[at]));
  return some;
}

void writeTree(const Tree& tree, const std::vector<Planned>& plan, const std::set<std::size_t>& apart) {
  std::map<std::string, std::vector<Numbered>> perFile;
  for (const auto& one : plan)
    if (!apart.contains(one.id)) perFile[one.file].push_back({one.id, one.mutant});
  std::map<std::string, Rendered> rendered;
  std::map<std::string, std::string> changed;
  for (const auto& [file, numbered] : perFile) {
    rendered[file] = withAll(wholeText(tree.original / file), numbered);
    changed[file] = rendered[file].text;
  }
  copyTree(tree.original, tree.work / "tree", changed);
  writeOwners(tree, rendered);
}

void writeTexts(const Tree& tree, const std::map<std::string, std::string>& changed) {
  copyTree(tree.original, tree.work / "tree", changed);
}

void writeAlone(const Tree& tree, const Planned& planned) {
  writeIfChanged(tree.work / "tree" / planned.file,
                 withOne(wholeText(tree.original / planned.file), planned.mutant));
}

Blame blamed(const Tree& tree, const fs::path& log) {
  const auto owners = readOwners(tree);
  const std::regex certain("/tree/([a-z_/]+\\.[ch]pp:[0-9]+):[0-9: ]+(error|.*requested here)");
  const std::regex possible("/tree/([a-z_/]+\\.[ch]pp:[0-9]+)[:,]");
  const std::regex hopeless(
      "error: (invalid operands|no viable conversion|cannot initialize|no matching conversion)");
  Blame blame;
  std::set<std::size_t> suspects;
  std::ifstream in(log);
  for (std::string line; std::getline(in, line);) {
    std::smatch match;
    const bool isCertain = std::regex_search(line, match, certain);
    if (!isCertain && !std::regex_search(line, match, possible)) continue;
    const auto found = owners.find(match[1]);
    if (found == owners.end() && line.contains("tamo_mutation::is")) {
      // The constructor of a class whose members begin with other values: it is named by the class alone.
      blame.apart.merge(ownedIn(owners, match[1]));
    }
    if (found == owners.end()) continue;
    const bool isHopeless = found->second.size() == 1 && std::regex_search(line, hopeless);
    auto& taken = isHopeless ? blame.hopeless : (isCertain ? blame.apart : suspects);
    taken.insert(found->second.begin(), found->second.end());
  }
  if (blame.apart.empty() && blame.hopeless.empty()) blame.apart = suspects;
  return blame;
}

}  // namespace tamo::mutation
