#include "support/actions.hpp"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace tamo::support {
namespace {

/// A failed receipt follows its outcome at once; this much may lie between them on a machine that is busy.
constexpr std::int64_t receiptMicros = 10'000'000;
/// An administrator may think about a password for as long; between two lines of one agent action lie seconds.
constexpr std::int64_t silentMicros = std::int64_t{3600} * 1'000'000;
/// Without this bound a log of actions that have lost their ends would be held whole.
constexpr std::size_t mostHeld = 64;
/// An action has four lines at most: a restart whose kickstart failed has two hard stops.
constexpr std::size_t mostLines = 16;

bool isReceipt(const Said& said) {
  return std::holds_alternative<ReceiptFailedSaid>(said.message);
}

bool isDefinition(const Said& said) {
  return std::holds_alternative<DefinitionSaid>(said.message) ||
         std::holds_alternative<DefinitionCutSaid>(said.message);
}

/// A clock that was set between two lines makes them look far apart in either direction.
std::int64_t apart(const Said& before, const Moment& now) {
  return std::abs(now.micros() - before.at.micros());
}

/// A pid is given again: the second comparison, the line behind an end and the one after a long silence are another
/// process's.
bool goesOn(const Action& action, bool ended, const Said& said) {
  const auto& last = action.lines.back();
  if (action.lines.size() == mostLines) return false;
  if (ended) return isReceipt(said) && apart(last, said.at) <= receiptMicros;
  if (isDefinition(said)) return false;
  return apart(last, said.at) <= silentMicros;
}

}  // namespace

bool endsAction(const Message& message) {
  return std::holds_alternative<OutcomeSaid>(message) || std::holds_alternative<RefusedSaid>(message) ||
         std::holds_alternative<MoveRefusedSaid>(message) ||
         std::holds_alternative<MoveResultSaid>(message) || std::holds_alternative<FatalSaid>(message);
}

/// The youngest of this pid, if the line can be its.
Actions::Held* Actions::heldOf(std::int64_t pid, const Said& said) {
  const auto isOfPid = [pid](const Held& held) {
    const auto* action = std::get_if<Action>(&held.item);
    return action != nullptr && action->pid == pid;
  };
  const auto found = std::find_if(held_.rbegin(), held_.rend(), isOfPid);
  if (found == held_.rend()) return nullptr;
  if (goesOn(std::get<Action>(found->item), found->ended, said)) return &*found;
  // Its pid has a new owner, so nothing of its own can follow, and it needs not be waited for.
  found->ended = true;
  return nullptr;
}

/// A failed receipt ends its action as an outcome does: where the log begins between the two, nothing else is to come.
void Actions::take(std::int64_t pid, Said said) {
  now_ = said.at;
  const bool ends = endsAction(said.message) || isReceipt(said);
  auto* held = heldOf(pid, said);
  if (held == nullptr) held = &held_.emplace_back(Held{.item = Action{.pid = pid}});
  std::get<Action>(held->item).lines.push_back(std::move(said));
  held->ended = held->ended || ends;
  handOn();
}

void Actions::take(Aside aside) {
  held_.push_back(Held{.item = std::move(aside), .ended = true});
  handOn();
}

bool Actions::mayGo(const Held& held) const {
  const auto* action = std::get_if<Action>(&held.item);
  return action == nullptr || apart(action->lines.back(), now_) > (held.ended ? receiptMicros : silentMicros);
}

/// Only from the front: an action that began later may be done sooner, and waits for its turn.
void Actions::handOn() {
  while (!held_.empty() && (held_.size() > mostHeld || mayGo(held_.front()))) {
    tell_(held_.front().item);
    held_.pop_front();
  }
}

void Actions::finish() {
  for (const auto& held : held_)
    tell_(held.item);
  held_.clear();
}

}  // namespace tamo::support
