#include "stage/picture/sum.hpp"

#include <csignal>
#include <functional>
#include <optional>

#include "stage/picture/picture.hpp"

namespace tamo::stage {
namespace {

using Test = std::function<bool(const Moment&)>;

/// What the sum is made of: whoever it was whose stop was asked, and when what happened to it.
class Sum {
 public:
  explicit Sum(const Scene& scene) : scene_(scene) {}

  std::string text() {
    const auto stopped = stoppedCore();
    if (stopped) {
      stop(*stopped);
    } else {
      move();
    }
    if (parts_.empty()) otherAction();
    return parts_;
  }

 private:
  /// The first Core that was there when the action began and that anybody asked to stop, or that ended.
  [[nodiscard]] std::optional<std::size_t> stoppedCore() const {
    for (std::size_t index = 0; index < scene_.lives.size(); ++index) {
      const auto& life = scene_.lives[index];
      if (life.role == Role::Core && life.from < 0 && (life.until || signalled(life.pid, SIGTERM)))
        return index;
    }
    return std::nullopt;
  }

  /// What lies below 0 was kept for the locks alone and belongs to another action.
  [[nodiscard]] std::optional<std::int64_t> first(const Test& test) const {
    for (const auto& moment : scene_.moments)
      if (moment.at >= 0 && test(moment)) return moment.at;
    return std::nullopt;
  }

  [[nodiscard]] std::optional<std::int64_t> signalled(std::int32_t pid, std::int32_t signal) const {
    return first([&](const Moment& one) {
      return one.word == "signals" && numberIn(one, 0) == signal && numberIn(one, 2) == pid;
    });
  }

  /// The look by which the kill was decided.
  [[nodiscard]] std::optional<std::int64_t> lastAlive(std::int32_t pid, std::int64_t before) const {
    std::optional<std::int64_t> found;
    for (const auto& moment : scene_.moments)
      if (moment.word == "looks" && moment.at >= 0 && moment.at <= before && numberIn(moment, 0) == pid &&
          moment.texts[1] == "alive")
        found = moment.at;
    return found;
  }

  /// What nobody noted is left out and not guessed.
  void add(const std::string& what, std::optional<std::int64_t> at) {
    if (at) parts_ += (parts_.empty() ? "" : ", ") + what + " at " + secondsText(*at);
  }

  /// In the order in which it goes when it goes well; the next Core stands last, because it is what a restart is for.
  void stop(std::size_t core) {
    const auto& life = scene_.lives[core];
    add("asked", signalled(life.pid, SIGTERM));
    const auto kill = signalled(life.pid, SIGKILL);
    if (kill) {
      add("alive", lastAlive(life.pid, *kill));
      add(killName(life.pid), kill);
    }
    if (!life.lost) add(kill ? "gone" : "gone by itself", life.until);
    for (std::size_t next = core + 1; next < scene_.lives.size(); ++next) {
      if (scene_.lives[next].role != Role::Core) continue;
      add("new Core", scene_.lives[next].from);
      return;
    }
  }

  /// Alone or with its group, as the signal was sent.
  [[nodiscard]] std::string killName(std::int32_t pid) const {
    for (const auto& moment : scene_.moments)
      if (moment.word == "signals" && numberIn(moment, 0) == SIGKILL && numberIn(moment, 2) == pid)
        return moment.texts[1] + " killed";
    return "killed";
  }

  /// The steps of a move that were taken.
  void move() {
    const auto word = [](std::string_view wanted) {
      return [wanted](const Moment& one) { return one.word == wanted; };
    };
    const auto result = first([](const Moment& one) {
      return one.word == "writes" && one.texts[0].ends_with("/move-to-applications.json");
    });
    // Without a result it was no move, or one that never got so far.
    if (!result) return;
    add("password asked for", first(word("prompt")));
    add("answered", first(word("answer")));
    add("old copy in the Trash", first(word("trashes")));
    add("result", result);
    for (const auto& life : scene_.lives)
      if (life.role == Role::Application)
        life.from < 0 ? add("old copy gone", life.until) : add("new copy runs", life.from);
  }

  /// A status or a sync stops and moves nothing, so what is left to say is when it was done.
  void otherAction() {
    const auto own = scene_.self().pid;
    const auto last = [&](std::string_view word) {
      std::optional<std::int64_t> found;
      for (const auto& moment : scene_.moments)
        if (moment.pid == own && moment.at >= 0 && moment.word == word) found = moment.at;
      return found;
    };
    for (const auto& life : scene_.lives)
      if (life.role == Role::Core && life.from >= 0) add("new Core", life.from);
    add("in the log", last("log"));
    add("done", last("terminates"));
    if (parts_.empty()) parts_ = "nothing has come of it by " + secondsText(scene_.until);
  }

  const Scene& scene_;
  std::string parts_;
};

}  // namespace

std::string sumOf(const Scene& scene) {
  return Sum(scene).text();
}

}  // namespace tamo::stage
