#pragma once

#include <cstdint>
#include <string>

#include "platform/stage/programs/job_table.hpp"

/// What launchctl prints for a job, in the form that a Mac's launchd gives it. Pure.
///
/// Only what the stage has is printed: no ports, no coalitions, no memory limits. "Managed" is how the newest
/// systems print a job with a launch constraint: a block with "=> {" lines stands before the exit timeout and
/// the pid.
namespace tamo::stage {

enum class PrintStyle { Plain, Managed };

[[nodiscard]] std::string printedJob(const Job& job, std::uint32_t userID, PrintStyle style);

/// The domain alone: the jobs that are loaded, one line each with the pid (0 without a process) and the last
/// exit code.
[[nodiscard]] std::string printedDomain(const JobTable& jobs, std::uint32_t userID);

}  // namespace tamo::stage
