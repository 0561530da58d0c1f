#include <algorithm>
#include <csignal>
#include <filesystem>
#include <mutex>
#include <thread>

#include "contract/backend.hpp"
#include "contract/idle_application.hpp"

namespace tamo::contract {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

/// What the loop does once it runs: a list of steps, each in a turn of its own.
class Steps final : public platform::ApplicationDelegate {
 public:
  Steps(const platform::Platform& platform, std::vector<std::function<void()>> steps)
      : platform_(platform), steps_(std::move(steps)) {}

  void applicationDidFinishLaunching() override { next(0); }
  void application(const std::vector<std::string>&) override {}

 private:
  void next(std::size_t step) {
    platform_.mainQueue.post([this, step] {
      if (step == steps_.size()) return platform_.application.terminate();
      steps_[step]();
      next(step + 1);
    });
  }

  const platform::Platform& platform_;
  std::vector<std::function<void()>> steps_;
};

class WorkspaceContract : public Contract {
 protected:
  WorkspaceContract() { backend->outliveTerminate(); }
  ~WorkspaceContract() override { quit(); }

  void inTurns(std::vector<std::function<void()>> steps) {
    Steps delegate(platform, std::move(steps));
    platform.application.setDelegate(delegate);
    platform.application.run();
  }
  /// The identifier of the application that runs from this bundle; "none" when there is none.
  [[nodiscard]] std::string listed(const std::string& bundle) const {
    for (const auto& application : platform.workspace.runningApplications())
      if (application.bundlePath == bundle) return application.bundleIdentifier.value_or("no identifier");
    return "none";
  }
  /// Waits for the completion; absent means success.
  [[nodiscard]] std::optional<platform::Error> opened(const std::string& bundle) {
    const auto answers = std::make_shared<Answers>();
    platform.workspace.openApplication(bundle, [answers](const std::optional<platform::Error>& error) {
      const std::lock_guard hold(answers->lock);
      answers->errors.push_back(error);
    });
    EXPECT_TRUE(eventually([&] {
      const std::lock_guard hold(answers->lock);
      return !answers->errors.empty();
    }));
    const std::lock_guard hold(answers->lock);
    EXPECT_EQ(answers->errors.size(), 1U);
    return answers->errors.at(0);
  }
  void layApplication(const std::string& name, const std::string& identifier) {
    applications.push_back(layIdleApplication(host(name), identifier));
  }
  [[nodiscard]] bool runs(const std::string& name) const { return !pidsOf(host(name)).empty(); }
  void quit() const {
    for (const auto& program : applications)
      for (const auto pid : pidsOf(program))
        ::kill(pid, SIGKILL);
    EXPECT_TRUE(eventually([this] {
      return std::ranges::all_of(applications, [](const auto& program) { return pidsOf(program).empty(); });
    }));
  }

  std::vector<std::string> applications;

 private:
  struct Answers {
    std::mutex lock;
    std::vector<std::optional<platform::Error>> errors;
  };
};

TEST_P(WorkspaceContract, AnApplicationThatIsOpenedRunsAndIsListed) {
  layApplication("Idle.app", "test.idle");
  EXPECT_EQ(listed(path("Idle.app")), "none");
  EXPECT_EQ(opened(path("Idle.app")), std::nullopt);
  EXPECT_TRUE(eventually([this] { return runs("Idle.app"); }));
  std::string seen;
  inTurns({[&] { seen = listed(path("Idle.app")); }});
  EXPECT_EQ(seen, "test.idle");
}

TEST_P(WorkspaceContract, TheListChangesOnlyWhenTheLoopTurns) {
  layApplication("Idle.app", "test.idle");
  EXPECT_EQ(opened(path("Idle.app")), std::nullopt);
  EXPECT_TRUE(eventually([this] { return runs("Idle.app"); }));
  std::vector<std::string> seen;
  inTurns({[&] {
             seen.push_back(listed(path("Idle.app")));
             quit();
             seen.push_back(listed(path("Idle.app")));
           },
           [&] { seen.push_back(listed(path("Idle.app"))); }});
  EXPECT_EQ(seen, (std::vector<std::string>{"test.idle", "test.idle", "none"}));
}

TEST_P(WorkspaceContract, AnApplicationKeepsItsPathAndIdentifierWhenItsBundleIsMovedAway) {
  layApplication("Idle.app", "test.idle");
  EXPECT_EQ(opened(path("Idle.app")), std::nullopt);
  EXPECT_TRUE(eventually([this] { return runs("Idle.app"); }));
  fs::rename(host("Idle.app"), host("Away.app"));
  applications.push_back(host("Away.app"));
  EXPECT_EQ(listed(path("Idle.app")), "test.idle");
}

TEST_P(WorkspaceContract, AnApplicationThatRunsIsNotStartedTwice) {
  layApplication("Idle.app", "test.idle");
  EXPECT_EQ(opened(path("Idle.app")), std::nullopt);
  EXPECT_TRUE(eventually([this] { return runs("Idle.app"); }));
  EXPECT_EQ(opened(path("Idle.app")), std::nullopt);
  std::this_thread::sleep_for(50ms);
  EXPECT_EQ(pidsOf(host("Idle.app")).size(), 1U);
}

TEST_P(WorkspaceContract, ACopyThatRunsFromAnotherPlaceIsNotOpenedInstead) {
  layApplication("Old.app", "test.idle");
  layApplication("New.app", "test.idle");
  EXPECT_EQ(opened(path("Old.app")), std::nullopt);
  EXPECT_TRUE(eventually([this] { return runs("Old.app"); }));
  EXPECT_EQ(opened(path("New.app")), std::nullopt);
  EXPECT_TRUE(eventually([this] { return runs("New.app"); }));
  EXPECT_TRUE(runs("Old.app"));
}

TEST_P(WorkspaceContract, WhatIsNoApplicationIsAnErrorOfTheCompletion) {
  lay("file.app", "no bundle");
  fs::create_directories(host("Empty.app/Contents"));
  EXPECT_TRUE(opened(path("nowhere.app")).has_value());
  EXPECT_TRUE(opened(path("file.app")).has_value());
  EXPECT_TRUE(opened(path("Empty.app")).has_value());
}

TEST_P(WorkspaceContract, TheCompletionNeverComesInsideTheCall) {
  std::atomic<bool> inside = true;
  std::atomic<bool> came = false;
  std::atomic<bool> cameInside = false;
  const auto caller = std::this_thread::get_id();
  platform.workspace.openApplication(path("nowhere.app"), [&](const std::optional<platform::Error>&) {
    cameInside = inside && std::this_thread::get_id() == caller;
    came = true;
  });
  inside = false;
  EXPECT_TRUE(eventually([&] { return came.load(); }));
  EXPECT_FALSE(cameInside);
}

TAMO_CONTRACT(WorkspaceContract);

}  // namespace
}  // namespace tamo::contract
