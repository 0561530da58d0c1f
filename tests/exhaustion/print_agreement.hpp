#pragma once

#include <algorithm>
#include <optional>

#include "exhaustion/print_description.hpp"
#include "launch/launch_job.hpp"

namespace tamo::exhaustion {

/// Whether a definition that was read is the one that is described, byte for byte.
[[nodiscard]] inline bool agree(const std::optional<LaunchJob::Definition>& read,
                                const std::optional<DescribedDefinition>& described) {
  if (!read || !described) return !read && !described;
  return read->exitTimeout == described->exitTimeout &&
         std::equal(read->arguments.begin(), read->arguments.end(), described->arguments.begin(),
                    described->arguments.end());
}

}  // namespace tamo::exhaustion
