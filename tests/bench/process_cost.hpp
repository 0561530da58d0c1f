#pragma once

#include <string>
#include <vector>

namespace tamo::bench {

/// What a process cost by itself, without the processes that it started.
struct Cost {
  double cpuMilliseconds = 0;
  double wallMilliseconds = 0;
};

/// Starts a program with its arguments, its output thrown away, and waits for its end. The CPU time is that of all its
/// threads from the start to the end, as the kernel's scheduler counts it, in nanoseconds and not in ticks.
[[nodiscard]] Cost costOf(const std::vector<std::string>& words);

/// The most memory that the program had at one time, in megabytes. For this it is held at its end until it has been
/// asked: what the kernel tells of an ended process contains the memory of the one that started it. Of an ending that
/// is held nothing else is measured, so this is a run of its own.
[[nodiscard]] double peakMegabytesOf(const std::vector<std::string>& words);

/// The middle of an odd number of values; of an even number, the mean of the two in the middle.
[[nodiscard]] double median(std::vector<double> values);

}  // namespace tamo::bench
