#include "soak/lanes.hpp"

#include <csignal>
#include <exception>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace tamo::soak {
namespace {

int runLane(int number, int lanes, std::uint64_t seed, const std::string& file,
            const std::function<void(Lane&)>& work) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  Tally tally(file);
  Lane lane{.tally = tally,
            .chance = Chance(seed * 1000 + static_cast<std::uint64_t>(number)),
            .number = number,
            .lanes = lanes};
  try {
    work(lane);
  } catch (const std::exception& error) {
    tally.wrong("lane " + std::to_string(number) + ": " + error.what());
  }
  // The stage of the scenarios reports what goes wrong with it to the test library.
  if (::testing::UnitTest::GetInstance()->Failed())
    tally.wrong("lane " + std::to_string(number) + ": its stage failed");
  return 0;
}

}  // namespace

void inLanes(int lanes, std::uint64_t seed, const std::string& file, const std::function<void(Lane&)>& work) {
  std::vector<pid_t> running;
  for (int number = 0; number < lanes; ++number) {
    const auto pid = ::fork();
    if (pid == 0) ::_exit(runLane(number, lanes, seed, file, work));
    running.push_back(pid);
  }
  for (const auto pid : running) {
    int status = 0;
    ::waitpid(pid, &status, 0);
    if (status != 0) Tally(file).wrong("a lane ended with status " + std::to_string(status));
  }
}

}  // namespace tamo::soak
