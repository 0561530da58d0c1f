#include "platform/stage/noted_surroundings.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/fake_application.hpp"
#include "fakes/fake_files.hpp"
#include "fakes/fake_main_queue.hpp"
#include "fakes/fake_user_files.hpp"
#include "fakes/fake_workspace.hpp"
#include "noting_test.hpp"
#include "platform/stage/stage_log.hpp"

namespace tamo::stage {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class NotedSurroundingsTest : public NotingTest {};

TEST_F(NotedSurroundingsTest, ADelayIsNotedWhenItIsAskedForAndWhenItIsOver) {
  fakes::FakeMainQueue queue(ledger, clock);
  NotedMainQueue noting(queue, journal);
  std::vector<std::string> meanwhile;
  noting.postAfter(std::chrono::milliseconds(400), [&] { meanwhile = noted(); });
  EXPECT_THAT(noted(), ElementsAre("waits 400000"));
  queue.runUntilIdle();
  EXPECT_THAT(meanwhile, ElementsAre("waits 400000", "goes-on"));
  EXPECT_TRUE(noting.isMain());
}

/// A delegate that knows what it was told.
class ToldDelegate final : public platform::ApplicationDelegate {
 public:
  std::vector<std::string> urls;
  bool launched = false;
  void applicationDidFinishLaunching() override { launched = true; }
  void application(const std::vector<std::string>& open) override { urls = open; }
};

TEST_F(NotedSurroundingsTest, UrlsReachTheDelegateAndTheTerminateRequestIsNotedFirst) {
  fakes::FakeApplication application(ledger, clock);
  NotedApplication noting(application, journal);
  ToldDelegate delegate;
  noting.setDelegate(delegate);
  application.delegate->application({"tamo-core://sync"});
  application.delegate->applicationDidFinishLaunching();
  noting.becomeAccessory();
  noting.run();
  noting.terminate();
  EXPECT_THAT(delegate.urls, ElementsAre("tamo-core://sync"));
  EXPECT_TRUE(delegate.launched);
  EXPECT_THAT(noted(), ElementsAre("url tamo-core://sync", "terminates"));
  EXPECT_THAT(ledger.texts(), ElementsAre("application: delegate", "application: accessory",
                                          "application: run", "application: terminate"));
}

TEST_F(NotedSurroundingsTest, AFileIsNotedOnlyWhenItWasWritten) {
  fakes::FakeFiles files(ledger, clock);
  NotedFiles noting(files, journal);
  EXPECT_TRUE(noting.writeAtomically("/a", "1"));
  files.failsToWrite = true;
  EXPECT_FALSE(noting.writeAtomically("/b", "2"));
  EXPECT_TRUE(noting.exists("/a"));
  EXPECT_EQ(noting.readWhole("/a"), "1");
  EXPECT_EQ(noting.resolvedPath("/a"), "/a");
  EXPECT_TRUE(noting.createDirectories("/d"));
  EXPECT_TRUE(noting.remove("/a"));
  EXPECT_EQ(noting.temporaryDirectory(), files.temporary);
  EXPECT_EQ(noting.openForWriting("/a"), nullptr);
  EXPECT_THAT(noted(), ElementsAre("writes /a"));
}

TEST_F(NotedSurroundingsTest, WhatWentToTheTrashIsNotedAndWhatStayedIsNot) {
  fakes::FakeFiles files(ledger, clock);
  files.contents["/a"] = "1";
  fakes::FakeUserFiles user(ledger, clock, files);
  NotedUserFiles noting(user, journal);
  EXPECT_TRUE(noting.isWritable("/a"));
  EXPECT_TRUE(noting.moveToTrash("/a"));
  EXPECT_FALSE(noting.moveToTrash("/b"));
  EXPECT_THAT(noted(), ElementsAre("trashes /a"));
}

TEST_F(NotedSurroundingsTest, AnOpeningIsNotedWithWhatCameOfIt) {
  fakes::FakeWorkspace workspace(ledger, clock);
  NotedWorkspace noting(workspace, journal);
  bool failed = false;
  const auto completion = [&failed](const std::optional<platform::Error>& error) {
    failed = error.has_value();
  };
  noting.openApplication("/a", completion);
  EXPECT_FALSE(failed);
  workspace.openError = platform::Error("D", 1, "no");
  noting.openApplication("/b", completion);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(noting.runningApplications().empty());
  EXPECT_THAT(noted(), ElementsAre("opens /a", "opened yes", "opens /b", "opened no"));
}

TEST_F(NotedSurroundingsTest, ALogLineIsNotedWithoutItsPrivatePartsWhateverTheSettingSays) {
  stage.root.set("log-private", "shown");
  StageLog log(stage.root, clock);
  NotedLog noting(log, journal);
  const auto logger = noting.logger("s", "c");
  logger->write({platform::LogFormat::outcome,
                 {std::string("sync"), std::int64_t{1}, std::string("yes"), std::string(), std::string(),
                  std::string("secret")}});
  logger->write({platform::LogFormat::moveRefused, {}});
  EXPECT_THAT(noted(), ElementsAre("log default sync -> status 1 ok yes<private>",
                                   "log error move refused: this Tamo doesn't need moving"));
  EXPECT_THAT(stage.read("/.stage/log"), HasSubstr("secret"));
}

}  // namespace
}  // namespace tamo::stage
