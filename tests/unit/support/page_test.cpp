#include "support/page.hpp"

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

#include "support/headings.hpp"

/// The troubleshooting page within the program.
namespace tamo::support {
namespace {

TEST(PageTest, ThePageIsTheOneInTheTree) {
  std::ostringstream text;
  text << std::ifstream(TAMO_SOURCE_DIR "/docs/troubleshooting.md").rdbuf();
  EXPECT_EQ(troubleshootingPage(), text.str());
}

TEST(PageTest, EveryHeadingThatAStoryCanNameIsThere) {
  for (const auto name : heading::all) {
    const auto text = section(troubleshootingPage(), name);
    ASSERT_TRUE(text) << name;
    EXPECT_FALSE(text->empty()) << name;
  }
}

TEST(PageTest, ASectionEndsBeforeTheNext) {
  const std::string page = "# T\n\nfront\n\n## a\n\none\n\ntwo\n\n## b\n\nthree\n";
  EXPECT_EQ(section(page, "a"), "one\n\ntwo");
  EXPECT_EQ(section(page, "b"), "three");
  EXPECT_EQ(section(page, "c"), std::nullopt);
  EXPECT_EQ(section(page, "T"), std::nullopt);
}

TEST(PageTest, ParagraphsAreSetAnewAndKeptApart) {
  EXPECT_EQ(typeset("one\ntwo\n\n\nthree", "| ", 40), "| one two\n|\n| three\n");
}

TEST(PageTest, ItemsAreIndented) {
  EXPECT_EQ(typeset("- one two\n  three\n- four\n", "| ", 12), "| - one two\n|   three\n| - four\n");
}

TEST(PageTest, ATableIsSetRowByRow) {
  EXPECT_EQ(typeset("| code | |\n|---|---|\n| 1 | one |\n| 2, 3 | more |\n", "| ", 40),
            "| - code\n| - 1: one\n| - 2, 3: more\n");
}

TEST(PageTest, CommandsKeepTheirLines) {
  EXPECT_EQ(typeset("Type:\n\n```sh\nls  -l\n\ncd\n```\n\nDone.", "", 40),
            "Type:\n    ls  -l\n    \n    cd\n\nDone.\n");
}

TEST(PageTest, MarksThatSayNothingInATerminalAreLeftOut) {
  EXPECT_EQ(typeset("**Bold** and [a link](x.md) and [VPN 5] and `code`", "", 60),
            "Bold and [a link] and [VPN 5] and `code`\n");
  EXPECT_EQ(typeset("[open](", "", 60), "[open](\n");
}

}  // namespace
}  // namespace tamo::support
