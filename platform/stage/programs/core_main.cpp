#include <iostream>

#include "platform/stage/privileges.hpp"
#include "platform/stage/programs/core_program.hpp"

int main() {
  tamo::stage::renouncePrivileges();
  const auto root = tamo::stage::StageRoot::fromEnvironment();
  const auto behaviour = tamo::stage::coreBehaviour(root.setting("core", ""));
  if (!behaviour) {
    std::cout << "core: \"" << behaviour.error() << "\" is no behaviour" << std::endl;
    return 64;
  }
  return tamo::stage::runCore(root, *behaviour);
}
