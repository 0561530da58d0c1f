#include <gtest/gtest.h>

#include "launch/print_reading.hpp"

namespace tamo {
namespace {

/// A job's block with a launch constraint of these lines, and with a pid behind it.
std::string constrained(const std::string& lines) {
  return "gui/501/job = {\n\tLWCR = {\n" + lines + "\t\t\"vers\" => 1\n\t}\n\tpid = 42\n}\n";
}

struct BlockCase {
  const char* name;
  std::string print;
  std::string kept;
};

void PrintTo(const BlockCase& one, std::ostream* out) {
  *out << one.name;
}

std::string named(const ::testing::TestParamInfo<BlockCase>& one) {
  return one.param.name;
}

class QuotedBlocks : public ::testing::TestWithParam<BlockCase> {};

TEST_P(QuotedBlocks, AreLeftOutAndNothingElse) {
  EXPECT_EQ(withoutQuotedBlocks(GetParam().print), GetParam().kept);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, QuotedBlocks,
    ::testing::Values(
        BlockCase{"OfOneEntry", constrained("\t\t\"reqs\" => {\n\t\t\t\"team\" => \"A\"\n\t\t}\n"),
                  constrained("")},
        BlockCase{"OfNothing", constrained("\t\t\"reqs\" => {\n\t\t}\n"), constrained("")},
        BlockCase{"TwoInARow", constrained("\"a\" => {\n}\n\"b\" => {\n}\n"), constrained("")},
        BlockCase{"OneWithinTheOther", constrained("\"a\" => {\n\"b\" => {\n}\nx\n}\n"), constrained("")},
        BlockCase{"APlainBlockWithin", constrained("\"a\" => {\nb = {\n}\nx\n}\n"), constrained("")},
        BlockCase{"AnArrowedBlockWithin", constrained("\"a\" => {\nb => {\n}\nx\n}\n"), constrained("")},
        BlockCase{"ABraceAloneWithin", constrained("\"a\" => {\n{\n}\nx\n}\n"), constrained("")},
        BlockCase{"AnArrayWithin", constrained("\"a\" => {\n\"$in\" => [\n0 = \"x\"\n]\n}\n"),
                  constrained("")},
        BlockCase{"AnArrayThatEndsOnItsLastLine", constrained("\"a\" => {\n\"$in\" => [\n0 = \t\t]\n}\n"),
                  constrained("")},
        BlockCase{"ABraceWithinATextOpensNothing",
                  constrained("\"a\" => {\n\"b\" => \"{x}\"\n\"c\" => \"{\"\n}\n"), constrained("")},
        BlockCase{"AnEmptyName", constrained("\"\" => {\n}\n"), constrained("")},
        BlockCase{"ANameWithAQuote", constrained("\"a\"b\" => {\n}\n"), constrained("")},
        BlockCase{"OneQuoteForBothEnds", constrained("\" => {\n}\n"), constrained("")},
        BlockCase{"BlanksAtTheEnds", constrained("\u00A0 \"a\" => {\t \u3000\n\u2003}\u00A0\n"),
                  constrained("")},
        BlockCase{"AtTheVeryBeginning", "\"a\" => {\n}\nrest\n", "rest\n"},
        BlockCase{"AtTheVeryEnd", "rest\n\"a\" => {\n}", "rest\n"}, BlockCase{"Alone", "\"a\" => {\n}", ""}),
    named);

INSTANTIATE_TEST_SUITE_P(
    Unclosed, QuotedBlocks,
    ::testing::Values(BlockCase{"TakesAllThatFollows", "a = {\n\"b\" => {\npid = 42\n", "a = {\n"},
                      BlockCase{"ByABlockWithin", "a = {\n\"b\" => {\nc = {\n}\npid = 42\n", "a = {\n"},
                      BlockCase{"ByACarriageReturn", "\"b\" => {\n}\r\npid = 42\n", ""},
                      BlockCase{"ByASemicolon", "\"b\" => {\n};\npid = 42\n", ""},
                      BlockCase{"ByAValueThatEndsInABrace", "\"b\" => {\n\"c\" => {x{\n}\npid = 42\n", ""}),
    named);

class OtherTexts : public ::testing::TestWithParam<const char*> {};

TEST_P(OtherTexts, ComeThroughByteForByte) {
  EXPECT_EQ(withoutQuotedBlocks(GetParam()), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Print, OtherTexts,
                         ::testing::Values("", "\n", "\n\n", "pid = 42", "a = {\n}\n",
                                           "com.apple.bird => {\n\tx = 1\n}\n", "NAME => {\n}\n",
                                           "a\" => {\n}\n", "\"a => {\n}\n", "'a' => {\n}\n",
                                           "\"a\" = {\n}\n", "\"a\" =>{\n}\n", "\"a\"=> {\n}\n",
                                           "\"a\" => { \r\n}\n", "\"a\" => {x\n}\n", "\"a\" => {}\n}\n",
                                           "\"a\" => [\n]\n", "x \"a\" => {\n}\n", "\u200B\"a\" => {\n}\n",
                                           "\xFF\"a\" => {\n}\n", "}\n}\n{\n{\n"));

TEST(QuotedBlocksTest, ATextWithoutAQuotedBlockKeepsItsMemory) {
  std::string text(100'000, 'x');
  const auto* const bytes = text.data();
  EXPECT_EQ(withoutQuotedBlocks(std::move(text)).data(), bytes);
}

TEST(QuotedBlocksTest, AZeroByteEndsNoLineAndNoText) {
  const std::string zero(1, '\0');
  EXPECT_EQ(withoutQuotedBlocks("a" + zero + "\n\"b\" => {\n" + zero + "}\n}\n" + zero),
            "a" + zero + "\n" + zero);
}

TEST(QuotedBlocksTest, BlocksThatNestDeeplyAreCounted) {
  std::string text = "\"a\" => {\n";
  for (int level = 0; level < 100'000; ++level)
    text += "\"b\" => {\n";
  for (int level = 0; level < 100'000; ++level)
    text += "}\n";
  EXPECT_EQ(withoutQuotedBlocks(text + "}\npid = 42\n"), "pid = 42\n");
  EXPECT_EQ(withoutQuotedBlocks(text + "pid = 42\n"), "");
}

/// What comes after the last block is read again: nothing of one print is kept for the next.
TEST(QuotedBlocksTest, AnUnclosedBlockOfOnePrintDoesNotReachTheNext) {
  EXPECT_EQ(withoutQuotedBlocks("\"a\" => {\n"), "");
  EXPECT_EQ(withoutQuotedBlocks("\"a\" => {\n}\npid = 42\n"), "pid = 42\n");
}

}  // namespace
}  // namespace tamo
