#include <map>

#include "acceptance/check.hpp"
#include "acceptance/scene.hpp"

namespace tamo::acceptance {
namespace {

using namespace std::chrono_literals;

/// Registering right after unregistering is reported to fail now and then. That is counted, and what has to hold is
/// that registering once more mends it.
void reseatingManyTimes(Scene& scene) {
  std::map<std::string, int> errors;
  int failed = 0;
  for (int round = 0; round < scene.terms.repetitions; ++round) {
    const auto outcome = scene.act("reseat").outcome();
    if (outcome == enabled("reseat")) continue;
    ++failed;
    ++errors[outcome];
    const auto mended = scene.act("register").outcome();
    scene.see.that(mended == enabled("register") || mended == enabled("register", " kickstart 0"),
                   "registering once more mends a reseat that failed", outcome + ", then " + mended);
    Scene::pause(1s);
  }
  std::string counted = std::to_string(failed) + " of " + std::to_string(scene.terms.repetitions);
  for (const auto& [outcome, count] : errors)
    counted += "; " + std::to_string(count) + " times " + outcome;
  scene.see.fact("reseats that failed", counted);
  scene.see.that(scene.alive(scene.core()), "the Core runs in the end");
}

}  // namespace

Theme reseatChecks() {
  return {
      "reseating",
      {{"reseat-many-times", "Reseating twenty times: how many fail is counted, and registering mends each.",
        Setting::Registered, reseatingManyTimes}}};
}

}  // namespace tamo::acceptance
