#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

/// Stands in launchctl's place and notes, in the stage's "crowd" file, when a companion begins and ends to
/// work on the job: "begin COMPANION TIME" and "end COMPANION TIME", a line in one write, so the lines
/// have /// one order. The end of a tool whose companion has died says nothing about the lock and is not noted.
namespace {

void note(const std::string& root, const std::string& what, pid_t companion) {
  const auto path = root + "/.stage/crowd";
  const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
  const auto line = what + " " + std::to_string(companion) + " " + std::to_string(now) + "\n";
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  static_cast<void>(!::write(file, line.data(), line.size()));
  ::close(file);
}

}  // namespace

int main(int, char** argv) {
  const auto* root = std::getenv("TAMO_STAGE");
  if (root == nullptr) return 70;
  const auto companion = ::getppid();
  // A tool whose companion died before it began works for nobody.
  if (companion != 1) note(root, "begin", companion);
  const auto real = std::string(root) + "/bin/launchctl.real";
  pid_t pid = 0;
  if (::posix_spawn(&pid, real.c_str(), nullptr, nullptr, argv, environ) != 0) return 71;
  // Time for two at once to be seen.
  ::usleep(3000);
  int status = 0;
  ::waitpid(pid, &status, 0);
  if (companion != 1 && ::getppid() == companion) note(root, "end", companion);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
