#include "stage/launchd/administrator_errands.hpp"

#include <sys/mman.h>
#include <unistd.h>
#include <utility>

#include "platform/posix/byte_stream.hpp"
#include "platform/posix/posix_spawn.hpp"
#include "platform/stage/journal.hpp"

namespace tamo::stage {
namespace {

/// What a command has to say is a line or two; a flood is cut.
constexpr std::size_t longestOutput = 1U << 16U;
/// What a shell adds to the number of the signal that ended a command.
constexpr int signalled = 128;

}  // namespace

void AdministratorErrands::run(const std::string& command, const Reply& reply) {
  const LaunchdAnswer cannot{.status = 1, .errors = "the administrator is not there\n"};
  // A file in memory and no pipe: a pipe would have to be emptied while the command runs, and launchd has others to
  // serve.
  platform::Descriptor output(::memfd_create("errand", MFD_CLOEXEC));
  const auto program = root_.existing("/usr/libexec/administrator");
  if (!output || !program) return reply(cannot);
  const platform::ToolLaunch launch{
      .path = "/usr/libexec/administrator", .arguments = {command}, .standardOutput = output.get()};
  const auto pid = platform::spawn(launch, *program, output.get());
  if (!pid) return reply(cannot);
  Journal(root_).note("errand", {std::to_string(*pid)});
  running_.emplace(*pid, Errand{std::move(output), reply});
}

bool AdministratorErrands::ended(pid_t pid, const Ending& ending) {
  const auto found = running_.find(pid);
  if (found == running_.end()) return false;
  const auto errand = std::move(found->second);
  running_.erase(found);
  // The streams share one position, which stands behind the last byte written.
  ::lseek(errand.output.get(), 0, SEEK_SET);
  const auto said = platform::readToEnd(errand.output.get(), longestOutput).value_or("");
  errand.reply({.status = ending.signalled ? signalled + ending.number : ending.number, .errors = said});
  return true;
}

}  // namespace tamo::stage
