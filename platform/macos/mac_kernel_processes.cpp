#include "platform/macos/mac_kernel_processes.hpp"

#include <libproc.h>
#include <sys/proc.h>
#include <sys/proc_info.h>

namespace tamo::macos {
namespace {

/// The record as the kernel fills it in. A header that says otherwise is of a system that this was not
/// written for.
constexpr int recordSize = 136;
static_assert(sizeof(proc_bsdinfo) == recordSize);
static_assert(PROC_PIDTBSDINFO == 3);
static_assert(SZOMB == 5);

}  // namespace

/// Anything but a whole record means that there is no such process, or none that this user may ask about.
std::optional<platform::ProcessInfo> MacKernelProcesses::info(std::int32_t pid) const {
  proc_bsdinfo record{};
  const int written = ::proc_pidinfo(pid, PROC_PIDTBSDINFO, 0, &record, recordSize);
  if (written != recordSize) return std::nullopt;
  return platform::ProcessInfo{.startSeconds = record.pbi_start_tvsec,
                               .startMicroseconds = record.pbi_start_tvusec,
                               .group = static_cast<std::int32_t>(record.pbi_pgid),
                               .zombie = record.pbi_status == SZOMB};
}

}  // namespace tamo::macos
