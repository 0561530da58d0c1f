#include "hardstop/spare_reason.hpp"

namespace tamo::HardStop {

std::optional<std::string> spareReason(const SpareFacts& facts) {
  if (facts.build && facts.build->contains('.')) return "revert_release";
  if (facts.revertFilesPresent) return "revert_restoring";
  // A Core of the very same microsecond is not young: only one that certainly came later is.
  if (facts.helperStartMicros && *facts.helperStartMicros < facts.watched.startMicros) return "young_core";
  return std::nullopt;
}

}  // namespace tamo::HardStop
