#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tamo::simulation {

/// The files of the played Mac: paths and bytes. A folder exists by what it holds, or because it was created.
/// One symbolic link leads from one folder to another.
class FileTree {
 public:
  [[nodiscard]] bool exists(std::string_view path) const;
  /// Null when there is no such file.
  [[nodiscard]] const std::string* read(std::string_view path) const;
  /// `path` with the link resolved, when that leads to something.
  [[nodiscard]] std::string resolved(std::string_view path) const;

  void write(std::string_view path, std::string bytes);
  void append(const std::string& path, std::string_view bytes);
  void createFolder(std::string_view path);
  void link(std::string from, std::string to);
  /// Takes the link away, wherever it is.
  void unlink() { linkFrom_.clear(); }
  [[nodiscard]] bool isLink(std::string_view path) const { return !linkFrom_.empty() && path == linkFrom_; }
  /// False when nothing was there.
  bool remove(std::string_view path);
  /// Copies a folder over another, file by file. False when nothing is there to copy.
  bool copy(const std::string& from, const std::string& to);

  /// Every path and its bytes, in order; for a look at the whole.
  [[nodiscard]] const std::map<std::string, std::string, std::less<>>& all() const { return files_; }

 private:
  [[nodiscard]] std::string place(std::string_view path) const;

  std::map<std::string, std::string, std::less<>> files_;
  std::map<std::string, bool, std::less<>> folders_;
  std::string linkFrom_;
  std::string linkTo_;
};

}  // namespace tamo::simulation
