#pragma once

#include <vector>

#include "stage/picture/picture.hpp"
#include "stage/picture/scene.hpp"

/// What the companions of a scene do. Pure.
namespace tamo::stage {

/// The companion whose action it is: its steps, the job lock, the watch beside a stop request, its log lines. What there
/// was none of has no row, but for the steps, which come first.
[[nodiscard]] std::vector<Row> companionRows(const Scene& scene);

/// Another companion, with the lock and the wait for it.
[[nodiscard]] Row otherCompanion(const Scene& scene, const Life& life);

/// The letter of a log line of the action, by its number from 0 on: "a" … "z", then "27" and so on.
[[nodiscard]] std::string logLetter(std::size_t number);

}  // namespace tamo::stage
