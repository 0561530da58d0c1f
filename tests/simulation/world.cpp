#include "simulation/world.hpp"

#include <algorithm>

#include "simulation/companion.hpp"
#include "simulation/job_texts.hpp"

namespace tamo::simulation {
namespace {

constexpr std::string_view infoFile = "/Contents/Info.plist";
constexpr std::string_view programFile = "/Contents/MacOS/Tamo";

std::string joined(std::string_view left, std::string_view middle, std::string_view right = "") {
  return std::string(left).append(middle).append(right);
}

}  // namespace

World::World(Timeline& time, const Dice& thrown, Plant plant, bool traced)
    : timeline(time),
      clocks(time),
      planted(plant),
      dice(thrown),
      trace(traced),
      verdict(trace),
      faults(dice),
      processes(dice),
      job({.timeline = timeline, .clocks = clocks, .dice = dice, .processes = processes, .trace = trace}) {}

World::~World() = default;

/// The program's file is written last by whoever copies, and names the version that the list has to have.
bool World::isWhole(std::string_view app) const {
  const auto* program = files.read(joined(app, programFile));
  const auto* info = files.read(joined(app, infoFile));
  const bool agent = files.read(joined(app, Places::helper, Places::agentList)) != nullptr;
  return program != nullptr && info != nullptr && agent && valueOf("CFBundleVersion", *info) == *program;
}

void World::placeCopy(std::string_view app, std::string_view bundleID, std::string_view version,
                      std::size_t definition) {
  files.write(joined(app, infoFile), infoPlist(bundleID, version));
  files.write(joined(app, Places::helper, Places::agentList), agentPlist(definition));
  files.write(joined(app, programFile), std::string(version));
}

int World::wholeCopies(bool withTrash) const {
  int found = 0;
  for (const auto& [path, bytes] : files.all()) {
    if (!path.ends_with(infoFile) || valueOf("CFBundleIdentifier", bytes) != Places::releaseID) continue;
    const auto app = std::string_view(path).substr(0, path.size() - infoFile.size());
    const bool counts = withTrash || !app.starts_with(Places::trash);
    if (counts && app != Places::translocated && isWhole(app)) ++found;
  }
  return found;
}

void World::sleepMachine(Time duration) {
  const auto millis = std::chrono::duration_cast<std::chrono::milliseconds>(duration).count();
  trace.note(timeline.now(), "machine", "sleeps for ", millis, " ms");
  clocks.sleep(duration);
}

void World::setWallClock(Time by) {
  const auto millis = std::chrono::duration_cast<std::chrono::milliseconds>(by).count();
  trace.note(timeline.now(), "somebody", "sets the wall clock by ", millis, " ms");
  clocks.setWall(by);
}

}  // namespace tamo::simulation
