#include <iostream>

#include "platform/stage/journal.hpp"
#include "platform/stage/privileges.hpp"
#include "platform/stage/stage_root.hpp"
#include "platform/stage/stream_sockets.hpp"
#include "stage/core/core_program.hpp"

/// The Core of a stage: what it does is written in the setting "core", and read once, at its start.
int main() {
  tamo::stage::renouncePrivileges();
  const auto root = tamo::stage::StageRoot::fromEnvironment();
  const auto behaviour = tamo::stage::coreBehaviour(root.setting("core", ""));
  // Whoever mistyped an order would take an obedient Core for a rehearsal that went well.
  if (!behaviour) {
    std::cout << "core: \"" << behaviour.error() << "\" is no behaviour\n";
    return 64;
  }
  return tamo::stage::runCore(
      {.dataDirectory = root.host(root.home() + "/Library/Application Support/Tamo"),
       .presence = root.directory(),
       .listen = tamo::stage::listeningAt,
       // Of its own for each: a helper, which notes as well, was forked off.
       .note = [&root](auto word, const auto& texts) { tamo::stage::Journal(root).note(word, texts); }},
      *behaviour);
}
