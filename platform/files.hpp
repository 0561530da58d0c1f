#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tamo::platform {

/// Files as the guard and the readers need them. Any thread.
class FileReader {
 public:
  virtual ~FileReader() = default;

  /// Whether an item is there, links followed: a dangling link counts as nothing.
  [[nodiscard]] virtual bool exists(const std::string& path) const = 0;

  /// The whole file as bytes; absent when it cannot be read to its end, and for what is no file: a pipe or a
  /// device is not waited for.
  [[nodiscard]] virtual std::optional<std::string> readWhole(const std::string& path) const = 0;

  /// `path` with the symbolic links of every component resolved, then standardised. All or nothing: a path
  /// that does not lead to an existing item is only standardised. A leading "/private" is dropped when the
  /// shorter path names the same existing item, unless that is in one of the system's folders
  /// (private_prefix.hpp). Where letter case doesn't count, each component has the case that it has on the
  /// disk.
  [[nodiscard]] virtual std::string resolvedPath(const std::string& path) const = 0;
};

/// An open file that a tool can be given as its output. Destroying it closes it; a failure to close is
/// ignored.
class OutputFile {
 public:
  virtual ~OutputFile() = default;
  [[nodiscard]] virtual int descriptor() const = 0;
};

/// Files with their changes. One thread.
class Files : public FileReader {
 public:
  /// Replaces the file as a whole, or creates it: a reader sees the old bytes or the new, never a part. A
  /// symbolic link at `path` is replaced, not followed. False when nothing was written; no temporary file is
  /// left then.
  [[nodiscard]] virtual bool writeAtomically(const std::string& path, std::string_view bytes) = 0;

  /// Creates the directory with all that is missing above it. True when it is there afterwards.
  [[nodiscard]] virtual bool createDirectories(const std::string& path) = 0;

  /// Removes an item, a folder with all below it; a symbolic link itself, never what it leads to. False when
  /// something is left or nothing was there.
  virtual bool remove(const std::string& path) = 0;

  /// Opens an existing file for writing from its start. Null when it cannot be opened, and when what is there
  /// may be somebody else's: a symbolic link, a file with a second name, a pipe, which is not waited for.
  [[nodiscard]] virtual std::unique_ptr<OutputFile> openForWriting(const std::string& path) = 0;

  /// The user's own temporary directory, with a "/" at its end. Absent when there is none.
  [[nodiscard]] virtual std::optional<std::string> temporaryDirectory() const = 0;
};

}  // namespace tamo::platform
