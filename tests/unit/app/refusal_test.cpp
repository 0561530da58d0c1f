#include <gtest/gtest.h>

#include "companion.hpp"

namespace tamo {
namespace {

using Texts = std::vector<std::string>;

const std::string copyInfo = Companion::downloads + "/Contents/Info.plist";

/// A copy that may not act: which actions are refused, and that a refusal does nothing else.
class RefusalTest : public ::testing::Test {
 protected:
  RefusalTest() {
    companion.runsFrom(Companion::downloads);
    companion.config.writesReceipts = true;
  }
  static std::string refusal(const std::string& action) {
    return "log: error " + action + " refused: tamo.test_copy_refused_live_data app=" + Companion::downloads +
           " (only /Applications/Tamo.app opens the founder's data and Core)";
  }

  Companion companion;
};

/// Nothing is locked, asked of service management, started, written or made.
TEST_F(RefusalTest, IsOneLineAndTheTerminateRequestForEveryActionButStatus) {
  for (const std::string action :
       {"register", "unregister", "reseat", "restart", "sync", "bogus", "audit-install"}) {
    companion.perform(action);
    EXPECT_EQ(companion.fakes.ledger.texts(),
              (Texts{"files: read " + copyInfo, refusal(action), "application: terminate"}));
  }
}

/// Only the very name is let through.
TEST_F(RefusalTest, MeetsEveryNameThatOnlyLooksLikeStatus) {
  for (const std::string action :
       {"Status", "STATUS", "status ", " status", "status\n", "status/", "status?x", "statusx", "statu", "",
        "tamo-core://status", "status\u0301"}) {
    companion.perform(action);
    EXPECT_EQ(companion.fakes.ledger.textsOf({"log: ", "lock: ", "service: ", "files: write"}),
              Texts{refusal(action)});
  }
}

TEST_F(RefusalTest, MeetsEveryNameThatOnlyLooksLikeTheMove) {
  for (const std::string action :
       {"Move-to-applications", "move-to-applications ", "move-to-Applications", "move", "move-to"}) {
    companion.perform(action);
    EXPECT_EQ(companion.fakes.ledger.textsOf({"log: ", "lock: ", "workspace: "}), Texts{refusal(action)});
  }
}

/// And the answer leaves its receipt.
TEST_F(RefusalTest, IsNotEvenAskedAboutForStatus) {
  companion.perform("status");
  const std::string receipts = "/Users/u/Library/Application Support/TamoPKG1/M2";
  EXPECT_EQ(companion.fakes.ledger.texts(),
            (Texts{"service: agent studio.pell.tamo.core.plist", "service: status -> 1",
                   "service: status -> 1", "log: default status -> status 1 ok Optional(true)<private:>",
                   "files: create directories " + receipts, "files: write " + receipts + "/900-core.json",
                   "application: terminate"}));
}

TEST_F(RefusalTest, IsNotEvenAskedAboutWithAProofHome) {
  for (const std::string_view home : {"/proof", ""}) {
    companion.config.proofHome = home;
    companion.perform("bogus");
    EXPECT_EQ(companion.fakes.ledger.count("files: read"), 0U);
    EXPECT_EQ(companion.fakes.ledger.count("log: error"), 0U);
    EXPECT_EQ(companion.fakes.ledger.count("lock: unlock"), 1U);
  }
}

/// The installed place is not enough: the identifier is asked of the application, not of the companion in it.
TEST_F(RefusalTest, MeetsTheInstalledCopyOfAnotherIdentifier) {
  companion.runsFrom("/Applications/Tamo.app", "studio.pell.Tamo.Core");
  companion.perform("sync");
  EXPECT_EQ(companion.fakes.ledger.count("log: error sync refused: tamo.test_copy_refused_live_data "
                                         "app=/Applications/Tamo.app (only "),
            1U);
}

TEST_F(RefusalTest, MeetsTheInstalledCopyBehindALink) {
  companion.runsFrom("/Applications/Tamo.app");
  companion.fakes.files.resolved["/Applications/Tamo.app"] = "/Volumes/Other/Tamo.app";
  companion.perform("sync");
  EXPECT_EQ(companion.fakes.ledger.count("log: error sync refused: "), 1U);
}

TEST_F(RefusalTest, DoesNotMeetTheStagedCopy) {
  companion.config.writesReceipts = false;
  companion.fakes.agentServices.status = 0;
  companion.runsFrom(Companion::data + "staged/Tamo.app");
  companion.perform("sync");
  EXPECT_EQ(companion.logLines(), Texts{"log: default sync -> status 0 ok Optional(false)<private:>"});
}

/// The copy may become the right one while URLs are still waited for, and the wrong one as well.
TEST_F(RefusalTest, IsDecidedWhenTheActionStartsAndNotBefore) {
  for (const std::string last : {"studio.pell.Tamo", "studio.pell.Tamo.dev"}) {
    Companion changing;
    const std::string first = last == "studio.pell.Tamo" ? "studio.pell.Tamo.dev" : "studio.pell.Tamo";
    changing.runsFrom("/Applications/Tamo.app", first);
    changing.fakes.agentServices.status = 0;
    changing.fakes.clock.at(std::chrono::milliseconds(200),
                            [&] { changing.runsFrom("/Applications/Tamo.app", last); });
    changing.act("sync");
    EXPECT_EQ(changing.fakes.ledger.count("log: error sync refused: "), last == "studio.pell.Tamo" ? 0U : 1U);
  }
}

/// The default action of a copy that is neither the installed one nor a release.
TEST_F(RefusalTest, MeetsACopyOfAnotherIdentifierThatIsAskedForNothing) {
  companion.runsFrom(Companion::downloads, "studio.pell.Tamo.dev");
  companion.run({});
  EXPECT_EQ(companion.logLines(), Texts{refusal("register")});
}

}  // namespace
}  // namespace tamo
