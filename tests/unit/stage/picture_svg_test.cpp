#include "stage/picture/picture_svg.hpp"

#include <algorithm>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <sstream>

#include "journal_builder.hpp"
#include "stage/picture/picture_of.hpp"
#include "stage/picture/svg_text.hpp"
#include "svg_form.hpp"

namespace tamo::stage {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

std::string fileOfTheTree(const std::string& path) {
  std::ostringstream bytes;
  bytes << std::ifstream(TAMO_SOURCE_DIR "/" + path, std::ios::binary).rdbuf();
  return bytes.str();
}

std::string drawn(const JournalReading& reading, const Present& present = {}) {
  return svgOf(pictureOf(reading, present).value_or(Picture()));
}

/// As it was when the journal ended: launchd and the last Core lived.
Present presentOf(const JournalReading& reading) {
  Present present;
  for (const auto& moment : reading.moments)
    if (moment.word == "launchd") present.living.insert(moment.pid);
  for (const auto& moment : reading.moments)
    if (moment.word == "job") present.living.insert(numberIn(moment, 0));
  return present;
}

TEST(SvgTextTest, WhateverATextHoldsItIsAText) {
  EXPECT_EQ(xmlText("a<b>&\"c\""), "a&lt;b&gt;&amp;&quot;c&quot;");
  EXPECT_EQ(xmlText("a\tb\n\x01\x7F é"), "a b    é");
  EXPECT_EQ(xmlText("a\xEF\xBF\xBEz\xEF\xBF\xBF"), "a z ");
}

TEST(SvgTextTest, ElementsAreClosedInTheirOrder) {
  SvgText svg;
  svg.open("g", {{"class", "a\"b"}});
  svg.leaf("line", {{"x1", coordinate(1.25)}});
  svg.text("text", {}, "<");
  svg.close();
  EXPECT_EQ(svg.str(), "<g class=\"a&quot;b\">\n<line x1=\"1.2\"/>\n<text>&lt;</text>\n</g>\n");
}

TEST(PictureSvgTest, ADocumentIsWellFormedWhateverItsTextsHold) {
  auto journal = hangingRestart();
  journal.note(3600, 60, "says", {"<script>&\"'\x02]]></svg>"});
  journal.note(3601, 100, "log", {"error", "a \xFF <b>"});
  const auto svg = drawn(journal.reading());
  EXPECT_EQ(wrongInXml(svg), "");
  EXPECT_THAT(svg, Not(HasSubstr("<script")));
}

TEST(PictureSvgTest, TheReaderOfDocumentsSeesWhatIsWrong) {
  EXPECT_NE(wrongInXml("<a><b></a></b>"), "");
  EXPECT_NE(wrongInXml("<a>x & y</a>"), "");
  EXPECT_NE(wrongInXml("<a></a>x<b/>"), "");
  EXPECT_NE(wrongInXml("<a>"), "");
  EXPECT_NE(wrongInXml("<a b=c></a>"), "");
  EXPECT_NE(wrongInXml(""), "");
  EXPECT_EQ(wrongInXml("<a b=\"c\">x<d/>y</a>"), "");
}

TEST(PictureSvgTest, EveryTextIsText) {
  const auto svg = drawn(hangingRestart().reading(), {.living = {1, 60}});
  EXPECT_THAT(textsOfClass(svg, "title"), ElementsAre("restart by companion 100, 2.52 s"));
  EXPECT_THAT(textsOfClass(svg, "sum"),
              ElementsAre("asked at 0.46 s, alive at 2.46 s, group killed at 2.46 s, gone at "
                          "2.47 s, new Core at 2.48 s"));
  EXPECT_THAT(textsOfClass(svg, "name"),
              ElementsAre("companion 100", "its job lock", "its watch", "its log", "launchctl", "Core 50",
                          "helper 51", "new Core 60", "launchd 1"));
  EXPECT_THAT(textsOfClass(svg, "what"), ::testing::Contains("launchd 1 sends SIGTERM to Core 50"));
}

TEST(PictureSvgTest, ItReadsInTheDarkAsWell) {
  const auto svg = drawn(hangingRestart().reading());
  const auto dark = svg.find("@media (prefers-color-scheme: dark)");
  ASSERT_NE(dark, std::string::npos);
  EXPECT_LT(dark, svg.find("</style>"));
  const auto style = svg.substr(dark, svg.find("</style>") - dark);
  for (const auto* part : {"text {", ".paper {", ".life .bar {", ".step .bar {", ".wait .bar {",
                           ".held .bar {", ".killed .sign {", ".arrow .sign {", ".arrow.SIGKILL .sign {"})
    EXPECT_THAT(style, HasSubstr(part));
}

TEST(PictureSvgTest, WhatAColourSaysIsSaidByAPatternASignOrAWordToo) {
  const auto svg = drawn(hangingRestart().reading());
  EXPECT_THAT(svg, HasSubstr(".wait .bar { fill: url(#hatch)"));
  EXPECT_THAT(svg, HasSubstr(".held .bar { fill: url(#dots)"));
  EXPECT_THAT(svg, HasSubstr("<pattern id=\"hatch\""));
  EXPECT_THAT(svg, HasSubstr("<pattern id=\"dots\""));
  EXPECT_THAT(textsOfClass(svg, "note"), ::testing::IsSupersetOf({"lives", "works", "waits by a rule",
                                                                  "holds the lock", "is killed", "ends"}));
}

TEST(PictureSvgTest, NoTwoTextsOfARowStandOverEachOther) {
  const auto reading = readJournal(fileOfTheTree("tests/data/journals/restart.journal"));
  const auto svg = drawn(reading, presentOf(reading));
  // Each text that has no class is a label; within one line they stand apart.
  std::map<std::string, std::vector<std::pair<double, double>>> lines;
  static const std::regex label("<text x=\"([0-9.]+)\" y=\"([0-9.]+)\">([^<]*)</text>");
  for (auto it = std::sregex_iterator(svg.begin(), svg.end(), label); it != std::sregex_iterator(); ++it)
    lines[(*it)[2]].emplace_back(std::stod((*it)[1]), 6.0 * static_cast<double>((*it)[3].length()));
  EXPECT_GT(lines.size(), 5U);
  for (auto& [line, texts] : lines) {
    std::ranges::sort(texts);
    for (std::size_t next = 1; next < texts.size(); ++next)
      EXPECT_GE(texts[next].first, texts[next - 1].first + texts[next - 1].second) << "at " << line;
  }
}

/// The form is that of what was drawn; times and numbers of processes may be others.
TEST(PictureSvgTest, ThePictureInTheTreeHasTheFormOfWhatIsDrawnToday) {
  const auto reading = readJournal(fileOfTheTree("tests/data/journals/restart.journal"));
  const auto today = formOf(drawn(reading, presentOf(reading)));
  EXPECT_EQ(formOf(fileOfTheTree("docs/pictures/restart.svg")), today)
      << "draw it anew: ./rehearse --picture docs/pictures/restart.svg";
  EXPECT_GT(today.size(), 12U);
}

TEST(PictureSvgTest, TheFormOfAPictureChangesWithItsRowsItsMarksAndItsStyle) {
  const auto svg = drawn(hangingRestart().reading(), {.living = {1, 60}});
  const auto form = formOf(svg);
  const auto with = [&](const std::string& from, const std::string& to) {
    auto changed = svg;
    const auto at = changed.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    changed.replace(at, from.size(), to);
    return formOf(changed);
  };
  EXPECT_NE(with(">its watch<", ">the watch<"), form);
  EXPECT_NE(with("mark killed", "mark end"), form);
  EXPECT_NE(with("arrow SIGKILL", "arrow SIGTERM"), form);
  EXPECT_NE(with("#b3121f", "#b3121e"), form);
  EXPECT_EQ(with(">launchd 1<", ">launchd 2<"), form);
  EXPECT_EQ(with(">0.46 s<", ">0.47 s<"), form);
}

}  // namespace
}  // namespace tamo::stage
