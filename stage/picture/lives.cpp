#include "stage/picture/lives.hpp"

#include <algorithm>

namespace tamo::stage {
namespace {

/// Starter and started note the same begin each for itself, in either order, this far apart at most.
constexpr std::int64_t sameBegin = 1'000'000;

class Registry {
 public:
  /// A companion, launchd and Tamo note their begin by themselves alone, and an errand's is noted by launchd alone. Of
  /// a Core and a tool both sides tell, so those two must become one life.
  void take(const Moment& moment) {
    const auto& word = moment.word;
    meet(moment);
    if (word == "companion") begin(moment, Role::Companion, moment.pid, "companion");
    if (word == "launchd") begin(moment, Role::Launchd, moment.pid, "launchd");
    if (word == "app") begin(moment, Role::Application, moment.pid, "Tamo");
    if (word == "errand") begin(moment, Role::Administrator, numberIn(moment, 0), "administrator");
    if (word == "job") begun(moment, Role::Core, numberIn(moment, 0), "Core");
    if (word == "core") begun(moment, Role::Core, moment.pid, "Core").group = numberIn(moment, 0);
    if (word == "helper") helper(moment);
    if (word == "tool") begun(moment, Role::Tool, moment.pid, toolName(moment, 0));
    if (word == "starts" && numberIn(moment, 0) != 0)
      begun(moment, Role::Tool, numberIn(moment, 0), toolName(moment, 1)).parent = moment.pid;
    end(moment);
    if (word == "signals" || word == "looks") heardOfOthers(moment);
    if (auto* life = last(moment.pid)) heardOf(*life, moment);
  }

  std::vector<Life> lives;

 private:
  /// From the newest on: a pid that was given again means the one that has it now.
  Life* last(std::int32_t pid) {
    const auto found =
        std::find_if(lives.rbegin(), lives.rend(), [pid](const Life& life) { return life.pid == pid; });
    return found == lives.rend() ? nullptr : &*found;
  }

  /// Somebody who begun before the journal did is known by what only one of its kind notes.
  void meet(const Moment& moment) {
    if (last(moment.pid) != nullptr) return;
    const auto& word = moment.word;
    if (word == "asked" || word == "reaped" || word == "job")
      begin(moment, Role::Launchd, moment.pid, "launchd");
    if (word == "says") begin(moment, Role::Core, moment.pid, "Core");
  }

  Life& begin(const Moment& moment, Role role, std::int32_t pid, const std::string& name) {
    lives.push_back({.role = role, .pid = pid, .name = name, .from = moment.at, .seen = moment.at});
    return lives.back();
  }

  /// The life that somebody else has noted already, or a new one.
  Life& begun(const Moment& moment, Role role, std::int32_t pid, const std::string& name) {
    auto* known = last(pid);
    const bool same = known != nullptr && known->role == role && moment.at - known->from < sameBegin;
    return same ? *known : begin(moment, role, pid, name);
  }

  void helper(const Moment& moment) {
    auto& life = begin(moment, Role::Helper, moment.pid, "helper");
    life.parent = numberIn(moment, 0);
    const auto core = lifeOf(life.parent, moment.at, lives);
    if (core) life.group = lives[*core].group;
  }

  void end(const Moment& moment) {
    const auto& word = moment.word;
    if (word == "terminates") endOf(moment.pid, moment, "");
    if (word == "leaves") endOf(moment.pid, moment, endingText("exit", numberIn(moment, 0)));
    if (word == "tool-ended") endOf(numberIn(moment, 0), moment, endingText("status", numberIn(moment, 1)));
    if (word == "reaped") {
      const bool bySignal = moment.texts[1] == "signal";
      endOf(numberIn(moment, 0), moment, endingText(bySignal ? "signal" : "exit", numberIn(moment, 2)));
    }
  }

  static std::string endingText(const std::string& how, std::int32_t number) {
    return number == 0 ? "" : how + " " + std::to_string(number);
  }

  /// An end may be noted by the process itself, by its starter and by launchd. The first of them is the nearest.
  void endOf(std::int32_t pid, const Moment& moment, const std::string& ending) {
    auto* life = last(pid);
    if (life == nullptr || life->until) return;
    life->until = moment.at;
    life->ending = ending;
    life->seen = moment.at;
  }

  /// Who is looked at and found alive, or is sent a signal, is heard of without a word of its own.
  void heardOfOthers(const Moment& moment) {
    // Who is found gone or dead is not heard of.
    const bool isLook = moment.word == "looks";
    const bool isGroup = moment.word == "signals" && moment.texts[1] == "group";
    if (isLook && moment.texts[1] != "alive") return;
    const auto target = numberIn(moment, isLook ? 0 : 2);
    for (auto& life : lives)
      if (!life.until && (isGroup ? life.group : life.pid) == target) life.seen = moment.at;
  }

  /// A companion whose terminate request returns goes on for a moment.
  static void heardOf(Life& life, const Moment& moment) {
    life.seen = moment.at;
    if (life.role == Role::Companion && life.until) life.until = moment.at;
  }
};

}  // namespace

std::vector<Life> livesIn(const std::vector<Moment>& moments) {
  Registry registry;
  for (const auto& moment : moments)
    registry.take(moment);
  return std::move(registry.lives);
}

std::vector<std::size_t> targetsOf(const Moment& signal, const std::vector<Life>& lives) {
  const auto target = numberIn(signal, 2);
  const bool isGroup = signal.texts[1] == "group";
  // launchd ends the group of a process that is dead already and has only not been reaped.
  const auto sender = lifeOf(signal.pid, signal.at, lives);
  const bool leaderIsDead = isGroup && sender && lives[*sender].role == Role::Launchd;
  std::vector<std::size_t> found;
  for (std::size_t index = 0; index < lives.size(); ++index) {
    const auto& life = lives[index];
    const bool meant =
        isGroup ? life.group == target && (life.pid != target || !leaderIsDead) : life.pid == target;
    if (meant && life.isAt(signal.at)) found.push_back(index);
  }
  return found;
}

/// A kickstart with -k kills what runs before it starts anew, so the option belongs to the name.
std::string toolName(const Moment& moment, std::size_t place) {
  const auto& path = moment.texts[place];
  auto name = path.substr(path.rfind('/') + 1);
  const auto argument = [&](std::size_t number) {
    return place + number < moment.texts.size() ? moment.texts[place + number] : std::string();
  };
  if (name != "launchctl" || argument(1).empty()) return name;
  return name + " " + argument(1) + (argument(2) == "-k" ? " -k" : "");
}

std::optional<std::size_t> lifeOf(std::int32_t pid, std::int64_t moment, const std::vector<Life>& lives) {
  for (auto index = lives.size(); index-- > 0;)
    if (lives[index].pid == pid && lives[index].from <= moment) return index;
  return std::nullopt;
}

}  // namespace tamo::stage
