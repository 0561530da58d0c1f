#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

#include "contract/binary_list_builder.hpp"
#include "values/property_list.hpp"

// Where the stage's reader gives up although macOS would read on. The bounds of nesting and of values are those of
// the Mac's reader too. None of this occurs in a list that the system meets.
namespace tamo::platform {
namespace {

using namespace std::string_literals;

std::string nested(std::size_t depth) {
  std::string text = "<plist>";
  for (std::size_t level = 0; level < depth; ++level)
    text += "<array>";
  for (std::size_t level = 0; level < depth; ++level)
    text += "</array>";
  return text + "</plist>";
}

/// Arrays that each hold the next one `width` times.
std::string shared(std::size_t depth, std::size_t width) {
  BinaryListBuilder builder;
  for (std::size_t level = 1; level <= depth; ++level) {
    builder.addArray(std::string(width, static_cast<char>(level)));
  }
  return builder.addText("a").bytes();
}

TEST(ValuesLimitsTest, TheOldAsciiFormIsUnreadable) {
  EXPECT_FALSE(values::readPropertyList("{ ProgramArguments = (\"/bin/sh\", \"-c\"); ExitTimeOut = 20; }"));
  std::ostringstream file;
  file << std::ifstream(std::string(TAMO_SOURCE_DIR) + "/tests/data/plists/old_ascii_form.plist").rdbuf();
  EXPECT_NE(file.str(), "");
  EXPECT_FALSE(values::readPropertyList(file.str()));
}

/// A text of the old ASCII form for a Mac.
TEST(ValuesLimitsTest, ABareWordIsUnreadable) {
  for (const auto* word : {"a", "\"a\"", "bplist00", "bplist", "b", " ", "\n"})
    EXPECT_FALSE(values::readPropertyList(word)) << word;
}

TEST(ValuesLimitsTest, AKeyStandsInADictionaryOnly) {
  for (const auto* list : {"<plist><key>a</key></plist>", "<plist><array><key>a</key></array></plist>",
                           "<plist><dict><key>a</key><key>b</key></dict></plist>", "<key>a</key>"}) {
    EXPECT_FALSE(values::readPropertyList(list)) << list;
  }
}

TEST(ValuesLimitsTest, AListIsOnePlistAndNothingElse) {
  const std::string list = "<plist><dict/></plist>";
  EXPECT_TRUE(values::readPropertyList(list + "\n<!-- -->"));
  for (const auto& document :
       {"<dict/>"s, "<plist>" + list + "</plist>", list + "a", list + list, "<dict/>" + list}) {
    EXPECT_FALSE(values::readPropertyList(document)) << document;
  }
}

TEST(ValuesLimitsTest, AnXmlListIsGoodXmlThroughout) {
  const auto list = [](const std::string& text) { return "<plist><string>" + text + "</string></plist>"; };
  for (const auto& text : {"a\0b"s, "a\1b"s, "a\xA9"s, "a]]>b"s, "a\uFFFF"s, "&#0;"s})
    EXPECT_FALSE(values::readPropertyList(list(text))) << text;
  EXPECT_FALSE(values::readPropertyList("<plist version=1><true/></plist>"));
  EXPECT_FALSE(values::readPropertyList("<?xml version=\"1.0\" encoding=\"windows-1252\"?>" + list("a")));
}

TEST(ValuesLimitsTest, WideBlanksStandBeforeNoNumber) {
  for (const auto* number :
       {"<integer>\u00A05</integer>", "<integer>\u20035</integer>", "<real>\u00A05</real>"})
    EXPECT_FALSE(values::readPropertyList("<plist>" + std::string(number) + "</plist>")) << number;
}

TEST(ValuesLimitsTest, AnXmlListMayBeNestedFiveHundredAndTwelveTimes) {
  EXPECT_TRUE(values::readPropertyList(nested(512)));
  EXPECT_FALSE(values::readPropertyList(nested(513)));
  EXPECT_FALSE(values::readPropertyList(nested(100'000)));
}

TEST(ValuesLimitsTest, AnXmlListMayHaveTenThousandValues) {
  const auto list = [](std::size_t texts) {
    std::string items;
    for (std::size_t item = 0; item < texts; ++item)
      items += "<string/>";
    return "<plist><array>" + items + "</array></plist>";
  };
  EXPECT_TRUE(values::readPropertyList(list(9'999)));
  EXPECT_FALSE(values::readPropertyList(list(10'000)));
}

TEST(ValuesLimitsTest, ABinaryListMayShareItsObjects) {
  EXPECT_TRUE(values::readPropertyList(shared(120, 1)));
  EXPECT_TRUE(values::readPropertyList(shared(3, 14)));
}

TEST(ValuesLimitsTest, ABinaryListThatSharingMakesHugeIsUnreadable) {
  EXPECT_FALSE(values::readPropertyList(shared(4, 14)));
  EXPECT_FALSE(values::readPropertyList(shared(100, 14)));
}

TEST(ValuesLimitsTest, AnIntegerOfMoreThanSixtyFourBitsIsUnreadable) {
  EXPECT_FALSE(
      values::readPropertyList(BinaryListBuilder().add("\x14\0\0\0\0\0\0\0\1\0\0\0\0\0\0\0\5"s).bytes()));
  EXPECT_FALSE(values::readPropertyList(BinaryListBuilder().add("\x15" + std::string(32, '\0')).bytes()));
}

TEST(ValuesLimitsTest, ASetMakesABinaryListUnreadable) {
  EXPECT_FALSE(values::readPropertyList(BinaryListBuilder().add("\xC1\1").addText("a").bytes()));
  EXPECT_FALSE(
      values::readPropertyList(BinaryListBuilder().addArray("\1").add("\xC1\2").addText("a").bytes()));
}

TEST(ValuesLimitsTest, ANullMakesABinaryListUnreadable) {
  EXPECT_FALSE(values::readPropertyList(BinaryListBuilder().add("\0"s).bytes()));
  EXPECT_FALSE(values::readPropertyList(BinaryListBuilder().addArray("\1").add("\0"s).bytes()));
}

TEST(ValuesLimitsTest, AnotherVersionOfABinaryListIsUnreadable) {
  auto list = BinaryListBuilder().addText("a").bytes();
  EXPECT_TRUE(values::readPropertyList(list));
  list[7] = 'p';
  EXPECT_FALSE(values::readPropertyList(list));
}

TEST(ValuesLimitsTest, ATextWithAZeroInItMakesABinaryListUnreadable) {
  for (const auto& text : {"\x53"
                           "a\0b"s,
                           "\x51\0"s,
                           "\x5F\x10\x03"
                           "a\0b"s,
                           "\x63\0a\0\0\0b"s, "\x61\0\0"s}) {
    EXPECT_FALSE(values::readPropertyList(BinaryListBuilder().add(text).bytes()));
    EXPECT_FALSE(
        values::readPropertyList(BinaryListBuilder().addArray("\1\2").addText("a").add(text).bytes()));
  }
}

TEST(ValuesLimitsTest, ANarrowTextBeyondAsciiMakesABinaryListUnreadable) {
  for (const auto* text : {"\x52\xC3\x28", "\x52\xC3\xA9", "\x51\x80", "\x51\xFF"})
    EXPECT_FALSE(values::readPropertyList(BinaryListBuilder().add(text).bytes()));
}

TEST(ValuesLimitsTest, HalfASurrogatePairMakesABinaryListUnreadable) {
  EXPECT_TRUE(values::readPropertyList(BinaryListBuilder().add("\x62\xD8\x3D\xDE\0"s).bytes()));
  for (const auto& text : {"\x61\xD8\x3D"s, "\x61\xDE\0"s, "\x62\xDE\0\xD8\x3D"s, "\x62\xD8\x3D\0a"s,
                           "\x63\xD8\x3D\xD8\x3D\xDE\0"s, "\x63\xD8\x3D\xDE\0\xDE\0"s}) {
    EXPECT_FALSE(values::readPropertyList(BinaryListBuilder().add(text).bytes()));
  }
}

TEST(ValuesLimitsTest, AKeyWithAZeroInItMakesABinaryListUnreadable) {
  const auto withKey = [](const std::string& key) {
    return BinaryListBuilder().addDictionary("\1", "\2").add(key).addText("value").bytes();
  };
  EXPECT_TRUE(values::readPropertyList(withKey("\x53key"s)));
  EXPECT_FALSE(values::readPropertyList(withKey("\x53k\0y"s)));
  EXPECT_FALSE(values::readPropertyList(withKey("\x5F\x10\x03k\0y"s)));
  EXPECT_TRUE(values::readPropertyList(withKey("\x62\0k\1\0"s)));
  EXPECT_FALSE(values::readPropertyList(withKey("\x62\0k\0\0"s)));
}

TEST(ValuesLimitsTest, AKeyThatIsNoTextMakesABinaryListUnreadable) {
  for (const auto& key : {"\x09"s, "\x10\x05"s, "\x42kk"s, "\xA0"s})
    EXPECT_FALSE(values::readPropertyList(
        BinaryListBuilder().addDictionary("\1", "\2").add(key).addText("value").bytes()));
}

TEST(ValuesLimitsTest, ACountBeyondTheBytesMakesABinaryListUnreadable) {
  const std::string most(8, '\xFF');
  for (const auto& count : {"\x13" + most, "\x13\0\0\0\0\x7F\0\0\0"s, "\x14"s, "\x1F"s}) {
    EXPECT_FALSE(values::readPropertyList(BinaryListBuilder().add("\xAF" + count).bytes()));
    EXPECT_FALSE(values::readPropertyList(BinaryListBuilder().add("\xDF" + count).bytes()));
    const auto key = "\x5F" + count;
    EXPECT_FALSE(values::readPropertyList(
        BinaryListBuilder().addDictionary("\1", "\2").add(key).addText("value").bytes()));
  }
}

TEST(ValuesLimitsTest, OneUnreadableTextMakesABinaryListUnreadable) {
  const auto broken = "\x51\xE9"s;
  EXPECT_FALSE(
      values::readPropertyList(BinaryListBuilder().addArray("\1\2").addText("a").add(broken).bytes()));
  EXPECT_FALSE(values::readPropertyList(
      BinaryListBuilder().addDictionary("\1", "\2").addText("key").add(broken).bytes()));
  EXPECT_FALSE(values::readPropertyList(
      BinaryListBuilder().addDictionary("\1", "\2").add(broken).addText("value").bytes()));
}

TEST(ValuesLimitsTest, AListOfMoreThanSixteenMebibytesIsUnreadable) {
  std::string list = "<plist><string>a</string></plist>";
  list.resize(std::size_t{16} << 20U, ' ');
  EXPECT_TRUE(values::readPropertyList(list));
  list += ' ';
  EXPECT_FALSE(values::readPropertyList(list));
}

}  // namespace
}  // namespace tamo::platform
