#include "stage/common/program_log.hpp"

#include <array>
#include <cstdio>
#include <ctime>

#include "platform/posix/byte_stream.hpp"

namespace tamo::stage {

/// In one write, so that the lines of several programs do not mix.
void logLine(int descriptor, const std::string& text) {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  tm parts{};
  // In UTC and with milliseconds, as in the companion's log: the two are read side by side.
  ::gmtime_r(&now.tv_sec, &parts);
  std::array<char, 32> date{};
  std::array<char, 32> fraction{};
  std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", &parts);
  std::snprintf(fraction.data(), fraction.size(), ".%03ld", now.tv_nsec / 1'000'000);
  // A log that cannot be written is no reason to stop.
  static_cast<void>(
      platform::writeAll(descriptor, std::string(date.data()) + fraction.data() + "Z " + text + "\n"));
}

}  // namespace tamo::stage
