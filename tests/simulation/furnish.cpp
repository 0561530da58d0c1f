#include <array>

#include "simulation/companion.hpp"
#include "simulation/job_texts.hpp"
#include "simulation/world.hpp"

namespace tamo::simulation {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr std::array<std::string_view, 6> versions{"41", "42", "42", "43", "1.4.2", "unknown"};
constexpr std::array<std::string_view, 3> markerFiles{"core.db.revert.pending", "core.db.revert.partial",
                                                      "core.db.revert.partial.json"};

/// How many in a thousand Macs print the job in the older form.
constexpr unsigned older = 300;

std::size_t someDefinition(Dice& dice) {
  return dice.chance(700) ? 0 : dice.below(jobDefinitions().size());
}

void placeSome(World& world, std::string_view place, std::string_view bundleID) {
  // In two steps: compilers differ in the order in which they throw the dice for two arguments.
  const auto version = world.dice.oneOf(versions);
  world.placeCopy(place, bundleID, version, someDefinition(world.dice));
}

/// The original lies where it was downloaded to, whether or not the system tells so.
void translocate(World& world) {
  placeSome(world, Places::downloaded, Places::releaseID);
  world.files.copy(std::string(Places::downloaded), std::string(Places::translocated));
  if (world.dice.chance(700)) world.original = Places::downloaded;
}

void placeCopies(World& world) {
  auto& dice = world.dice;
  if (dice.chance(750)) placeSome(world, Places::installed, Places::releaseID);
  if (dice.chance(300)) placeSome(world, Places::staged, Places::releaseID);
  if (dice.chance(600)) placeSome(world, Places::downloaded, Places::releaseID);
  if (dice.chance(150)) placeSome(world, Places::development, "studio.pell.Tamo.dev");
  if (dice.chance(150)) translocate(world);
  if (dice.chance(150)) world.files.link(std::string(Places::linked), std::string(Places::installed));
  world.applicationsWritable = dice.chance(800);
  world.copiesAtFirst = world.wholeCopies(false);
}

void markerSometimes(World& world, const std::string& directory) {
  auto& dice = world.dice;
  const auto path = directory + std::string(dice.oneOf(markerFiles));
  if (dice.chance(120)) world.files.write(path, "");
  if (dice.chance(80))
    world.timeline.after(dice.between(Time(0), seconds(5)), [&world, path] { world.files.write(path, ""); });
  if (dice.chance(80))
    world.timeline.after(dice.between(Time(0), seconds(5)), [&world, path] { world.files.remove(path); });
}

void settleAgent(World& world) {
  auto& dice = world.dice;
  constexpr std::array<std::int64_t, 10> statuses{1, 1, 1, 1, 1, 1, 1, 0, 2, 3};
  world.job.status = dice.oneOf(statuses);
  world.job.approvalWithheld = dice.chance(150);
  world.job.definition = someDefinition(dice);
  world.job.loaded = world.job.status == 1 && dice.chance(950);
  if (dice.chance(older)) world.job.printForm = PrintForm::Plain;
  if (dice.chance(900)) world.job.startCore();
  if (!dice.chance(100)) return;
  world.timeline.after(dice.between(Time(0), seconds(5)), [&world] {
    world.job.approvalWithheld = false;
    if (world.job.status == 2) world.job.registerAgent(world.job.definition);
  });
}

/// The main application of a copy, which a move waits for.
void runApplication(World& world, const std::string& copy) {
  auto& dice = world.dice;
  world.applications.push_back({std::string(Places::releaseID), copy});
  if (dice.chance(100)) world.applications.push_back({std::nullopt, copy});
  const auto leaves = dice.below(10);
  if (leaves == 0) return;
  const auto stays = leaves == 1 ? dice.between(seconds(20), seconds(50)) : dice.between(Time(0), seconds(4));
  world.timeline.after(stays, [&world] {
    if (!world.applications.empty()) world.applications.erase(world.applications.begin());
  });
}

/// By seconds, as a correction is, or by hours.
void setWallClock(World& world) {
  auto& dice = world.dice;
  const bool back = dice.chance(500);
  const auto size =
      dice.chance(700) ? dice.between(Time(0), seconds(40)) : dice.between(seconds(40), hours(5));
  const auto by = back ? -size : size;
  if (dice.chance(500)) return world.setWallClock(by);
  world.timeline.after(dice.between(Time(0), seconds(10)), [&world, by] { world.setWallClock(by); });
}

/// The machine sleeps at some time, or between two calls that one companion or another makes.
void sleepSometimes(World& world) {
  auto& dice = world.dice;
  const auto duration =
      dice.chance(500) ? dice.between(Time(0), seconds(5)) : dice.between(seconds(5), hours(9));
  if (dice.chance(400)) {
    world.sleepsAtCall = 1 + dice.below(150);
    world.sleepsFor = duration;
  } else {
    world.timeline.after(dice.between(Time(0), seconds(10)),
                         [&world, duration] { world.sleepMachine(duration); });
  }
}

std::string someExisting(const World& world) {
  for (const auto place : {Places::installed, Places::staged, Places::downloaded}) {
    if (world.files.exists(place)) return std::string(place);
  }
  return std::string(Places::installed);
}

std::string someCopy(World& world) {
  auto& dice = world.dice;
  const auto place = dice.below(100);
  auto copy = std::string(Places::installed);
  if (place >= 60 && place < 72) copy = Places::staged;
  if (place >= 72 && place < 89) copy = Places::downloaded;
  if (place >= 89 && place < 96) copy = Places::translocated;
  if (place >= 96 && place < 98) copy = Places::development;
  if (place >= 98) copy = Places::linked;
  return world.files.exists(copy) ? copy : someExisting(world);
}

/// Most copies that have to move are asked to, since they may do nothing else.
std::string someAction(Dice& dice, const std::string& copy) {
  constexpr std::array<std::string_view, 16> actions{
      "restart",    "restart",  "restart", "restart",
      "restart",    "restart",  "reseat",  "reseat",
      "register",   "register", "sync",    "sync",
      "unregister", "status",   "unknown", "move-to-applications"};
  const bool moves = copy != Places::installed && copy != Places::staged && dice.chance(700);
  return std::string(moves ? "move-to-applications" : dice.oneOf(actions));
}

void requestByArguments(Dice& dice, CompanionPlan& plan) {
  plan.arguments.emplace_back("Tamo Core");
  if (dice.chance(120)) return;
  plan.argumentsMean = someAction(dice, plan.copy);
  plan.arguments.emplace_back("--core-action");
  plan.arguments.push_back(*plan.argumentsMean);
}

struct KnownUrl {
  std::string_view url;
  std::string_view means;
};

void requestByUrls(Dice& dice, CompanionPlan& plan) {
  constexpr std::array<KnownUrl, 9> urls{{{"tamo-core://restart", "restart"},
                                          {"tamo-core:sync", "sync"},
                                          {"tamo-core:///register/", "register"},
                                          {"tamo-core://reseat", "reseat"},
                                          {"tamo-core://move-to-applications", "move-to-applications"},
                                          {"TAMO-CORE://status", ""},
                                          {"tamo-core://bogus", ""},
                                          {"tamo-core://sync?x=1", ""},
                                          {"tamo-core://unregister", "unregister"}}};
  if (!dice.chance(250)) return;
  for (auto count = dice.below(3) + 1; count > 0; --count) {
    const auto& url = dice.oneOf(urls);
    const auto means = url.means.empty() ? std::nullopt : std::optional(std::string(url.means));
    plan.urls.push_back({dice.between(Time(0), milliseconds(700)), std::string(url.url), means});
  }
}

CompanionPlan somePlan(World& world, std::size_t number) {
  auto& dice = world.dice;
  CompanionPlan plan;
  plan.name = "companion " + std::to_string(number);
  plan.copy = someCopy(world);
  if (number > 1) plan.launch = dice.between(Time(0), dice.chance(900) ? seconds(4) : seconds(60));
  requestByArguments(dice, plan);
  requestByUrls(dice, plan);
  plan.writesReceipts = dice.chance(500);
  plan.proofHome = dice.chance(120);
  plan.exitsInTerminate = dice.chance(500);
  if (dice.chance(60)) plan.diesAfter = dice.between(Time(0), seconds(6));
  if (dice.chance(60)) plan.diesAtCall = 1 + dice.below(200);
  return plan;
}

void addCompanions(World& world) {
  auto& dice = world.dice;
  const auto chosen = dice.below(10);
  const std::size_t count = chosen < 6 ? 1 : (chosen < 9 ? 2 : 3);
  for (std::size_t number = 1; number <= count; ++number) {
    auto& companion =
        *world.companions.emplace_back(std::make_unique<Companion>(world, somePlan(world, number)));
    world.timeline.after(companion.plan.launch, [&companion] { companion.launch(); });
    if (companion.plan.copy != Places::installed) runApplication(world, companion.plan.copy);
  }
}

}  // namespace

void furnish(World& world) {
  world.processes.spawnAs(1, ProcessKind::Launchd, Time(0));
  placeCopies(world);
  for (const auto home : {Places::home, Places::proofHome})
    markerSometimes(world, std::string(home) + std::string(Places::dataInHome));
  settleAgent(world);
  if (world.dice.chance(150)) setWallClock(world);
  if (world.dice.chance(100)) sleepSometimes(world);
  addCompanions(world);
}

}  // namespace tamo::simulation
