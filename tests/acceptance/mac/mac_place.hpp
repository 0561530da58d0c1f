#pragma once

#include <memory>

#include "acceptance/mac/mac_settings.hpp"
#include "acceptance/player.hpp"
#include "acceptance/redaction.hpp"

/// A real Mac as a place for checks. There is one, so one check at a time, on the main thread.
namespace tamo::acceptance {

/// Clears what an earlier check left, and clears again when it is destroyed. Everything is in the journal before it is
/// made.
[[nodiscard]] std::unique_ptr<LaidPlace> laidMac(const MacSettings& settings);

[[nodiscard]] PlaceFacts macFacts(const MacSettings& settings);
/// Who is here, with the machine's names, its serial and whoever signs.
[[nodiscard]] std::vector<Secret> macSecrets(const MacSettings& settings);

}  // namespace tamo::acceptance
