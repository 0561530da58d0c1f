#include <gtest/gtest.h>

#include "contract/binary_list_builder.hpp"
#include "platform/property_list.hpp"

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
  EXPECT_FALSE(readPropertyList("{ ProgramArguments = (\"/bin/sh\", \"-c\"); ExitTimeOut = 20; }"));
  EXPECT_FALSE(readPropertyList("\"a\""));
}

TEST(ValuesLimitsTest, AnXmlListMayBeNestedFiveHundredAndTwelveTimes) {
  EXPECT_TRUE(readPropertyList(nested(512)));
  EXPECT_FALSE(readPropertyList(nested(513)));
  EXPECT_FALSE(readPropertyList(nested(100'000)));
}

TEST(ValuesLimitsTest, AnXmlListMayHaveTenThousandValues) {
  const auto list = [](std::size_t texts) {
    std::string items;
    for (std::size_t item = 0; item < texts; ++item)
      items += "<string/>";
    return "<plist><array>" + items + "</array></plist>";
  };
  EXPECT_TRUE(readPropertyList(list(9'999)));
  EXPECT_FALSE(readPropertyList(list(10'000)));
}

TEST(ValuesLimitsTest, ABinaryListMayShareItsObjects) {
  EXPECT_TRUE(readPropertyList(shared(120, 1)));
  EXPECT_TRUE(readPropertyList(shared(3, 14)));
}

TEST(ValuesLimitsTest, ABinaryListThatSharingMakesHugeIsUnreadable) {
  EXPECT_FALSE(readPropertyList(shared(4, 14)));
  EXPECT_FALSE(readPropertyList(shared(100, 14)));
}

TEST(ValuesLimitsTest, AnIntegerOfMoreThanSixtyFourBitsIsUnreadable) {
  EXPECT_FALSE(readPropertyList(BinaryListBuilder().add("\x14\0\0\0\0\0\0\0\1\0\0\0\0\0\0\0\5"s).bytes()));
  EXPECT_FALSE(readPropertyList(BinaryListBuilder().add("\x15" + std::string(32, '\0')).bytes()));
}

TEST(ValuesLimitsTest, ASetMakesABinaryListUnreadable) {
  EXPECT_FALSE(readPropertyList(BinaryListBuilder().add("\xC1\1").addText("a").bytes()));
  EXPECT_FALSE(readPropertyList(BinaryListBuilder().addArray("\1").add("\xC1\2").addText("a").bytes()));
}

TEST(ValuesLimitsTest, AKeyWithAZeroInItMakesABinaryListUnreadable) {
  const auto withKey = [](const std::string& key) {
    return BinaryListBuilder().addDictionary("\1", "\2").add(key).addText("value").bytes();
  };
  EXPECT_TRUE(readPropertyList(withKey("\x53key"s)));
  EXPECT_FALSE(readPropertyList(withKey("\x53k\0y"s)));
  EXPECT_FALSE(readPropertyList(withKey("\x5F\x10\x03k\0y"s)));
  EXPECT_TRUE(readPropertyList(withKey("\x62\0k\1\0"s)));
  EXPECT_FALSE(readPropertyList(withKey("\x62\0k\0\0"s)));
}

TEST(ValuesLimitsTest, AKeyThatIsNoTextMakesABinaryListUnreadable) {
  for (const auto& key : {"\x09"s, "\x10\x05"s, "\x42kk"s, "\xA0"s})
    EXPECT_FALSE(
        readPropertyList(BinaryListBuilder().addDictionary("\1", "\2").add(key).addText("value").bytes()));
}

TEST(ValuesLimitsTest, ACountBeyondTheBytesMakesABinaryListUnreadable) {
  const std::string most(8, '\xFF');
  for (const auto& count : {"\x13" + most, "\x13\0\0\0\0\x7F\0\0\0"s, "\x14"s, "\x1F"s}) {
    EXPECT_FALSE(readPropertyList(BinaryListBuilder().add("\xAF" + count).bytes()));
    EXPECT_FALSE(readPropertyList(BinaryListBuilder().add("\xDF" + count).bytes()));
    const auto key = "\x5F" + count;
    EXPECT_FALSE(
        readPropertyList(BinaryListBuilder().addDictionary("\1", "\2").add(key).addText("value").bytes()));
  }
}

TEST(ValuesLimitsTest, OneUnreadableTextMakesABinaryListUnreadable) {
  const auto broken = "\x51\xE9"s;
  EXPECT_FALSE(readPropertyList(BinaryListBuilder().addArray("\1\2").addText("a").add(broken).bytes()));
  EXPECT_FALSE(
      readPropertyList(BinaryListBuilder().addDictionary("\1", "\2").addText("key").add(broken).bytes()));
  EXPECT_FALSE(
      readPropertyList(BinaryListBuilder().addDictionary("\1", "\2").add(broken).addText("value").bytes()));
}

TEST(ValuesLimitsTest, AListOfMoreThanSixteenMebibytesIsUnreadable) {
  std::string list = "<plist><string>a</string></plist>";
  list.resize(std::size_t{16} << 20U, ' ');
  EXPECT_TRUE(readPropertyList(list));
  list += ' ';
  EXPECT_FALSE(readPropertyList(list));
}

}  // namespace
}  // namespace tamo::platform
