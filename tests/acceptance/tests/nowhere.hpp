#pragma once

#include <utility>

#include "acceptance/player.hpp"

namespace tamo::acceptance {

/// A place where nothing can be arranged: every operation says so. A test overrides what it needs.
class Nowhere : public Copies,
                public Companions,
                public Job,
                public Core,
                public Evidence,
                public User,
                public OtherUser,
                public Faults,
                public platform::KernelProcesses {
 public:
  /// `bare`: copies can be placed all the same.
  explicit Nowhere(bool bare) : bare_(bare) {}
  void place(const Sample&) override {
    if (!bare_) no();
  }
  void remove(Copy) override { no(); }
  void define(Copy, const Definition&) override { no(); }
  void changeExecutable(Copy) override { no(); }
  std::string path(Copy) const override { return no(); }
  std::string folder(Copy) const override { return no(); }
  int marked(Copy) const override { return no().empty() ? 0 : 1; }
  Signature signature(Copy) const override { return {.fault = no(), .agentIdentifier = {}}; }
  int start(const Start&) override { return no().empty() ? 0 : 1; }
  bool ended(int) override { return no().empty(); }
  std::string open(const std::string&) override { return no(); }
  std::vector<pid_t> running() override { return {static_cast<pid_t>(no().size())}; }
  Printed print() override { return {.status = 0, .text = no()}; }
  void restart() override { no(); }
  void behave(const std::string&) override { no(); }
  std::vector<std::string> events() override { return {no()}; }
  std::int64_t now() override { return 0; }
  std::vector<Line> lines(std::int64_t, std::size_t) override { return {{.text = no()}}; }
  std::string unreadable() override { return no(); }
  std::vector<std::string> crashes(std::int64_t) override { return {no()}; }
  void open(Copy) override { no(); }
  std::vector<RunningApp> applications() override { return {{.bundle = no()}}; }
  std::string front() override { return no(); }
  std::string whereabouts(int) override { return no(); }
  void approve(bool) override { no(); }
  void loseApplications(const std::string&) override { no(); }
  void sleepAWhile() override { no(); }
  pid_t start(const std::string&) override { return no().empty() ? 0 : 1; }
  bool ended() override { return no().empty(); }
  std::vector<Line> lines() override { return {{.text = no()}}; }
  void failNextRegister(const std::string&, int, const std::string&) override { no(); }
  void failNextUnregister(const std::string&, int, const std::string&) override { no(); }
  void failLaunchctl(const std::string&, int) override { no(); }
  void leaveLastWords(const std::string&) override { no(); }
  std::optional<platform::ProcessInfo> info(std::int32_t) const override { return std::nullopt; }
  std::int32_t ownPid() const override { return 1; }
  std::int32_t ownGroup() const override { return 1; }
  void kill(std::int32_t) override {}
  void killGroup(std::int32_t) override {}

 private:
  static std::string no() { throw CannotArrange("this place has nothing"); }
  bool bare_;
};

/// A place of that kind, all of whose parts are one.
[[nodiscard]] inline Place placeOf(Nowhere& nowhere) {
  return {nowhere, nowhere, nowhere, nowhere, nowhere, nowhere, nowhere, nowhere, nowhere, {}};
}

class LaidNowhere final : public LaidPlace {
 public:
  explicit LaidNowhere(bool bare) : nowhere_(bare) {}
  const Place& place() override { return place_; }
  void begin() override {}
  std::vector<Kept> leftovers() override { return {{.name = "notes", .text = "none"}}; }

 private:
  Nowhere nowhere_;
  const Place place_ = placeOf(nowhere_);
};

}  // namespace tamo::acceptance
