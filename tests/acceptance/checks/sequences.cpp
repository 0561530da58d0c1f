#include "acceptance/checks/sequences.hpp"

#include "acceptance/check.hpp"
#include "acceptance/scene.hpp"

namespace tamo::acceptance {
namespace {

constexpr std::array<const char*, 3> threeActions{"register", "unregister", "status"};

/// Every sequence of three that begins with the two, each from an agent that is not registered.
void sequences(Scene& scene, const std::string& first, const std::string& second) {
  for (const auto* third : threeActions) {
    bool registered = false;
    for (const auto& action : {first, second, std::string(third)}) {
      scene.ended(scene.act(action), expectedOutcome(action, registered));
      registered = registeredAfter(action, registered);
      const bool asMeant =
          registered ? scene.core() != 0 : Scene::eventually([&] { return scene.coreNow() == 0; });
      scene.see.that(asMeant, registered ? "the Core runs after it" : "no Core runs after it",
                     first + ", " + second + ", " + third + ": after " + action);
    }
    if (registered) scene.ended(scene.act("unregister"), expectedOutcome("unregister", true));
  }
}

template <int First, int Second>
void startingWith(Scene& scene) {
  sequences(scene, threeActions[First], threeActions[Second]);
}

}  // namespace

std::string expectedOutcome(const std::string& action, bool registered) {
  const auto opening = action + " -> status ";
  if (action == "register") return opening + "1 ok Optional(true)" + (registered ? " kickstart 0" : "");
  if (action == "unregister" && registered) return opening + "0 ok Optional(true)";
  // The status of what is not registered is 0 or 3, and the system may or may not call unregistering it an error.
  if (action == "unregister") return opening + "* ok Optional(*)*";
  return opening + (registered ? "1" : "*") + " ok Optional(true)";
}

bool registeredAfter(const std::string& action, bool registered) {
  if (action == "status") return registered;
  return action == "register";
}

Theme sequenceChecks() {
  using enum Setting;
  return {
      "sequences",
      {{"register-register", "Register twice, then each action.", Installed, startingWith<0, 0>},
       {"register-unregister", "Register, unregister, then each action.", Installed, startingWith<0, 1>},
       {"register-status", "Register, ask for the status, then each action.", Installed, startingWith<0, 2>},
       {"unregister-register", "Unregister, register, then each action.", Installed, startingWith<1, 0>},
       {"unregister-unregister", "Unregister twice, then each action.", Installed, startingWith<1, 1>},
       {"unregister-status", "Unregister, ask for the status, then each action.", Installed,
        startingWith<1, 2>},
       {"status-register", "Ask for the status, register, then each action.", Installed, startingWith<2, 0>},
       {"status-unregister", "Ask for the status, unregister, then each action.", Installed,
        startingWith<2, 1>},
       {"status-status", "Ask for the status twice, then each action.", Installed, startingWith<2, 2>}}};
}

}  // namespace tamo::acceptance
