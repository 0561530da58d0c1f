#include "faults/script.hpp"

#include <algorithm>

namespace tamo::faults {
namespace {

std::vector<Way> waysOfTool(std::string_view work) {
  if (work == "print") {
    return {Way::Fails, Way::Exits, Way::NotLoaded, Way::Signalled, Way::Answered, Way::AnsweredHangs,
            Way::Hangs, Way::Late,  Way::Empty,     Way::Garbage,   Way::Binary,   Way::Torn};
  }
  if (work == "kickstart") {
    return {Way::Fails, Way::Exits, Way::NotLoaded, Way::Signalled, Way::Hangs, Way::Late, Way::Idle};
  }
  if (work == "osascript") return {Way::Fails, Way::Exits, Way::Signalled, Way::Part, Way::Cancelled};
  if (work == "ditto") return {Way::Fails, Way::Exits, Way::Signalled, Way::Part};
  return {Way::Fails, Way::Exits, Way::Signalled};
}

}  // namespace

std::vector<Way> waysOf(const Companion& companion, Call call, std::string_view subject) {
  switch (call) {
    case Call::becomeAccessory:
    case Call::terminate:
    case Call::openLoginItems:
    case Call::toolRunning:
    case Call::toolTerminate:
    case Call::closeLock:
    case Call::sleep:
    case Call::log:
      return {};
    case Call::agentStatus:
      return {Way::Zero, Way::One, Way::Two, Way::Three};
    case Call::unregisterAgent:
      return {Way::Fails, Way::Late};
    case Call::startTool:
      return waysOfTool(subject);
    case Call::toolErrors:
      return {Way::Empty};
    case Call::readWhole:
      return {Way::Fails, Way::Empty, Way::Torn, Way::Garbage, Way::Binary};
    case Call::passwordEntry:
      return companion.plan.writesReceipts ? std::vector<Way>() : std::vector{Way::Fails};
    case Call::temporaryDirectory:
      return companion.record.lockAsked ? std::vector{Way::Fails} : std::vector<Way>();
    default:
      return {Way::Fails};
  }
}

/// A tool that cannot be started says nothing of the tool; every other fault stays with what it is about.
bool ScriptedDirector::goesOn(const Kind& kind, Call call, std::string_view subject) const {
  if (!kind.fault.forGood || kind.call != call) return false;
  if (call != Call::startTool || kind.fault.way == Way::Fails) return true;
  return kind.subject == subject;
}

Way ScriptedDirector::wayOf(Call call, std::string_view subject) {
  const auto now = std::find_if(script_.faults.begin(), script_.faults.end(),
                                [this](const auto& fault) { return fault.call == count_; });
  if (now != script_.faults.end()) {
    kinds_.push_back({*now, call, std::string(subject)});
    return now->way;
  }
  const auto before = std::find_if(kinds_.rbegin(), kinds_.rend(), [this, call, subject](const Kind& kind) {
    return goesOn(kind, call, subject);
  });
  return before == kinds_.rend() ? Way::None : before->fault.way;
}

void ScriptedDirector::maybeKill(Companion& companion) {
  if (!script_.death || script_.death->when == Death::When::At) return;
  const auto& death = *script_.death;
  const bool after = death.when == Death::When::After;
  if (count_ == death.call + (after ? 1 : 0)) companion.die();
  if (after && count_ == death.call)
    companion.world.timeline.after(Time(0), [&companion] { companion.die(); });
}

void ScriptedDirector::died(Companion& companion) {
  if (&companion == companion_ && whenDead_) whenDead_();
}

Way ScriptedDirector::called(Companion& companion, Call call, std::string_view subject) {
  if (call == Call::openApplication && !companion.world.isWhole(simulation::Places::installed))
    openedPart_ = true;
  if (&companion != companion_) return Way::None;
  ++count_;
  if (script_.keepsCalls) {
    calls_.push_back({call, std::string(subject)});
    ways_.push_back(waysOf(companion, call, subject));
  }
  maybeKill(companion);
  return companion.ended() ? Way::None : wayOf(call, subject);
}

}  // namespace tamo::faults
