#include "hardstop/spare_reason.hpp"

#include <gtest/gtest.h>
#include <limits>
#include <ostream>
#include <vector>

namespace tamo::HardStop {
namespace {

constexpr auto lastStart = std::numeric_limits<std::uint64_t>::max();

/// The facts as plain values, and the reason; null stands for absent.
struct SpareCase {
  const char* name;
  const char* build = nullptr;
  std::uint64_t coreStart = 1000;
  std::optional<std::uint64_t> ownStart = std::nullopt;
  bool revertFile = false;
  const char* reason = nullptr;
};

void PrintTo(const SpareCase& one, std::ostream* out) {
  *out << one.name;
}

std::optional<std::string> optionalText(const char* text) {
  if (text == nullptr) return std::nullopt;
  return text;
}

class SpareReasonTest : public ::testing::TestWithParam<SpareCase> {};

TEST_P(SpareReasonTest, IsTheFirstThatHolds) {
  const auto& given = GetParam();
  const SpareFacts facts{
      .build = optionalText(given.build),
      .watched = {.pid = 4242, .startMicros = given.coreStart, .group = 4242, .zombie = false},
      .helperStartMicros = given.ownStart,
      .revertFilesPresent = given.revertFile,
  };
  EXPECT_EQ(spareReason(facts), optionalText(given.reason));
}

constexpr SpareCase cases[] = {
    {.name = "NothingIsKnown"},
    {.name = "ADotWinsOverAllElse",
     .build = "1.4.2",
     .ownStart = 999,
     .revertFile = true,
     .reason = "revert_release"},
    {.name = "ADotAlone", .build = ".", .reason = "revert_release"},
    {.name = "ADotAtTheEnd", .build = "42.", .reason = "revert_release"},
    {.name = "NoDot", .build = "4211"},
    {.name = "EmptyBuild", .build = ""},
    {.name = "OnlyAFullStopIsADot", .build = "1,4-2\u00B70\uFF0E5\u30026"},
    {.name = "ADotAmongLetters", .build = "beta.4211", .reason = "revert_release"},
    {.name = "ARevertFileWinsOverTheAge",
     .build = "4211",
     .ownStart = 999,
     .revertFile = true,
     .reason = "revert_restoring"},
    {.name = "ARevertFileAlone", .revertFile = true, .reason = "revert_restoring"},
    {.name = "ACoreStartedAfterThisProgramIsYoung", .ownStart = 999, .reason = "young_core"},
    {.name = "ACoreOfTheSameMicrosecondIsNotYoung", .ownStart = 1000},
    {.name = "ACoreStartedBeforeThisProgramIsNotYoung", .ownStart = 1001},
    {.name = "AnUnknownOwnStartMakesNoCoreYoung", .coreStart = lastStart},
    {.name = "AnOwnStartOfZeroIsKnown", .ownStart = 0, .reason = "young_core"},
    {.name = "ACoreThatStartedAtZeroIsNotYoung", .coreStart = 0, .ownStart = 0},
    {.name = "OneMicrosecondLaterIsYoung",
     .coreStart = 1'700'000'000'000'001,
     .ownStart = 1'700'000'000'000'000,
     .reason = "young_core"},
    {.name = "StartsAreComparedUnsigned", .coreStart = lastStart, .ownStart = 1, .reason = "young_core"},
    {.name = "StartsAreComparedUnsignedTheOtherWayToo", .coreStart = 1, .ownStart = lastStart},
};

INSTANTIATE_TEST_SUITE_P(Facts, SpareReasonTest, ::testing::ValuesIn(cases),
                         [](const auto& one) { return one.param.name; });

TEST(RevertFilesTest, AreTheThreeMarkersInTheirOrder) {
  const std::vector<std::string_view> expected{"core.db.revert.pending", "core.db.revert.partial",
                                               "core.db.revert.partial.json"};
  EXPECT_EQ(std::vector<std::string_view>(revertFiles.begin(), revertFiles.end()), expected);
}

}  // namespace
}  // namespace tamo::HardStop
