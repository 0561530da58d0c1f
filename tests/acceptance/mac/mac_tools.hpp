#pragma once

#include <string>
#include <vector>

#include "acceptance/child.hpp"

namespace tamo::acceptance {

/// Runs a tool of the system, which has to succeed: anything else is a PlaceError with what it said.
void need(const std::vector<std::string>& words);

struct MacProcess {
  int pid = 0;
  /// Of its executable, where that lies now.
  std::string path;
};

enum class Whose { Ours, Others };

/// The processes of this user, or of all others, whose executables' paths end so.
[[nodiscard]] std::vector<MacProcess> processesEndingWith(const std::string& ending, Whose whose);

}  // namespace tamo::acceptance
