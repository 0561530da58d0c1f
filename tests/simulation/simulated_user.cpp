#include "simulation/simulated_user.hpp"

#include "simulation/referee.hpp"

namespace tamo::simulation {

int SimulatedLockFiles::open(const std::string& path) {
  auto& world = companion_.world;
  companion_.record.lockAsked = true;
  const bool fails = companion_.enter(Call::openLock);
  Referee::touches(companion_, Call::openLock, path);
  if (world.planted == Plant::ForgottenLock) return -1;
  if (fails || world.files.isLink(path)) {
    Referee::givesLockUp(companion_);
    return -1;
  }
  world.files.write(path, "");
  const int descriptor = world.nextDescriptor++;
  world.lockDescriptors[descriptor] = &companion_;
  return descriptor;
}

bool SimulatedLockFiles::tryLock(int descriptor) {
  auto& world = companion_.world;
  auto& record = companion_.record;
  if (!record.lockFirstTried) {
    record.lockFirstTried = world.clocks.now();
    record.lockSlowBefore = record.slow;
  }
  const bool fails = companion_.enter(Call::tryLock);
  ++record.lockTries;
  const bool free = world.planted == Plant::TwoHolders || world.lockHolder == nullptr;
  const bool gained = !fails && free && world.lockDescriptors.contains(descriptor);
  Referee::triesLock(companion_, gained);
  if (gained) world.lockHolder = &companion_;
  return gained;
}

void SimulatedLockFiles::unlock(int descriptor) {
  auto& world = companion_.world;
  if (companion_.enter(Call::unlock) || world.planted == Plant::NoUnlock) return;
  if (!world.lockDescriptors.contains(descriptor)) return;
  Referee::letsLockGo(companion_);
  if (world.lockHolder == &companion_) world.lockHolder = nullptr;
}

void SimulatedLockFiles::close(int descriptor) {
  auto& world = companion_.world;
  if (companion_.enter(Call::closeLock) || world.planted == Plant::NoUnlock) return;
  if (companion_.record.lockHeld) Referee::letsLockGo(companion_);
  if (!companion_.record.lockHeldOnce) Referee::givesLockUp(companion_);
  if (world.lockHolder == &companion_) world.lockHolder = nullptr;
  world.lockDescriptors.erase(descriptor);
}

std::optional<std::string> SimulatedBundles::originalLocation(const std::string& appPath) const {
  const bool fails = companion_.enter(Call::originalLocation);
  Referee::touches(companion_, Call::originalLocation, appPath);
  companion_.record.originalTold = fails ? std::nullopt : companion_.world.original;
  return companion_.record.originalTold;
}

/// A receipt without a password entry stops the process, which is no run any more.
std::optional<platform::PasswordEntry> SimulatedUser::passwordEntry() const {
  const bool absent = companion_.enter(Call::passwordEntry) && !companion_.plan.writesReceipts;
  companion_.record.homeKnown = !absent;
  if (absent) return std::nullopt;
  return platform::PasswordEntry{std::string(Places::home)};
}

bool SimulatedLocalSockets::accepts(const std::string& asked) {
  const auto path = companion_.plantedPlace(asked);
  const bool fails = companion_.enter(Call::accepts, path);
  const bool right = path.starts_with(companion_.dataDirectory());
  const bool accepted = !fails && right && companion_.world.job.coreListens();
  companion_.note("tries ", path, ": ", accepted);
  Referee::triesSocket(companion_, path, accepted);
  return accepted;
}

}  // namespace tamo::simulation
