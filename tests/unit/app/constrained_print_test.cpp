#include <gtest/gtest.h>

#include "companion.hpp"

/// The companion with the print of a job that has a launch constraint, as every job of service management has on
/// the newest systems: each part is handed the text that it is made for.
namespace tamo {
namespace {

class ConstrainedPrintTest : public ::testing::Test {
 protected:
  /// launchctl prints the running Core with these lines in a launch constraint before the exit timeout.
  void printsConstraint(const std::string& lines) {
    auto print = Companion::print();
    print.insert(print.find("\texit timeout = "), "\tLWCR = {\n" + lines + "\t}\n\n");
    companion.printsAlways(print);
  }
  [[nodiscard]] std::size_t count(const std::string& text) const {
    return companion.fakes.ledger.count(text);
  }

  const std::string requirement =
      "\t\t\"reqs\" => {\n\t\t\t\"team-identifier\" => \"A\"\n\t\t}\n\t\t\"vers\" => 1\n";
  const std::string killed = "log: default hardstop pid 4242: killedGroup(4242, gone: true)";
  Companion companion;
};

TEST_F(ConstrainedPrintTest, ARestartStopsTheCoreThatHangs) {
  printsConstraint(requirement);
  companion.kickstartGives(0);
  companion.act("restart");
  EXPECT_EQ(count("kernel: kill group 4242"), 1U);
  EXPECT_EQ(companion.logLines().at(1), killed);
}

TEST_F(ConstrainedPrintTest, AReseatStopsTheCoreThatHangs) {
  printsConstraint(requirement);
  companion.act("reseat");
  EXPECT_EQ(count("kernel: kill group 4242"), 1U);
  EXPECT_EQ(companion.logLines().front(), killed);
}

TEST_F(ConstrainedPrintTest, AConstraintThatIsNotClosedMeansThePlainWay) {
  printsConstraint("\t\t\"reqs\" => {\n");
  companion.kickstartGives(0);
  companion.act("restart");
  EXPECT_EQ(count("kernel: "), 0U) << "no process is even looked at";
  EXPECT_EQ(companion.logLines().size(), 2U);
}

/// Whether the job runs is read from the print as it came: there a doubt counts as running.
TEST_F(ConstrainedPrintTest, APidWithinTheConstraintCountsAsRunningAndIsNobodysTarget) {
  auto print = Companion::print(/*running*/ false);
  print.insert(print.rfind("}\n"), "\tLWCR = {\n\t\t\"reqs\" => {\n\t\t\tpid = 4242\n\t\t}\n\t}\n");
  companion.printsAlways(print);
  companion.kickstartGives(5);
  companion.act("restart");
  EXPECT_EQ(count("kernel: kill"), 0U);
  EXPECT_EQ(count("service: unregister"), 0U) << "a Core that runs is not reseated";
}

}  // namespace
}  // namespace tamo
