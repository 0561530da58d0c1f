#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

#include "acceptance/mac/journal.hpp"
#include "acceptance/mac/played_copies.hpp"
#include "acceptance/mac/sample_lists.hpp"
#include "acceptance/mac/signers.hpp"
#include "acceptance/mac/unified_log.hpp"
#include "launch/launch_job.hpp"
#include "platform/posix/posix_files.hpp"
#include "values/property_list.hpp"

namespace tamo::acceptance {
namespace {

constexpr auto outcome =
    R"({"timestamp":"1970-01-01 00:00:02.000000+0000","messageType":"Error","subsystem":"studio.pell.Tamo.Core",)"
    R"("processID":42,"formatString":"%{public}s refused: %{public}s","backtrace":{"frames":[{"imageOffset":1}]},)"
    R"("eventMessage":"restart refused: x"})";

TEST(UnifiedLogTest, ALineIsRead) {
  const auto line = lineOfUnifiedLog(outcome);
  ASSERT_TRUE(line.has_value());
  EXPECT_EQ(line->time, 2'000'000);
  EXPECT_EQ(line->pid, 42);
  EXPECT_EQ(line->level, Level::Error);
  EXPECT_EQ(line->text, "restart refused: x");
  EXPECT_EQ(line->marks, (std::vector{Mark::Public, Mark::Public}));
}

TEST(UnifiedLogTest, LinesComeByTimeAndTheRestIsLeftOut) {
  const std::string earlier =
      R"({"timestamp":"1970-01-01 00:00:01.000000+0000","messageType":"Fault","eventMessage":"a"})";
  const auto lines = linesOfUnifiedLog(std::string(outcome) + "\n" + earlier + "\n" +
                                       R"({"count":2,"finished":1})" + "\nnoise");
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines.front().text, "a");
  EXPECT_EQ(lines.front().level, Level::Other);
}

TEST(UnifiedLogTest, ATimeCountsFromItsZone) {
  const auto line = lineOfUnifiedLog(R"({"timestamp":"1969-12-31 18:30:01.000001-0530","eventMessage":"a"})");
  ASSERT_TRUE(line.has_value());
  EXPECT_EQ(line->time, 1'000'001);
  EXPECT_FALSE(lineOfUnifiedLog(R"({"timestamp":"1970-01-01 01:00:00","eventMessage":"a"})").has_value());
}

TEST(SampleListsTest, TheReadersOfTheProductReadThem) {
  const auto info = values::readPropertyList(sampleInfo("1.4.2"));
  ASSERT_TRUE(info.has_value());
  EXPECT_EQ(*info->entry("CFBundleVersion")->text(), "1.4.2");
  EXPECT_EQ(*info->entry("CFBundleIdentifier")->text(), "studio.pell.Tamo");
  const auto definition =
      LaunchJob::bundled(sampleAgentList({.exitTimeout = 9, .arguments = {"<&>"}}, "/a b"));
  EXPECT_EQ(definition, (LaunchJob::Definition{.arguments = {"/a b", "<&>"}, .exitTimeout = 9}));
}

TEST(PlayedCopiesTest, WhatRunsFromAnywhereElseIsNotOurs) {
  MacSettings settings;
  settings.home = "/Users/anna";
  for (const auto* place : {"/Applications", "/Users/anna/Downloads/Tamo acceptance",
                            "/Users/anna/Library/Application Support/Tamo/staged", "/Users/anna/.Trash",
                            "/private/var/folders/a/b/T/AppTranslocation/X/d"})
    EXPECT_TRUE(isOfAPlayedCopy(place + std::string("/Tamo.app/Contents/MacOS/Tamo"), settings)) << place;
  for (const auto* place : {"/Volumes/Tamo", "/Users/anna/Downloads", "/Users/anna/Applications",
                            "/Users/bob/Downloads/Tamo acceptance", ""})
    EXPECT_FALSE(isOfAPlayedCopy(place + std::string("/Tamo.app/Contents/MacOS/Tamo"), settings)) << place;
}

constexpr auto identities = R"list(
  1) 0123AB "Developer ID Application: Anna O'Hara (TEAM000000)"
  2) 4567CD "Apple Development: Bob (TEAM111111)"
     2 valid identities found
)list";

std::string signedBy(const std::string& identity) {
  const std::string shown =
      "Authority=Developer ID Application: Anna O'Hara (TEAM000000), team TEAM000000, by Anna O'Hara";
  return redacted(shown, signersOf(identitiesMeant(identities, identity)));
}

TEST(SignersTest, WhoSignsIsNotNamedHoweverHeIsGiven) {
  for (const auto* identity : {"Developer ID Application: Anna O'Hara (TEAM000000)", "Anna", "0123AB"})
    EXPECT_EQ(signedBy(identity), "Authority=(identity), team (team), by (signer)") << identity;
  EXPECT_TRUE(identitiesMeant(identities, "-").empty());
}

TEST(SignersTest, ACertificateOfDevelopmentHasNoTeamInItsName) {
  const auto secrets = signersOf(identitiesMeant(identities, "4567CD"));
  EXPECT_EQ(redacted("Bob, TEAM111111", secrets), "(signer), (certificate)");
}

TEST(SignersTest, TheTeamIsTheOrganizationalUnit) {
  for (const auto* subject :
       {"subject= /UID=A1/CN=Apple Development: Bob OU (TEAM111111)/OU=TEAM222222/O=Bob/C=US",
        "subject=UID = A1, CN = Apple Development: Bob (TEAM111111), OU = TEAM222222, O = Bob",
        "subject=OU=TEAM222222"})
    EXPECT_EQ(teamOfSubject(subject), "TEAM222222") << subject;
  for (const auto* subject : {"", "OU", "subject=CN = Bob, O = Bob", "subject=XOU=TEAM222222"})
    EXPECT_EQ(teamOfSubject(subject), "") << subject;
}

TEST(SignersTest, TheIdentifierIsReadFromWhatIsShown) {
  EXPECT_EQ(
      signingIdentifierIn("Executable=/a\nIdentifier=studio.pell.tamo.core-agent\nTeamIdentifier=not set\n"),
      "studio.pell.tamo.core-agent");
  EXPECT_EQ(signingIdentifierIn("a: code object is not signed at all\nTeamIdentifier=x"), "");
}

class JournalTest : public ::testing::Test {
 protected:
  ~JournalTest() override { std::filesystem::remove(file); }
  const std::string file = ::testing::TempDir() + "journal-" + std::to_string(::getpid());
};

TEST_F(JournalTest, EachThingIsToldOnce) {
  Journal journal(file);
  journal.willMake("/Applications/Tamo.app");
  journal.willRegister();
  journal.willTrash();
  journal.willMake("/Applications/Tamo.app");
  journal.willMake("/Applications/Tamo");
  EXPECT_EQ(platform::posix::readWhole(file),
            "path /Applications/Tamo.app\nregistered\ntrash\npath /Applications/Tamo\n");
}

TEST_F(JournalTest, WithoutAJournalNothingIsMade) {
  EXPECT_THROW(Journal("/nowhere/journal").willRegister(), PlaceError);
}

}  // namespace
}  // namespace tamo::acceptance
