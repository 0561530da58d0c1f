#pragma once

#include <cstdint>
#include <string>

#include "stage/launchd/job_table.hpp"

/// What launchctl prints for a job, in the form that a Mac's launchd gives it. Pure.
///
/// Only what the stage has is printed: no ports, no coalitions, no memory limits, and of service management
/// neither the bundle around a job nor its record.
namespace tamo::stage {

enum class PrintStyle {
  /// As macOS 26 and 27 print a job: with a launch constraint before the exit timeout and the pid, whose
  /// dictionaries open with "=> {". A job that service management handed in has no path and no program there.
  Newest,
  /// As the systems before print it, without the constraint.
  Older,
};

[[nodiscard]] std::string printedJob(const Job& job, std::uint32_t userID, PrintStyle style);

/// The domain alone: the jobs that are loaded, one line each with the pid (0 without a process) and the last
/// exit code.
[[nodiscard]] std::string printedDomain(const JobTable& jobs, std::uint32_t userID);

}  // namespace tamo::stage
