#pragma once

#include "platform/clock.hpp"
#include "platform/kernel_processes.hpp"
#include "platform/processes.hpp"
#include "platform/threads.hpp"
#include "simulation/companion.hpp"

/// Processes, threads and time, as one companion meets them.
namespace tamo::simulation {

class SimulatedProcesses final : public platform::Processes {
 public:
  explicit SimulatedProcesses(Companion& companion) : companion_(companion) {}
  [[nodiscard]] std::unique_ptr<platform::Tool> start(const platform::ToolLaunch& launch) override;

 private:
  [[nodiscard]] bool judgeStart(const platform::ToolLaunch& launch);

  Companion& companion_;
};

class SimulatedKernelProcesses final : public platform::KernelProcesses {
 public:
  explicit SimulatedKernelProcesses(Companion& companion) : companion_(companion) {}
  [[nodiscard]] std::optional<platform::ProcessInfo> info(std::int32_t pid) const override;
  [[nodiscard]] std::int32_t ownPid() const override { return companion_.pid(); }
  [[nodiscard]] std::int32_t ownGroup() const override { return companion_.group(); }
  void kill(std::int32_t pid) override;
  void killGroup(std::int32_t group) override;

 private:
  void send(std::int32_t target, bool toGroup);
  void strike(const Process& process);

  Companion& companion_;
};

class SimulatedThreads final : public platform::Threads {
 public:
  explicit SimulatedThreads(Companion& companion) : companion_(companion) {}
  [[nodiscard]] bool detach(std::function<void()> work) override;

 private:
  Companion& companion_;
};

class SimulatedClock final : public platform::Clock {
 public:
  explicit SimulatedClock(Companion& companion) : companion_(companion) {}
  [[nodiscard]] std::chrono::system_clock::time_point wallNow() const override;
  [[nodiscard]] platform::Instant monotonicNow() const override;
  void sleep(std::chrono::nanoseconds duration) override;

 private:
  Companion& companion_;
};

}  // namespace tamo::simulation
