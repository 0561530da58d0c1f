#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "platform/clock.hpp"
#include "platform/files.hpp"
#include "platform/lock_files.hpp"

namespace tamo {

/// The lock that keeps two instances of this application from acting on the Core's job at the same time: an
/// advisory lock on a file of its own in the user's temporary directory. The file is never read or written
/// and stays there after use. Taken once per action, since a second lockJob() of the same process would wait
/// for the first. One thread.
class JobLock {
 public:
  /// What the lock needs. The references must outlive the JobLock.
  struct Needs {
    platform::LockFiles& lockFiles;
    const platform::Files& files;
    platform::Clock& clock;
    /// The launchd label of the job, which names the file.
    std::string label;
  };

  explicit JobLock(Needs needs) : needs_(std::move(needs)) {}

  /// Waits up to 60 seconds for the lock, blocking the calling thread. Gives the descriptor that holds it,
  /// which the caller keeps for the whole action and gives to unlockJob(), or -1: the file could not be
  /// opened (a symbolic link in its place is refused at once), or the time has run out. Without a temporary
  /// directory the process stops (fatal).
  [[nodiscard]] std::int32_t lockJob();

  /// Releases the lock and closes the descriptor; nothing for a negative one.
  void unlockJob(std::int32_t descriptor);

 private:
  [[nodiscard]] std::string path() const;
  [[nodiscard]] bool waitForLock(std::int32_t descriptor);

  Needs needs_;
};

}  // namespace tamo
