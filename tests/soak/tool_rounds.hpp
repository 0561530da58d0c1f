#pragma once

#include <cstddef>

#include "soak/chance.hpp"
#include "soak/tally.hpp"

namespace tamo::soak {

/// One action with a tool that misbehaves, in the case with this number: the companion must end within its
/// bound, stay small, give the answer that is right, and send no signal but the request to end that a
/// launchctl which hangs is given.
void playTool(Tally& tally, std::size_t number);

[[nodiscard]] std::size_t toolCases();

/// Somebody hits the Core behind the companion's back while a tool misbehaves; that has to be counted.
void toolCanary(Tally& tally);

}  // namespace tamo::soak
