#include <chrono>
#include <cstdlib>
#include <thread>

/// The program that the companion is compared with: built by the same compiler with the same options and linked in the
/// same way, it only sleeps as long as an action's rules order, in as many pieces and on as many threads, and does
/// nothing else. What it costs is what a process and its waits cost on this machine.
///
///   sleeper [POLLS [WATCH-POLLS]]    0.4 s, then so many times 50 ms; the last of them beside a second thread that
///                                    sleeps so many times 50 ms itself, as a hard stop's watch does
namespace {

using std::chrono::milliseconds;

void sleepFor(int polls) {
  for (int poll = 0; poll < polls; ++poll)
    std::this_thread::sleep_for(milliseconds(50));
}

}  // namespace

int main(int argc, char** argv) {
  const int polls = argc > 1 ? std::atoi(argv[1]) : 0;
  const int watchPolls = argc > 2 ? std::atoi(argv[2]) : 0;
  std::this_thread::sleep_for(milliseconds(400));
  sleepFor(polls - watchPolls);
  if (watchPolls == 0) return 0;
  std::thread watch(sleepFor, watchPolls);
  sleepFor(watchPolls);
  watch.join();
  return 0;
}
