#include "soak/identity.hpp"

#include "hardstop/process_snapshot.hpp"
#include "platform/stage/stage_kernel_processes.hpp"
#include "soak/bystander.hpp"

namespace tamo::soak {
namespace {

constexpr std::uint64_t tickMicros = 10'000;

class Ageless final : public platform::KernelProcesses {
 public:
  [[nodiscard]] std::optional<platform::ProcessInfo> info(std::int32_t pid) const override {
    auto told = stage_.info(pid);
    if (told) told->startSeconds = told->startMicroseconds = 0;
    return told;
  }
  [[nodiscard]] std::int32_t ownPid() const override { return stage_.ownPid(); }
  [[nodiscard]] std::int32_t ownGroup() const override { return stage_.ownGroup(); }
  void kill(std::int32_t /*pid*/) override {}
  void killGroup(std::int32_t /*group*/) override {}

 private:
  stage::StageKernelProcesses stage_;
};

void reusePids(Tally& tally, const platform::KernelProcesses& processes, int times) {
  for (int i = 0; i < times; ++i) {
    auto first = Bystander::start({});
    const auto pid = first->pid();
    const auto before = HardStop::kernel(processes, pid);
    if (!before || !HardStop::alive(*before, HardStop::kernel(processes, pid)))
      tally.wrong("a living process is not recognised");
    first->kill();
    first->reap();
    const auto second = Bystander::start({.pid = pid});
    if (!second || !before) continue;
    const auto after = HardStop::kernel(processes, pid);
    tally.count("pids used again at once");
    if (after && after->startMicros / tickMicros == before->startMicros / tickMicros)
      tally.count("pids used again within one clock tick");
    if (HardStop::alive(*before, after))
      tally.wrong("a stranger with the same pid is taken for the first process");
  }
}

}  // namespace

void reusePids(Tally& tally, int times) {
  reusePids(tally, stage::StageKernelProcesses(), times);
}

void identityCanary(Tally& tally) {
  reusePids(tally, Ageless(), 20);
}

}  // namespace tamo::soak
