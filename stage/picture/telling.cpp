#include "stage/picture/telling.hpp"

#include <algorithm>
#include <optional>

#include "stage/picture/companion_rows.hpp"
#include "stage/picture/process_rows.hpp"

namespace tamo::stage {
namespace {

/// The lives of a signal's targets, by name, or what the signal was sent to when nobody of them is known.
std::string targetNames(const Moment& signal, const Scene& scene) {
  std::string names;
  for (const auto life : targetsOf(signal, scene.lives))
    names += (names.empty() ? "" : ", ") + lifeName(scene.lives[life]);
  const bool isGroup = signal.texts[1] == "group";
  auto whole = (isGroup ? "group " : "process ") + signal.texts[2];
  if (names.empty()) return whole;
  return isGroup ? whole + " (" + names + ")" : names;
}

/// What is asked all the time, or only to look on, is not told.
std::string questionText(const Moment& asked) {
  const auto question = questionShown(asked);
  return question.empty() ? "" : "is asked: " + question;
}

std::string toolText(const Moment& moment, std::size_t name) {
  const auto path = moment.texts[name];
  auto text = path.substr(path.rfind('/') + 1);
  const auto rest = textsFrom(moment, name + 1);
  // An osascript has a whole script for an argument; its first line is enough to know it by.
  if (!rest.empty()) text += " " + rest.substr(0, rest.find('\n'));
  return text;
}

class Teller {
 public:
  explicit Teller(const Scene& scene) : scene_(scene) {}

  std::vector<Told> all() {
    const auto alive = lastAlive();
    for (const auto& moment : scene_.moments) {
      if (moment.at < 0) continue;
      const bool isAlive = alive && &moment == *alive;
      const auto text = isAlive ? "sees " + nameOf(moment, numberIn(moment, 0)) + " alive" : textOf(moment);
      if (!text.empty()) tell(startOf(moment), who(moment) + " " + text);
    }
    return std::move(told_);
  }

 private:
  /// Who starts a process notes it afterwards, when the process may have noted itself already.
  [[nodiscard]] std::int64_t startOf(const Moment& moment) const {
    const bool starts = moment.word == "starts" || moment.word == "job";
    const auto life = starts ? lifeOf(numberIn(moment, 0), moment.at, scene_.lives) : std::nullopt;
    return life ? std::max<std::int64_t>(0, scene_.lives[*life].from) : moment.at;
  }

  /// Before what is later, and before what a process tells that starts in this moment.
  void tell(std::int64_t at, std::string text) {
    const auto later = std::ranges::find_if(told_, [at](const Told& told) { return told.at > at; });
    told_.insert(later, {.at = at, .text = std::move(text)});
  }

  /// The companion's last look at what it then kills.
  [[nodiscard]] std::optional<const Moment*> lastAlive() const {
    std::optional<const Moment*> found;
    for (const auto& moment : scene_.moments) {
      if (moment.pid != scene_.self().pid || moment.at < 0) continue;
      if (moment.word == "signals" && moment.texts[0] == "9") return found;
      const bool isOther = moment.word == "looks" && numberIn(moment, 0) != scene_.self().pid;
      if (isOther && moment.texts[1] == "alive") found = &moment;
    }
    return std::nullopt;
  }

  [[nodiscard]] std::string who(const Moment& moment) const {
    const auto life = lifeOf(moment.pid, moment.at, scene_.lives);
    return life ? lifeName(scene_.lives[*life]) : "process " + std::to_string(moment.pid);
  }

  [[nodiscard]] std::string nameOf(const Moment& moment, std::int32_t pid) const {
    const auto life = lifeOf(pid, moment.at, scene_.lives);
    return life ? lifeName(scene_.lives[*life]) : "process " + std::to_string(pid);
  }

  std::string textOf(const Moment& moment) {
    const auto& word = moment.word;
    if (word == "log") return logText(moment);
    if (word == "signals") return signalText(moment);
    if (word == "starts") return startText(moment);
    if (word == "reaped") return endText(moment);
    if (word == "asked") return questionText(moment);
    if (word == "companion") return beginText(moment);
    if (word == "url") return "is handed " + textsFrom(moment, 0);
    if (word == "lock") return lockText(moment);
    if (word == "unlocks") return "lets the lock go";
    if (word == "writes")
      // The file of a print is made for each one and is no deed of its own.
      return moment.texts[0].contains("/tamo-core-print-") ? "" : "writes " + moment.texts[0];
    if (word == "trashes") return "puts " + moment.texts[0] + " into the Trash";
    if (word == "opens") return "opens " + moment.texts[0];
    if (word == "terminates") return "has done";
    if (word == "errand") return "starts " + nameOf(moment, numberIn(moment, 0));
    if (word == "job") return "starts " + nameOf(moment, numberIn(moment, 0));
    if (word == "says") return moment.texts[0];
    if (word == "prompt") return "asks for a password";
    if (word == "answer") return "is answered: " + moment.texts[0];
    if (word == "app") return "begins, " + moment.texts[0];
    if (word == "told")
      return "is told " + signalName(numberIn(moment, 0)) + " by " + nameOf(moment, numberIn(moment, 1));
    if (word == "leaves" && isApplication(moment)) return "quits";
    return "";
  }

  [[nodiscard]] bool isApplication(const Moment& moment) const {
    const auto life = lifeOf(moment.pid, moment.at, scene_.lives);
    return life && scene_.lives[*life].role == Role::Application;
  }

  /// Only the action's own lines have letters.
  std::string logText(const Moment& moment) {
    const auto line = moment.texts[0] + " " + moment.texts[1];
    if (moment.pid != scene_.self().pid) return "logs: " + line;
    return "logs (" + logLetter(lines_++) + "): " + line;
  }

  [[nodiscard]] std::string signalText(const Moment& moment) const {
    const auto name = signalName(numberIn(moment, 0));
    const bool none = targetsOf(moment, scene_.lives).empty();
    // launchd ends the group of whoever is dead, mostly an empty one.
    return none && moment.texts[1] == "group" ? "" : "sends " + name + " to " + targetNames(moment, scene_);
  }

  static std::string beginText(const Moment& moment) {
    return moment.texts.empty() ? "begins" : "begins with " + textsFrom(moment, 0);
  }

  static std::string startText(const Moment& moment) {
    const bool started = moment.texts[0] != "0";
    return (started ? "starts " : "cannot start ") + toolText(moment, 1);
  }

  [[nodiscard]] std::string endText(const Moment& moment) const {
    const bool bySignal = moment.texts[1] == "signal";
    const auto how = bySignal ? "by " + signalName(numberIn(moment, 2)) : "with " + moment.texts[2];
    return "sees " + nameOf(moment, numberIn(moment, 0)) + " end " + how;
  }

  /// Every try is noted, and one line is enough for a wait.
  std::string lockText(const Moment& moment) {
    const bool gained = moment.texts[0] == "gained";
    if (gained) return "has the job lock";
    const bool first = waiting_ != moment.pid;
    waiting_ = moment.pid;
    return first ? "waits for the job lock" : "";
  }

  const Scene& scene_;
  std::vector<Told> told_;
  std::size_t lines_ = 0;
  std::int32_t waiting_ = 0;
};

}  // namespace

std::vector<Told> toldOf(const Scene& scene) {
  return Teller(scene).all();
}

/// The outcome's line has the action's name as the companion understood it. Without one there is only what the
/// companion was started with, of which the action is the last word.
std::string actionOf(const Scene& scene) {
  const Moment* first = nullptr;
  std::string action;
  for (const auto& moment : scene.moments) {
    if (moment.pid != scene.self().pid || moment.at < 0) continue;
    if (moment.word == "companion") first = &moment;
    const auto arrow = moment.word == "log" ? moment.texts[1].find(" -> ") : std::string::npos;
    if (arrow != std::string::npos) action = moment.texts[1].substr(0, arrow);
  }
  if (!action.empty()) return action;
  if (first == nullptr || first->texts.empty()) return "an action";
  return first->texts.back();
}

}  // namespace tamo::stage
