#include "soak/identity.hpp"

#include "hardstop/process_snapshot.hpp"
#include "platform/stage/stage_kernel_processes.hpp"
#include "soak/bystander.hpp"

namespace tamo::soak {
namespace {

constexpr std::uint64_t tickMicros = 10'000;

}  // namespace

void reusePids(Tally& tally, int times) {
  const stage::StageKernelProcesses processes;
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

}  // namespace tamo::soak
