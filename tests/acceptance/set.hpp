#pragma once

#include <functional>
#include <string>
#include <vector>

#include "acceptance/player.hpp"

/// Plays a set of checks, several at once where the place allows it.
namespace tamo::acceptance {

struct Chosen {
  const Check* check;
  std::string theme;
};

/// The checks of these names, or of these themes, in the order of the themes; all of them without a name. What is
/// neither is told by name.
struct Choice {
  std::vector<Chosen> checks{};
  std::string unknown{};
};
[[nodiscard]] Choice chosen(const std::vector<std::string>& names);

/// Called in turn, on any thread.
struct Watching {
  std::function<void(const Check&)> begins;
  std::function<void(const Played&)> ends;
};

/// In the order of the set, whatever was over first. `lay` is called with an item of the set, on as many threads as are
/// at work at once; with one, on the caller's own.
[[nodiscard]] std::vector<Played> playSet(const std::vector<Chosen>& set,
                                          const std::function<Lay(const Chosen&)>& lay, const Offer& offer,
                                          std::size_t atOnce, const Watching& watching);

}  // namespace tamo::acceptance
