#include "hardstop/spare_reason.hpp"

#include <gtest/gtest.h>
#include <limits>
#include <ostream>

namespace tamo::HardStop {
namespace {

struct SpareCase {
  const char* name;
  SpareFacts facts;
  std::optional<std::string> reason;
};

void PrintTo(const SpareCase& one, std::ostream* out) {
  *out << one.name;
}

constexpr auto largest = std::numeric_limits<std::uint64_t>::max();

Seen startedAt(std::uint64_t micros) {
  return {.pid = 4242, .startMicros = micros, .group = 4242, .zombie = false};
}

class SpareReasonTest : public ::testing::TestWithParam<SpareCase> {};

TEST_P(SpareReasonTest, IsTheFirstThatHolds) {
  EXPECT_EQ(spareReason(GetParam().facts), GetParam().reason);
}

INSTANTIATE_TEST_SUITE_P(
    Builds, SpareReasonTest,
    ::testing::Values(SpareCase{"ADotWinsOverAllElse",
                                {.build = "1.4.2",
                                 .watched = startedAt(2000),
                                 .helperStartMicros = 1000,
                                 .revertFilesPresent = true},
                                "revert_release"},
                      SpareCase{"ADotAlone", {.build = ".", .watched = startedAt(1)}, "revert_release"},
                      SpareCase{"ADotAtTheEnd", {.build = "42.", .watched = startedAt(1)}, "revert_release"},
                      SpareCase{"NoDot", {.build = "4211", .watched = startedAt(1)}, std::nullopt},
                      SpareCase{"EmptyBuild", {.build = "", .watched = startedAt(1)}, std::nullopt}),
    [](const auto& one) { return one.param.name; });

INSTANTIATE_TEST_SUITE_P(Rest, SpareReasonTest,
                         ::testing::Values(SpareCase{"ARevertFileWinsOverTheAge",
                                                     {.build = "4211",
                                                      .watched = startedAt(2000),
                                                      .helperStartMicros = 1000,
                                                      .revertFilesPresent = true},
                                                     "revert_restoring"},
                                           SpareCase{"ACoreStartedAfterThisProgramIsYoung",
                                                     {.watched = startedAt(1001), .helperStartMicros = 1000},
                                                     "young_core"},
                                           SpareCase{"ACoreOfTheSameMicrosecondIsNotYoung",
                                                     {.watched = startedAt(1000), .helperStartMicros = 1000},
                                                     std::nullopt},
                                           SpareCase{"ACoreStartedBeforeThisProgramIsNotYoung",
                                                     {.watched = startedAt(999), .helperStartMicros = 1000},
                                                     std::nullopt},
                                           SpareCase{"AnUnknownOwnStartMakesNoCoreYoung",
                                                     {.watched = startedAt(largest)},
                                                     std::nullopt},
                                           SpareCase{"StartsAreComparedUnsigned",
                                                     {.watched = startedAt(largest), .helperStartMicros = 1},
                                                     "young_core"},
                                           SpareCase{"StartsAreComparedUnsignedTheOtherWayToo",
                                                     {.watched = startedAt(1), .helperStartMicros = largest},
                                                     std::nullopt}),
                         [](const auto& one) { return one.param.name; });

TEST(RevertFilesTest, AreTheThreeMarkersInTheirOrder) {
  const std::vector<std::string_view> expected{"core.db.revert.pending", "core.db.revert.partial",
                                               "core.db.revert.partial.json"};
  EXPECT_EQ(std::vector<std::string_view>(revertFiles.begin(), revertFiles.end()), expected);
}

}  // namespace
}  // namespace tamo::HardStop
