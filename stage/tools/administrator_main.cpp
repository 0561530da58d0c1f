#include <cstdlib>
#include <iostream>
#include <unistd.h>

#include "platform/stage/privileges.hpp"

/// Carries out one shell command as the administrator of a stage. Started by the stage's launchd alone, which
/// kept the privileges that everybody else has given up.
int main(int argc, char** argv) {
  // As sysexits.h numbers a wrong use and a permission that is not had.
  constexpr int wrongUse = 64;
  constexpr int noAdministrator = 77;
  if (argc != 2) return wrongUse;
  if (!tamo::stage::takeAdministratorPrivileges()) {
    std::cerr << "this machine lets nobody be administrator of a stage: neither root nor user namespaces\n";
    return noAdministrator;
  }
  // By this a tool knows whose hands it is in, and which of the ordered faults is its own.
  ::setenv("TAMO_STAGE_ADMINISTRATOR", "yes", 1);
  // What the user has on the PATH has no say in what runs with privileges.
  ::setenv("PATH", "/usr/bin:/bin", 1);
  ::execl("/bin/sh", "sh", "-c", argv[1], nullptr);
  return 127;
}
