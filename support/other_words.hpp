#pragma once

#include <string>

#include "support/message.hpp"
#include "support/words.hpp"

/// What the lines that are a whole action by themselves say in plain words, and what follows from them. Pure.
namespace tamo::support {

[[nodiscard]] std::string refusedStep(const RefusedSaid& said);
[[nodiscard]] std::string moveResultStep(const MoveResultSaid& said);
/// "done" or "not done".
[[nodiscard]] std::string moveResultVerdict(const MoveResultSaid& said);

void addRefusedAdvice(Story& story, const RefusedSaid& said);
void addMoveResultAdvice(Story& story, const MoveResultSaid& said);
void addMoveRefusedAdvice(Story& story);
void addReceiptAdvice(Story& story);
void addFatalAdvice(Story& story);
/// Of an action whose outcome is not in the log.
void addNoEndAdvice(Story& story);

}  // namespace tamo::support
