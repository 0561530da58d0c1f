#include "soak/destination.hpp"

namespace tamo::soak {

Destination destinationOf(const std::optional<scenario::Tree>& found, const scenario::Tree& moved,
                          const std::optional<scenario::Tree>& older) {
  if (!found) return Destination::Absent;
  if (*found == moved) return Destination::Whole;
  return older && *found == *older ? Destination::Old : Destination::Unfinished;
}

}  // namespace tamo::soak
