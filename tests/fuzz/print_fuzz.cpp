#include "exhaustion/print_agreement.hpp"
#include "exhaustion/print_lines.hpp"
#include "fuzz/insist.hpp"
#include "fuzz/target.hpp"
#include "hardstop/process_snapshot.hpp"
#include "launch/launch_job.hpp"
#include "launch/print_reading.hpp"

/// The three readers of a launchctl print beside their descriptions, on any bytes.
namespace tamo::fuzz {

void readInput(std::string_view bytes) {
  const auto lines = exhaustion::linesOf(bytes);
  const auto pid = HardStop::pid(bytes);
  insist(!pid || *pid >= 2, "a pid is never less than 2");
  insist(pid == exhaustion::describedPid(lines), "the pid is the one that is described");

  const bool running = jobRunning(PrintResult{.code = 0, .text = std::string(bytes)});
  insist(running == exhaustion::describedRunning(lines), "the job runs as it is described");
  insist(running || !pid, "a job with a pid runs");

  const auto definition = LaunchJob::loaded(bytes);
  insist(exhaustion::agree(definition, exhaustion::describedDefinition(lines)),
         "the definition is the one described");
  insist(!definition || !definition->arguments.empty(), "a definition has arguments");
  insist(!LaunchJob::needsReseat(definition, definition), "a definition needs no reseat for itself");
}

}  // namespace tamo::fuzz
