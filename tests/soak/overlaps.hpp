#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace tamo::soak {

struct CrowdAccount {
  /// Companions that worked on the job.
  int worked = 0;
  /// Pairs that worked at the same time: one began between another's first and last note.
  int overlaps = 0;
};

/// What the notes of a crowd say, lines of "begin COMPANION TIME" and "end COMPANION TIME" in their order. What a
/// companion does lasts from its first note to its last; one that was killed, at the
/// time in `killed`, held the lock until then only, so what its tool noted later does not count. A line that
/// is none of these counts as an overlap, so that an account that cannot be read is never a good one.
[[nodiscard]] CrowdAccount crowdAccount(const std::string& notes, const std::map<int, std::int64_t>& killed);

}  // namespace tamo::soak
