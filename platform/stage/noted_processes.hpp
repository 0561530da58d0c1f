#pragma once

#include "platform/kernel_processes.hpp"
#include "platform/lock_files.hpp"
#include "platform/stage/journal.hpp"
#include "platform/threads.hpp"

/// What a companion asks of processes, threads and locks, passed on unchanged and noted in the stage's journal. What is
/// passed on to, and the journal, must outlive each of these.
namespace tamo::stage {

class NotedKernelProcesses final : public platform::KernelProcesses {
 public:
  NotedKernelProcesses(platform::KernelProcesses& processes, const Journal& journal)
      : processes_(processes), journal_(journal) {}

  [[nodiscard]] std::optional<platform::ProcessInfo> info(std::int32_t pid) const override;
  [[nodiscard]] std::int32_t ownPid() const override { return processes_.ownPid(); }
  [[nodiscard]] std::int32_t ownGroup() const override { return processes_.ownGroup(); }
  void kill(std::int32_t pid) override;
  void killGroup(std::int32_t group) override;

 private:
  platform::KernelProcesses& processes_;
  const Journal& journal_;
};

class NotedLockFiles final : public platform::LockFiles {
 public:
  NotedLockFiles(platform::LockFiles& files, const Journal& journal) : files_(files), journal_(journal) {}

  [[nodiscard]] int open(const std::string& path) override { return files_.open(path); }
  [[nodiscard]] bool tryLock(int descriptor) override;
  void unlock(int descriptor) override;
  void close(int descriptor) override { files_.close(descriptor); }

 private:
  platform::LockFiles& files_;
  const Journal& journal_;
};

class NotedThreads final : public platform::Threads {
 public:
  NotedThreads(platform::Threads& threads, const Journal& journal) : threads_(threads), journal_(journal) {}

  [[nodiscard]] bool detach(std::function<void()> work) override;

 private:
  platform::Threads& threads_;
  const Journal& journal_;
};

}  // namespace tamo::stage
