#include "acceptance/check.hpp"
#include "acceptance/scene.hpp"
#include "hardstop/process_snapshot.hpp"
#include "launch/launch_job.hpp"
#include "launch/print_reading.hpp"

namespace tamo::acceptance {
namespace {

std::string readerAnswers(const std::string& print) {
  const auto text = withoutQuotedBlocks(print);
  const auto pid = HardStop::pid(text);
  const auto loaded = LaunchJob::loaded(text);
  std::string answers = "pid: " + (pid ? std::to_string(*pid) : "none") + "\n";
  answers +=
      std::string("running: ") + (jobRunning(PrintResult{.code = 0, .text = print}) ? "yes" : "no") + "\n";
  answers +=
      "exit timeout: " + (loaded && loaded->exitTimeout ? std::to_string(*loaded->exitTimeout) : "none") +
      "\n";
  answers += std::string("arguments: ") + (loaded ? "" : "none") + "\n";
  for (const auto& argument : loaded ? loaded->arguments : std::vector<std::string>())
    answers += "  " + argument + "\n";
  return answers;
}

void theRunningJob(Scene& scene) {
  const auto core = scene.core();
  const auto print = scene.place.job.print();
  scene.see.keep("print.txt", print.text);
  scene.see.keep("readers.txt", readerAnswers(print.text));
  scene.see.that(scene.alive(core), "the pid of the print is a process that lives");
  const auto agent = scene.place.copies.path(Copy::Installed) +
                     "/Contents/Library/LoginItems/Tamo Core.app/Contents/MacOS/tamo-core-agent";
  scene.see.equal(
      "the readers see the pid, the timeout and the arguments",
      "pid: " + std::to_string(core) + "\nrunning: yes\nexit timeout: 20\narguments: \n  " + agent + "\n",
      readerAnswers(print.text));
}

void aJobThatIsNotLoaded(Scene& scene) {
  const auto print = scene.place.job.print();
  scene.see.equal("launchctl ends with the status of a job that is not there", "113",
                  std::to_string(print.status));
  scene.see.equal("no pid is seen", "0", std::to_string(scene.coreNow()));
}

}  // namespace

Theme printChecks() {
  using enum Setting;
  return {"prints",
          {{"print-running", "The readers see in launchctl's print what is true of the running job.",
            Registered, theRunningJob, true},
           {"print-not-loaded", "A job that is not loaded is told by the status 113.", Installed,
            aJobThatIsNotLoaded}}};
}

}  // namespace tamo::acceptance
