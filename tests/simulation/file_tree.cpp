#include "simulation/file_tree.hpp"

#include <utility>
#include <vector>

namespace tamo::simulation {
namespace {

bool isAtOrBelow(std::string_view path, std::string_view folder) {
  return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

/// Removes what stands at `path` and below it. Names that only begin alike lie between, so all are looked at.
template <class Map>
bool eraseTree(Map& map, std::string_view path) {
  bool erased = false;
  for (auto it = map.lower_bound(path); it != map.end() && it->first.starts_with(path);) {
    const bool below = isAtOrBelow(it->first, path);
    erased = erased || below;
    it = below ? map.erase(it) : std::next(it);
  }
  return erased;
}

template <class Map>
bool holdsTree(const Map& map, std::string_view path) {
  for (auto it = map.lower_bound(path); it != map.end() && it->first.starts_with(path); ++it) {
    if (isAtOrBelow(it->first, path)) return true;
  }
  return false;
}

}  // namespace

std::string FileTree::place(std::string_view path) const {
  if (linkFrom_.empty() || !isAtOrBelow(path, linkFrom_)) return std::string(path);
  return linkTo_ + std::string(path.substr(linkFrom_.size()));
}

bool FileTree::exists(std::string_view path) const {
  const auto at = place(path);
  return holdsTree(files_, at) || holdsTree(folders_, at);
}

const std::string* FileTree::read(std::string_view path) const {
  const auto found = files_.find(place(path));
  return found == files_.end() ? nullptr : &found->second;
}

std::string FileTree::resolved(std::string_view path) const {
  return exists(path) ? place(path) : std::string(path);
}

void FileTree::write(std::string_view path, std::string bytes) {
  files_[place(path)] = std::move(bytes);
}

void FileTree::append(const std::string& path, std::string_view bytes) {
  const auto found = files_.find(path);
  if (found != files_.end()) found->second += bytes;
}

void FileTree::createFolder(std::string_view path) {
  folders_[place(path)] = true;
}

void FileTree::link(std::string from, std::string to) {
  linkFrom_ = std::move(from);
  linkTo_ = std::move(to);
}

/// A path that is the link itself is the link, not what it leads to.
bool FileTree::remove(std::string_view path) {
  if (path == linkFrom_ && !linkFrom_.empty()) {
    linkFrom_.clear();
    return true;
  }
  const auto at = place(path);
  const bool files = eraseTree(files_, at);
  const bool folders = eraseTree(folders_, at);
  return files || folders;
}

bool FileTree::copy(const std::string& from, const std::string& to) {
  std::vector<std::pair<std::string, std::string>> copied;
  for (auto it = files_.lower_bound(from); it != files_.end() && it->first.starts_with(from); ++it) {
    if (isAtOrBelow(it->first, from)) copied.emplace_back(to + it->first.substr(from.size()), it->second);
  }
  for (auto& [path, bytes] : copied)
    files_[path] = std::move(bytes);
  return !copied.empty();
}

}  // namespace tamo::simulation
