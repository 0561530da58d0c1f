#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "contract/binary_list_builder.hpp"
#include "values/property_list.hpp"

// Where a list that another reader would take is none for macOS, and where macOS keeps what another would lose.
namespace tamo::platform {
namespace {

std::optional<values::PropertyList> read(const std::string& value) {
  return values::readPropertyList("<plist version=\"1.0\">" + value + "</plist>");
}

bool isUnreadableValue(const std::string& value) {
  return !read(value);
}

std::string textOf(const std::string& value) {
  const auto list = read(value);
  return list && list->text() != nullptr ? *list->text() : "no text";
}

bool isOpaque(const std::string& value) {
  const auto list = read(value);
  return list && std::holds_alternative<values::PropertyList::Other>(list->value);
}

TEST(ValuesListFormsTest, ADateHasOneForm) {
  for (const auto* date : {"2020-01-02T03:04:05Z", "-2020-01-02T03:04:05Z", "12020-01-02T03:04:05Z",
                           "1-01-02T03:04:05Z", "2020-13-32T25:61:61Z"}) {
    EXPECT_TRUE(isOpaque("<date>" + std::string(date) + "</date>")) << date;
  }
  for (const auto* date :
       {"", "a", "2020", "2020-01-02", "2020-01-02T03:04:05", "2020-01-02T03:04:05z", "2020-01-02 03:04:05Z",
        " 2020-01-02T03:04:05Z", "2020-01-02T03:04:05Z ", "2020-01-02T03:04:05+00:00", "2020-1-02T03:04:05Z",
        "2020-01-02T03:04:5Z", "+2020-01-02T03:04:05Z", "2020-01-02T03:04:05.0Z", "2020-01-0aT03:04:05Z"}) {
    EXPECT_TRUE(isUnreadableValue("<date>" + std::string(date) + "</date>")) << date;
  }
  EXPECT_TRUE(isUnreadableValue("<date/>"));
}

TEST(ValuesListFormsTest, DataAreAnyAscii) {
  for (const auto* data : {"", "AQ==", " A\n\tQ = = ", "A", "!$%", "AQ&#61;=", "&amp;"})
    EXPECT_TRUE(isOpaque("<data>" + std::string(data) + "</data>")) << data;
  EXPECT_TRUE(isUnreadableValue("<data>AQ\u00E9==</data>"));
  EXPECT_TRUE(isUnreadableValue("<data/>"));
  EXPECT_TRUE(isUnreadableValue("<array><data /></array>"));
}

TEST(ValuesListFormsTest, NothingStandsBesideTheTextOfAValue) {
  for (const auto* aside : {"<!-- -->", "<?what ever?>"}) {
    for (const auto* kind : {"string", "integer", "real", "data"}) {
      const auto element = std::string("<") + kind + ">5" + aside + "</" + kind + ">";
      EXPECT_TRUE(isUnreadableValue(element)) << element;
    }
    for (const auto* kind : {"string", "true", "false"}) {
      const auto element = std::string("<") + kind + ">" + aside + "</" + kind + ">";
      EXPECT_TRUE(isUnreadableValue(element)) << element;
    }
    EXPECT_TRUE(isUnreadableValue("<date>2020-01-02T03:04:05Z" + std::string(aside) + "</date>"));
    EXPECT_TRUE(isUnreadableValue("<dict><key>a" + std::string(aside) + "</key><true/></dict>"));
  }
}

TEST(ValuesListFormsTest, CommentsAndInstructionsStandBetweenElements) {
  for (const auto* list :
       {"<array><!-- --><true/><?what ever?></array>", "<array><!----></array>",
        "<dict><!-- --><key>a</key><?what ever?><true/><!-- --></dict>", "<!-- --><dict/><?what ever?>"}) {
    EXPECT_FALSE(isUnreadableValue(list)) << list;
  }
}

TEST(ValuesListFormsTest, OnlyATextOrARealIsSpeltWithReferencesAndLiteralParts) {
  EXPECT_EQ(textOf("<string>&#53;<![CDATA[&#53;]]></string>"), "5&#53;");
  EXPECT_EQ(values::exactInt64(*read("<real>&#53;<![CDATA[0]]></real>")), 50);
  EXPECT_EQ(*read("<dict><key>&#97;<![CDATA[b]]></key><string/></dict>")->entry("ab")->text(), "");
  for (const auto* value :
       {"<integer>&#53;</integer>", "<integer>5&#53;</integer>", "<integer><![CDATA[5]]></integer>",
        "<integer>5<![CDATA[]]></integer>", "<date>&#50;020-01-02T03:04:05Z</date>",
        "<date><![CDATA[2020-01-02T03:04:05Z]]></date>", "<data><![CDATA[AQ==]]></data>",
        "<true><![CDATA[]]></true>", "<array>&#32;</array>", "<array><![CDATA[ ]]></array>",
        "<dict>&#10;<key>a</key><true/></dict>", "<true/><![CDATA[]]>", "&#32;<true/>"}) {
    EXPECT_TRUE(isUnreadableValue(value)) << value;
  }
}

TEST(ValuesListFormsTest, TheEndsOfLinesAreKept) {
  EXPECT_EQ(textOf("<string>a\r\nb\rc\nd\r</string>"), "a\r\nb\rc\nd\r");
  EXPECT_EQ(textOf("<string><![CDATA[\r\n\r]]>\r</string>"), "\r\n\r\r");
  EXPECT_EQ(textOf("<string>&#13;\r&#10;</string>"), "\r\r\n");
  EXPECT_NE(read("<dict>\r\n<key>a\r\n</key>\r<true/></dict>")->entry("a\r\n"), nullptr);
}

TEST(ValuesListFormsTest, AByteOrderMarkBelongsToTheTextThatItStandsIn) {
  for (const auto* text : {"\uFEFFa", "<![CDATA[\uFEFFa]]>", "&#xFEFF;a", "&#xfeff;a", "&#65279;a",
                           "<![CDATA[]]>\uFEFFa", "&#x0FEFF;<![CDATA[a]]>"}) {
    EXPECT_EQ(textOf("<string>" + std::string(text) + "</string>"), "\uFEFFa") << text;
  }
  EXPECT_EQ(textOf("<string a=\"b\">\uFEFF\uFEFF</string>"), "\uFEFF\uFEFF");
  EXPECT_EQ(textOf("<string>a\uFEFFb\uFEFF</string>"), "a\uFEFFb\uFEFF");
  const auto list = read("<dict><key>\uFEFFa</key><string>1</string><key>a</key><string>2</string></dict>");
  EXPECT_EQ(*list->entry("\uFEFFa")->text(), "1");
  EXPECT_EQ(*list->entry("a")->text(), "2");
}

TEST(ValuesListFormsTest, AByteOrderMarkMakesNoNumberAndStandsNotBetweenElements) {
  for (const auto* value : {"<integer>\uFEFF5</integer>", "<real>\uFEFF5</real>",
                            "<array>\uFEFF<true/></array>", "<dict>\uFEFF</dict>", "<true>\uFEFF</true>"}) {
    EXPECT_TRUE(isUnreadableValue(value)) << value;
  }
}

TEST(ValuesListFormsTest, ADeclarationWithinTheDocumentMakesItUnreadable) {
  const std::string list = "<plist><string>a</string></plist>";
  EXPECT_TRUE(values::readPropertyList("<!DOCTYPE plist SYSTEM \"x\">" + list));
  EXPECT_FALSE(values::readPropertyList("<!DOCTYPE plist [ ]>" + list));
  EXPECT_FALSE(values::readPropertyList("<!DOCTYPE plist [<!ELEMENT a ANY>]>" + list));
}

TEST(ValuesListFormsTest, ATagEndsAtItsFirstBracket) {
  EXPECT_TRUE(isUnreadableValue("<array a=\">\"/>"));
  for (const auto* name : {">", "["})
    EXPECT_FALSE(values::readPropertyList("<!DOCTYPE plist SYSTEM \"" + std::string(name) +
                                          "\"><plist><true/></plist>"));
  EXPECT_FALSE(isUnreadableValue("<array a=\"/\"/>"));
}

TEST(ValuesBinaryFormsTest, TheTableOfOffsetsIsExact) {
  auto list = BinaryListBuilder().addText("a");
  EXPECT_TRUE(values::readPropertyList(list.bytes()));
  list.behindTable = std::string(1, '\0');
  EXPECT_FALSE(values::readPropertyList(list.bytes()));
  list.behindTable = std::string(2, '\0');
  EXPECT_FALSE(values::readPropertyList(list.bytes()));
  list.statedCount = 2;
  EXPECT_TRUE(values::readPropertyList(list.bytes()));
}

TEST(ValuesBinaryFormsTest, NumbersOfTheTableMayBeOfAnyWidth) {
  for (const std::size_t width : {1U, 2U, 3U, 8U, 9U, 16U}) {
    const auto number = [width](char value) { return std::string(width - 1, '\0') + value; };
    const auto objects = "bplist00\xA2" + number(1) + number(2) +
                         "\x51"
                         "a"
                         "\x51"
                         "b";
    const auto texts = static_cast<char>(objects.size() - 4);
    const auto offsets = number(8) + number(texts) + number(static_cast<char>(texts + 2));
    const auto widths = std::string(6, '\0') + std::string(2, static_cast<char>(width));
    const auto trailer =
        widths + std::string(7, '\0') + '\3' + std::string(15, '\0') + static_cast<char>(objects.size());
    const auto list = values::readPropertyList(objects + offsets + trailer);
    ASSERT_TRUE(list && list->array()) << width;
    EXPECT_EQ(*list->array()->front().text(), "a") << width;
    EXPECT_EQ(*list->array()->back().text(), "b") << width;
  }
}

TEST(ValuesBinaryFormsTest, EveryOffsetLeadsToTheObjects) {
  const auto arrayOf = [](std::uint64_t offset) {
    return BinaryListBuilder().addArray("\1").addOffset(offset).addText("a").bytes();
  };
  constexpr std::uint64_t firstObject = 8;
  constexpr std::uint64_t text = firstObject + 2;
  constexpr std::uint64_t table = text + 2;
  EXPECT_TRUE(values::readPropertyList(arrayOf(text)));
  for (const auto offset : {std::uint64_t{0}, firstObject - 1, table, table + 1, std::uint64_t{0xFFFF}})
    EXPECT_FALSE(values::readPropertyList(arrayOf(offset))) << offset;
  EXPECT_TRUE(values::readPropertyList(BinaryListBuilder().addText("a").addOffset(0).bytes()))
      << "nobody names it";
  EXPECT_FALSE(values::readPropertyList(BinaryListBuilder().addText("a").addOffset(table).bytes()));
}

/// The table begins with a zero, so what reaches into it would be read.
TEST(ValuesBinaryFormsTest, AnObjectLiesInFrontOfTheTable) {
  for (const auto& cut :
       {std::string("\x10"), std::string("\x11\x01"), std::string("\x22\1\1\1"),
        std::string("\x23\1\1\1\1\1\1\1"), std::string("\x33\1\1\1\1\1\1\1"), std::string("\x42\1"),
        std::string("\x52\x61"), std::string("\x61\1"), std::string("\x5F\x10\x02\x61"),
        std::string("\x5F\x10"), std::string("\x5F"), std::string("\xA1"), std::string("\xD1\1")}) {
    EXPECT_FALSE(values::readPropertyList(BinaryListBuilder().add(cut).bytes()));
    EXPECT_FALSE(values::readPropertyList(BinaryListBuilder().addArray("\1").add(cut).bytes()));
  }
}

TEST(ValuesBinaryFormsTest, ACountIsAnInteger) {
  EXPECT_TRUE(values::readPropertyList(BinaryListBuilder().add("\x5F\x10\x01\x61").bytes()));
  for (const auto& count : {"\x20\x01\x61", "\x50\x01\x61", "\xA0\x01\x61"})
    EXPECT_FALSE(values::readPropertyList(BinaryListBuilder().add(std::string("\x5F") + count).bytes()));
}

TEST(ValuesBinaryFormsTest, AByteOrderMarkBelongsToTheText) {
  const auto list =
      values::readPropertyList(BinaryListBuilder().add(std::string("\x62\xFE\xFF\0a", 5)).bytes());
  ASSERT_TRUE(list && list->text());
  EXPECT_EQ(*list->text(), "\uFEFFa");
}

}  // namespace
}  // namespace tamo::platform
