#pragma once

#include <string>
#include <vector>

namespace tamo::stage {

struct BackgroundProgram {
  /// A host path.
  std::string program;
  /// The whole environment, as "NAME=VALUE".
  std::vector<std::string> environment;
  /// The host path of the file that its output is added to.
  std::string log;
};

/// Starts a program in a session of its own, as nobody's child, so that no caller has to wait for it. True as
/// soon as the program itself runs; false when it could not be started. Any thread; nothing is allocated between
/// fork and exec.
[[nodiscard]] bool startInBackground(const BackgroundProgram& background);

}  // namespace tamo::stage
