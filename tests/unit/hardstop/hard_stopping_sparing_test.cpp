#include <gtest/gtest.h>

#include "contract/binary_list_builder.hpp"
#include "hardstop/hard_stopping.hpp"
#include "unit/hardstop/hard_stopping_rig.hpp"

/// What a hard stop finds out before it spares or kills: the marker files, the build and the ages.
namespace tamo {
namespace {

using namespace std::chrono_literals;

const std::string installed = "/Applications/Tamo.app";

class SparingTest : public HardStoppingRig {
 protected:
  const std::string restoring = "spared(\"revert_restoring\", gone: false)";
  const std::string killed = "killedGroup(4242, gone: true)";

  std::optional<std::string> outcome() {
    EXPECT_EQ(stopped(gives(0)), 0);
    return hardStops.hardStop();
  }
};

TEST_F(SparingTest, ChecksEveryMarkerFileInOrderAtTheGraceDeadline) {
  EXPECT_EQ(outcome(), killed);
  EXPECT_EQ(fake.ledger.textsOf({"files: exists"}),
            (Texts{"files: exists /data/core.db.revert.pending", "files: exists /data/core.db.revert.partial",
                   "files: exists /data/core.db.revert.partial.json"}));
}

TEST_F(SparingTest, ChecksTheMarkerFilesWhateverTheBuildAndTheAge) {
  info(installed, "<key>CFBundleVersion</key><string>1.4.2</string>");
  fake.kernelProcesses.processes[4242].startSeconds = 21;
  EXPECT_EQ(outcome(), "spared(\"revert_release\", gone: false)");
  EXPECT_EQ(fake.ledger.count("files: exists /data/core.db.revert."), 3U);
}

TEST_F(SparingTest, ChecksTheMarkerFilesBeforeTheAge) {
  fake.kernelProcesses.processes[4242].startSeconds = 21;
  markerFile("core.db.revert.pending");
  EXPECT_EQ(outcome(), restoring);
}

TEST_F(SparingTest, ChecksNoMarkerFileWhenTheCoreIsGoneOrTheStopCalledOff) {
  EXPECT_EQ(stopped(gives(5)), 5);
  fake.clock.at(1s, [this] { coreGone(); });
  EXPECT_EQ(outcome(), "exited");
  EXPECT_EQ(fake.ledger.count("files: exists"), 0U);
}

TEST_F(SparingTest, NeitherReadsNorRemovesAMarkerFile) {
  markerFile("core.db.revert.pending");
  EXPECT_EQ(outcome(), restoring);
  EXPECT_EQ(fake.ledger.count("files: read /data"), 0U);
  EXPECT_TRUE(fake.files.contents.contains("/data/core.db.revert.pending"));
}

TEST_F(SparingTest, AFolderOfAMarkersNameCounts) {
  fake.files.directories.insert("/data/core.db.revert.partial");
  EXPECT_EQ(outcome(), restoring);
}

TEST_F(SparingTest, StopsAtTheFirstMarkerFileThatExists) {
  markerFile("core.db.revert.partial");
  EXPECT_EQ(outcome(), restoring);
  EXPECT_EQ(fake.ledger.textsOf({"files: exists"}), (Texts{"files: exists /data/core.db.revert.pending",
                                                           "files: exists /data/core.db.revert.partial"}));
  EXPECT_EQ(fake.ledger.count("kernel: kill"), 0U);
}

TEST_F(SparingTest, TheLastMarkerFileCountsToo) {
  markerFile("core.db.revert.partial.json");
  EXPECT_EQ(outcome(), restoring);
}

TEST_F(SparingTest, AMarkerFileThatComesInTheGraceWatchCounts) {
  fake.clock.at(2s, [this] { markerFile("core.db.revert.pending"); });
  EXPECT_EQ(outcome(), restoring);
}

TEST_F(SparingTest, AMarkerFileThatGoesInTheGraceWatchDoesNotCount) {
  markerFile("core.db.revert.pending");
  fake.clock.at(1s, [this] { fake.files.contents.clear(); });
  EXPECT_EQ(outcome(), killed);
}

TEST_F(SparingTest, ThePathsAreConcatenatedAsTheyAre) {
  dataDirectory = "/data/x";
  fake.files.contents["/data/xcore.db.revert.pending"] = "";
  EXPECT_EQ(outcome(), restoring);
}

TEST_F(SparingTest, WithoutADataDirectoryNoMarkerFileIsLookedFor) {
  dataDirectory.reset();
  markerFile("core.db.revert.pending");
  fake.files.contents["core.db.revert.pending"] = "";
  EXPECT_EQ(outcome(), killed);
  EXPECT_EQ(fake.ledger.count("files: exists"), 0U);
}

TEST_F(SparingTest, WithoutADataDirectoryTheAgeStillCounts) {
  dataDirectory.reset();
  fake.kernelProcesses.processes[4242].startSeconds = 21;
  EXPECT_EQ(outcome(), "spared(\"young_core\", gone: false)");
}

TEST_F(SparingTest, WithoutADataDirectoryTheBuildStillCounts) {
  dataDirectory.reset();
  info(installed, "<key>CFBundleVersion</key><string>1.4.2</string>");
  EXPECT_EQ(outcome(), "spared(\"revert_release\", gone: false)");
}

TEST_F(SparingTest, ACoreOfTheSameMicrosecondIsKilled) {
  fake.kernelProcesses.processes[4242].startSeconds = 20;
  EXPECT_EQ(outcome(), killed);
}

TEST_F(SparingTest, ACoreOneMicrosecondYoungerIsSpared) {
  fake.kernelProcesses.processes[4242].startSeconds = 20;
  fake.kernelProcesses.processes[4242].startMicroseconds = 1;
  EXPECT_EQ(outcome(), "spared(\"young_core\", gone: false)");
}

TEST_F(SparingTest, AnOwnStartOfZeroIsKnown) {
  fake.kernelProcesses.processes[900].startSeconds = 0;
  EXPECT_EQ(outcome(), "spared(\"young_core\", gone: false)");
}

TEST_F(SparingTest, WithoutOurOwnStartTimeNoCoreIsYoung) {
  fake.kernelProcesses.processes.erase(900);
  fake.kernelProcesses.processes[4242].startSeconds = 21;
  EXPECT_EQ(outcome(), killed);
}

TEST_F(SparingTest, ACoreThatExitsInTheSpareWaitIsGone) {
  markerFile("core.db.revert.pending");
  fake.clock.at(7s, [this] { coreGone(); });
  EXPECT_EQ(outcome(), "spared(\"revert_restoring\", gone: true)");
  EXPECT_EQ(fake.clock.monotonicNow(), 7s);
}

TEST_F(SparingTest, TheBuildIsReadFromTheInstalledApplicationAroundThisOne) {
  info(installed, "<key>CFBundleVersion</key><string>1.4.2</string>");
  markerFile("core.db.revert.pending");
  EXPECT_EQ(outcome(), "spared(\"revert_release\", gone: false)");
}

TEST_F(SparingTest, ThisApplicationsOwnBuildDoesNotCount) {
  info(installed, "<key>CFBundleVersion</key><string>4211</string>");
  info(fake.bundles.mainBundle, "<key>CFBundleVersion</key><string>1.4.2</string>");
  EXPECT_EQ(outcome(), killed);
}

TEST_F(SparingTest, ABuildInABinaryListIsRead) {
  fake.files.contents[installed + "/Contents/Info.plist"] = BinaryListBuilder()
                                                                .addDictionary("\x01", "\x02")
                                                                .add(
                                                                    "\x5F\x10\x0F"
                                                                    "CFBundleVersion")
                                                                .addText("1.4.2")
                                                                .bytes();
  EXPECT_EQ(outcome(), "spared(\"revert_release\", gone: false)");
}

TEST_F(SparingTest, ABuildOfAnInnerDictionaryDoesNotCount) {
  info(installed, "<key>Inner</key><dict><key>CFBundleVersion</key><string>1.4.2</string></dict>");
  EXPECT_EQ(outcome(), killed);
}

TEST_F(SparingTest, ABuildWithoutADotOrWithoutWordsSparesNobody) {
  for (const auto* build : {"4211", "", "1,4"}) {
    fake.kernelProcesses.processes[4242] = {.startSeconds = 10, .startMicroseconds = 0, .group = 4242};
    info(installed, "<key>CFBundleVersion</key><string>" + std::string(build) + "</string>");
    EXPECT_EQ(outcome(), killed) << build;
  }
}

TEST_F(SparingTest, ABuildThatIsNoTextIsAbsent) {
  info(installed, "<key>CFBundleVersion</key><real>1.5</real>");
  EXPECT_EQ(outcome(), killed);
}

TEST_F(SparingTest, AMissingBuildIsAbsent) {
  info(installed, "<key>CFBundleShortVersionString</key><string>1.4.2</string>");
  EXPECT_EQ(outcome(), killed);
}

TEST_F(SparingTest, AnUnreadableInfoIsAbsent) {
  fake.files.contents[installed + "/Contents/Info.plist"] =
      "<key>CFBundleVersion</key><string>1.4.2</string>";
  EXPECT_EQ(outcome(), killed);
}

TEST_F(SparingTest, TheBuildIsReadBeforeTheGraceWatch) {
  fake.clock.at(1s, [this] { info(installed, "<key>CFBundleVersion</key><string>1.4.2</string>"); });
  EXPECT_EQ(outcome(), killed);
}

}  // namespace
}  // namespace tamo
