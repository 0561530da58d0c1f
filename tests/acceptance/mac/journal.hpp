#pragma once

#include <string>

namespace tamo::acceptance {

/// What was made and has to be taken away again, one a line in a file: "path PATH" for an item, "registered" for the
/// agent, "trash" for copies that a move put there. A line is on the disk before what it tells of is made, so that whoever finds the file after a run that was
/// cut off can clear what may be there. Clearing is not its business.
class Journal {
 public:
  explicit Journal(std::string file) : file_(std::move(file)) {}

  /// Raises PlaceError when it cannot be kept: then nothing may be made.
  void willMake(const std::string& path) { note("path " + path); }
  void willTrash() { note("trash"); }
  void willRegister() { note("registered"); }

 private:
  void note(const std::string& line) const;
  std::string file_;
};

}  // namespace tamo::acceptance
