#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <vector>

#include "contract/binary_list_builder.hpp"
#include "values/property_list.hpp"
#include "values/text.hpp"

// The truth is what macOS reads; every backend's reader is held to it.
namespace tamo::platform {
namespace {

using namespace std::string_literals;

constexpr auto least = std::numeric_limits<std::int64_t>::min();
constexpr auto most = std::numeric_limits<std::int64_t>::max();

std::string document(const std::string& value) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
         "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
         "<plist version=\"1.0\">" +
         value + "</plist>\n";
}

template <class Kind>
std::optional<Kind> read(const std::string& bytes) {
  const auto list = values::readPropertyList(bytes);
  const auto* value = list ? std::get_if<Kind>(&list->value) : nullptr;
  if (value == nullptr) return std::nullopt;
  return *value;
}

template <class Kind>
std::optional<Kind> readXml(const std::string& value) {
  return read<Kind>(document(value));
}

bool isUnreadable(const std::string& bytes) {
  return !values::readPropertyList(bytes);
}

TEST(ValuesXmlListTest, ADictionaryHoldsEveryKind) {
  const auto list = values::readPropertyList(
      document("<dict><key>t</key><string>a</string><key>n</key><integer>5</integer><key>r</key>"
               "<real>0.5</real><key>y</key><true/><key>o</key><false/><key>l</key><array><string>b</string>"
               "<array/></array><key>d</key><dict/><key>w</key><date>2020-01-02T03:04:05Z</date>"
               "<key>x</key><data>AQ==</data></dict>"));
  ASSERT_TRUE(list && list->dictionary());
  EXPECT_EQ(list->dictionary()->size(), 9U);
  EXPECT_EQ(*list->entry("t")->text(), "a");
  EXPECT_EQ(values::exactInt64(*list->entry("n")), 5);
  EXPECT_EQ(std::get<double>(list->entry("r")->value), 0.5);
  EXPECT_TRUE(std::get<bool>(list->entry("y")->value));
  EXPECT_FALSE(std::get<bool>(list->entry("o")->value));
  EXPECT_EQ(*list->entry("l")->array()->front().text(), "b");
  EXPECT_TRUE(list->entry("l")->array()->back().array()->empty());
  EXPECT_TRUE(list->entry("d")->dictionary()->empty());
  EXPECT_TRUE(std::holds_alternative<values::PropertyList::Other>(list->entry("w")->value));
  EXPECT_TRUE(std::holds_alternative<values::PropertyList::Other>(list->entry("x")->value));
}

TEST(ValuesXmlListTest, AnIntegerHasASignWhiteSpaceBeforeItAndTwoBases) {
  const std::vector<std::pair<std::string, std::int64_t>> table{
      {"0", 0},
      {"-0", 0},
      {"010", 10},
      {"000", 0},
      {"+5", 5},
      {"-5", -5},
      {" \n\t7", 7},
      {" - 7", -7},
      {"+\n7", 7},
      {"0x1F", 31},
      {"0XaB", 171},
      {"-0x10", -16},
      {"0x0", 0},
      {"9223372036854775807", most},
      {"-9223372036854775808", least},
      {"-0x8000000000000000", least},
  };
  for (const auto& [text, value] : table) {
    EXPECT_EQ(readXml<std::int64_t>("<integer>" + text + "</integer>"), value) << text;
  }
}

TEST(ValuesXmlListTest, AnIntegerAboveTheSignedRangeIsRead) {
  EXPECT_EQ(readXml<std::uint64_t>("<integer>9223372036854775808</integer>"), std::uint64_t{1} << 63U);
  EXPECT_EQ(readXml<std::uint64_t>("<integer>0xFFFFFFFFFFFFFFFF</integer>"),
            std::numeric_limits<std::uint64_t>::max());
}

TEST(ValuesXmlListTest, OneWrongIntegerMakesTheListUnreadable) {
  for (const auto* text : {"",
                           " ",
                           "+",
                           "-",
                           "+-5",
                           "--5",
                           "abc",
                           "5x",
                           "5 ",
                           "5.0",
                           "1e3",
                           "0x",
                           "0xG",
                           "1F",
                           "0x-1",
                           "00x5",
                           "5 6",
                           "\u0665",
                           "18446744073709551616",
                           "0x10000000000000000",
                           "-9223372036854775809"}) {
    EXPECT_TRUE(isUnreadable(document("<array><integer>"s + text + "</integer></array>"))) << text;
  }
  EXPECT_TRUE(isUnreadable(document("<integer/>")));
}

TEST(ValuesXmlListTest, ARealIsDecimalInfiniteOrNotANumber) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const std::vector<std::pair<std::string, double>> table{
      {"5", 5},
      {"5.0", 5},
      {"-0.25", -0.25},
      {"+1.5e3", 1500},
      {".5", 0.5},
      {"5.", 5},
      {"1E-2", 0.01},
      {"inf", infinity},
      {"+Infinity", infinity},
      {"-INF", -infinity},
      {"9223372036854775808", 9223372036854775808.0},
  };
  for (const auto& [text, value] : table) {
    EXPECT_EQ(readXml<double>("<real>" + text + "</real>"), value) << text;
  }
  for (const auto* text : {"nan", "NaN"}) {
    const auto value = readXml<double>("<real>"s + text + "</real>");
    EXPECT_TRUE(value && std::isnan(*value)) << text;
  }
}

TEST(ValuesXmlListTest, OneWrongRealMakesTheListUnreadable) {
  for (const auto* text : {"", ".", "5x", "1,5", "1e", "1.5.5", "--1", "infinit", "nan(1)", "0x10", "5 5"}) {
    EXPECT_TRUE(isUnreadable(document("<real>"s + text + "</real>"))) << text;
  }
}

TEST(ValuesXmlListTest, ATextMayHaveEntitiesReferencesAndLiteralParts) {
  EXPECT_EQ(readXml<std::string>("<string>a&amp;&lt;&gt;&quot;&apos;&#233;&#x1F600;</string>"),
            "a&<>\"'\u00E9\U0001F600");
  EXPECT_EQ(readXml<std::string>("<string>a<![CDATA[<b>&amp;]]>c</string>"), "a<b>&amp;c");
  EXPECT_EQ(readXml<std::string>("<string> a\n\tb </string>"), " a\n\tb ");
  EXPECT_EQ(readXml<std::string>("<string/>"), "");
}

TEST(ValuesXmlListTest, CommentsAndInstructionsBetweenElementsAreSkipped) {
  EXPECT_EQ(readXml<std::string>("<!-- <integer>x</integer> --><?what ever?><string>a</string>"), "a");
}

TEST(ValuesXmlListTest, AByteOrderMarkIsAccepted) {
  EXPECT_EQ(read<std::string>("\xEF\xBB\xBF" + document("<string>a</string>")), "a");
}

TEST(ValuesXmlListTest, TheDeclarationsAreOptional) {
  EXPECT_EQ(read<std::string>("<plist><string>a</string></plist>"), "a");
}

TEST(ValuesXmlListTest, ADictionaryIsPairsOfKeysAndValues) {
  for (const auto* value :
       {"<dict><key>a</key></dict>", "<dict><string>a</string></dict>",
        "<dict><key>a</key><string/><key>b</key></dict>", "<dict><key>a</key><string/><string/></dict>",
        "<dict>a</dict>", "<dict><key>a</key>=<string/></dict>", "<dict><key>a<b/></key><string/></dict>"}) {
    EXPECT_TRUE(isUnreadable(document(value))) << value;
  }
}

TEST(ValuesXmlListTest, OnlyKnownElementsInTheirPlacesAreAList) {
  for (const auto* value :
       {"", "a", "<what/>", "<String>a</String>", "<string/><string/>", "<string><string/></string>",
        "<true>yes</true>", "<array>a</array>", "<array><what/></array>", "<integer><true/></integer>"}) {
    EXPECT_TRUE(isUnreadable(document(value))) << value;
  }
}

TEST(ValuesXmlListTest, ADocumentThatIsNotWellFormedIsUnreadable) {
  const auto whole = document("<string>a</string>");
  for (const auto& bytes :
       {""s, "<plist>"s, "<plist><string>a</plist></string>"s, "<plist><string>a</string>"s,
        document("<string>a & b</string>"), document("<string>&nbsp;</string>"),
        document("<string>\xC3\x28</string>"), document("<string>\xED\xA0\x80</string>"), "a"s + whole}) {
    EXPECT_TRUE(isUnreadable(bytes)) << bytes;
  }
}

TEST(ValuesXmlListTest, EntitiesOfItsOwnMakeADocumentUnreadable) {
  EXPECT_TRUE(isUnreadable("<!DOCTYPE plist [<!ENTITY a \"b\">]><plist><string>&a;</string></plist>"));
  EXPECT_TRUE(isUnreadable("<!DOCTYPE plist SYSTEM \"x\"><plist><string>&a;</string></plist>"));
}

TEST(ValuesBinaryListTest, ADictionaryHoldsWhatItsReferencesName) {
  const auto list = values::readPropertyList(BinaryListBuilder()
                                                 .addDictionary("\1\2\3", "\4\5\6")
                                                 .addText("t")
                                                 .addText("l")
                                                 .addText("y")
                                                 .addText("a")
                                                 .addArray("\4\1")
                                                 .add("\x09")
                                                 .bytes());
  ASSERT_TRUE(list && list->dictionary());
  EXPECT_EQ(list->dictionary()->size(), 3U);
  EXPECT_EQ(*list->entry("t")->text(), "a");
  ASSERT_EQ(list->entry("l")->array()->size(), 2U);
  EXPECT_EQ(*list->entry("l")->array()->back().text(), "t");
  EXPECT_TRUE(std::get<bool>(list->entry("y")->value));
}

TEST(ValuesBinaryListTest, OnlyIntegersOfEightBytesHaveASign) {
  const std::vector<std::pair<std::string, std::int64_t>> table{
      {"\x10\xFB", 251},
      {"\x11\xFF\xFB", 65531},
      {"\x12\xFF\xFF\xFF\xFB", 4294967291},
      {"\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFB", -5},
      {"\x13\x80\0\0\0\0\0\0\0"s, least},
      {"\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF", most},
      {"\x14\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\5"s, 5},
  };
  for (const auto& [object, value] : table) {
    EXPECT_EQ(read<std::int64_t>(BinaryListBuilder().add(object).bytes()), value);
  }
}

TEST(ValuesBinaryListTest, AnIntegerOfSixteenBytesAboveTheSignedRangeIsRead) {
  EXPECT_EQ(read<std::uint64_t>(
                BinaryListBuilder().add("\x14\0\0\0\0\0\0\0\0\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFB"s).bytes()),
            18446744073709551611U);
  EXPECT_EQ(read<std::uint64_t>(BinaryListBuilder().add("\x14\0\0\0\0\0\0\0\0\x80\0\0\0\0\0\0\0"s).bytes()),
            std::uint64_t{1} << 63U);
}

TEST(ValuesBinaryListTest, RealsDatesAndDataAreRead) {
  EXPECT_EQ(read<double>(BinaryListBuilder().add("\x23\x40\x14\0\0\0\0\0\0"s).bytes()), 5.0);
  EXPECT_EQ(read<double>(BinaryListBuilder().add("\x22\x40\xA0\0\0"s).bytes()), 5.0);
  EXPECT_TRUE(read<values::PropertyList::Other>(BinaryListBuilder().add("\x33\x41\0\0\0\0\0\0\0"s).bytes()));
  EXPECT_TRUE(read<values::PropertyList::Other>(BinaryListBuilder().add("\x42\1\2").bytes()));
}

TEST(ValuesBinaryListTest, AWideTextBecomesUtf8) {
  EXPECT_EQ(read<std::string>(BinaryListBuilder().add("\x63\0\xE9\xD8\x3D\xDE\0"s).bytes()),
            "\u00E9\U0001F600");
}

TEST(ValuesBinaryListTest, ALongContainerStatesItsCountApart) {
  const std::string sixteen(16, '\1');
  const auto list =
      values::readPropertyList(BinaryListBuilder().add("\xAF\x10\x10" + sixteen).addText("a").bytes());
  ASSERT_TRUE(list && list->array());
  EXPECT_EQ(list->array()->size(), 16U);
}

/// Of a Mac the first eight bytes are a word of the old ASCII form.
TEST(ValuesBinaryListTest, AListThatIsCutOffBehindItsFrontIsUnreadable) {
  const auto whole = BinaryListBuilder().addDictionary("\1", "\2").addText("key").addText("value").bytes();
  ASSERT_FALSE(isUnreadable(whole));
  EXPECT_TRUE(isUnreadable(""));
  for (std::size_t size = 9; size < whole.size(); ++size) {
    EXPECT_TRUE(isUnreadable(whole.substr(0, size))) << size << " bytes of " << whole.size();
  }
}

TEST(ValuesBinaryListTest, ReferencesToNowhereMakeAListUnreadable) {
  EXPECT_TRUE(isUnreadable(BinaryListBuilder().addArray("\7").bytes()));
  EXPECT_TRUE(isUnreadable(BinaryListBuilder().addArray("\1").add("\x5E").bytes()));
  auto topless = BinaryListBuilder().addText("a");
  topless.top = 3;
  EXPECT_TRUE(isUnreadable(topless.bytes()));
  auto countless = BinaryListBuilder().addText("a");
  countless.statedCount = 60000;
  EXPECT_TRUE(isUnreadable(countless.bytes()));
}

TEST(ValuesBinaryListTest, AContainerWithinItselfIsUnreadable) {
  EXPECT_TRUE(isUnreadable(BinaryListBuilder().addArray("\0"s).bytes()));
  EXPECT_TRUE(isUnreadable(BinaryListBuilder().addArray("\1").addArray("\0"s).bytes()));
}

TEST(ValuesBinaryListTest, AKeyThatIsNoTextMakesAListUnreadable) {
  EXPECT_TRUE(isUnreadable(BinaryListBuilder().addDictionary("\1", "\2").add("\x10\5").addText("a").bytes()));
}

TEST(ValuesListTest, AKeyThatAnXmlDictionaryHasTwiceKeepsItsLastValue) {
  const auto xml = values::readPropertyList(
      document("<dict><key>a</key><string>1</string><key>a</key><string>2</string></dict>"));
  EXPECT_EQ(*xml->entry("a")->text(), "2");
}

TEST(ValuesListTest, AKeyThatABinaryDictionaryHasTwiceKeepsItsFirstValue) {
  const auto objects =
      BinaryListBuilder().addDictionary("\1\1", "\2\3").addText("a").addText("1").addText("2");
  EXPECT_EQ(*values::readPropertyList(objects.bytes())->entry("a")->text(), "1");
  const auto twoTexts = BinaryListBuilder()
                            .addDictionary("\1\2\1", "\3\4\4")
                            .addText("a")
                            .addText("a")
                            .addText("1")
                            .addText("2");
  EXPECT_EQ(*values::readPropertyList(twoTexts.bytes())->entry("a")->text(), "1");
}

struct Reading {
  std::string file;
  std::string kind;
  std::string version;
  std::string arguments;
  std::string exitTimeout;
};

std::string contentsOf(const std::string& name) {
  std::ifstream stream(std::string(TAMO_SOURCE_DIR) + "/tests/data/plists/" + name, std::ios::binary);
  std::ostringstream bytes;
  bytes << stream.rdbuf();
  return bytes.str();
}

std::vector<Reading> expectedReadings() {
  std::vector<Reading> readings;
  std::istringstream table(contentsOf("readings.tsv"));
  for (std::string line; std::getline(table, line);) {
    if (line.starts_with('#')) continue;
    Reading row;
    std::istringstream fields(line);
    for (auto* field : {&row.file, &row.kind, &row.version, &row.arguments, &row.exitTimeout}) {
      std::getline(fields, *field, '\t');
    }
    readings.push_back(row);
  }
  return readings;
}

std::string shown(const values::PropertyList* list) {
  if (list == nullptr) return "-";
  if (const auto* text = list->text()) return *text;
  if (const auto number = values::exactInt64(*list)) return std::to_string(*number);
  std::string joined;
  for (const auto& item : *list->array())
    joined += (joined.empty() ? "" : "|") + *item.text();
  return joined;
}

Reading readingOf(const std::string& file) {
  const auto list = values::readPropertyList(contentsOf(file));
  if (!list) return {file, "unreadable", "-", "-", "-"};
  return {file, list->dictionary() != nullptr ? "dictionary" : "array", shown(list->entry("CFBundleVersion")),
          shown(list->entry("ProgramArguments")), shown(list->entry("ExitTimeOut"))};
}

TEST(ValuesListTest, FilesOfRealApplicationsAndAgentsReadAsTheTableSays) {
  const auto expected = expectedReadings();
  EXPECT_EQ(expected.size(), 19U);
  for (const auto& row : expected) {
    const auto seen = readingOf(row.file);
    EXPECT_EQ(seen.kind, row.kind) << row.file;
    EXPECT_EQ(seen.version, row.version) << row.file;
    EXPECT_EQ(seen.arguments, row.arguments) << row.file;
    EXPECT_EQ(seen.exitTimeout, row.exitTimeout) << row.file;
  }
}

}  // namespace
}  // namespace tamo::platform
