#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "support/message.hpp"
#include "support/moment.hpp"

/// Puts the companion's lines together to what one process did. One thread.
namespace tamo::support {

/// A line with what it says.
struct Said {
  Moment at{};
  Message message{};
};

/// One action: a process carries out no more than one.
struct Action {
  std::int64_t pid = 0;
  /// In the order of the log; never empty.
  std::vector<Said> lines{};
};

/// What stands between the actions, in its place: a line that is shown as it is, or a remark.
struct Aside {
  std::string remark{};
  /// Empty for a remark alone.
  std::vector<std::string> lines{};
};

using Item = std::variant<Action, Aside>;

/// Whether nothing but a failed receipt can follow this line of a process.
[[nodiscard]] bool endsAction(const Message& message);

/// Hands on the actions in the order in which their first lines stand in the log, with what stands between them, each
/// when its end is known: when the process has said its last, when its pid is another process's, or when it has been
/// silent for longer than an action can be. In bounded memory: of very many that are open the oldest is handed on early.
class Actions {
 public:
  using Tell = std::function<void(const Item&)>;

  /// `tell` is called from within the operations.
  explicit Actions(Tell tell) : tell_(std::move(tell)) {}

  void take(std::int64_t pid, Said said);
  void take(Aside aside);
  /// Hands on all that is left, ended or not.
  void finish();

 private:
  struct Held {
    Item item;
    bool ended = false;
  };

  [[nodiscard]] Held* heldOf(std::int64_t pid, const Said& said);
  [[nodiscard]] bool mayGo(const Held& held) const;
  void handOn();

  Tell tell_;
  std::deque<Held> held_;
  /// The time of the last line.
  Moment now_{};
};

}  // namespace tamo::support
