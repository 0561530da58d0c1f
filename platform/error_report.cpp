#include "platform/error_report.hpp"

namespace tamo::platform {
namespace {

/// Not a domain of the system's, so that nobody looks the code up there.
constexpr auto ownDomain = "TamoPlatform";
constexpr std::int64_t unexplained = 1;

}  // namespace

Error errorOf(const std::optional<ErrorReport>& report) {
  if (!report) return Error(ownDomain, unexplained, "The operation failed without an error.");
  return Error(report->domain.value_or(ownDomain), report->code,
               report->description.value_or("The operation failed without a description."));
}

}  // namespace tamo::platform
