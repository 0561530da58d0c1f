#include "platform/error_report.hpp"

#include <gtest/gtest.h>

namespace tamo::platform {
namespace {

TEST(ErrorReportTest, AWholeReportIsKeptAsItIs) {
  const auto error = errorOf(ErrorReport{
      .domain = "SMAppServiceErrorDomain", .code = -67050, .description = "Operation not permitted"});
  EXPECT_EQ(error.domain(), "SMAppServiceErrorDomain");
  EXPECT_EQ(error.code(), -67050);
  EXPECT_EQ(error.description(), "Operation not permitted");
}

TEST(ErrorReportTest, EmptyTextsAreTexts) {
  const auto error = errorOf(ErrorReport{.domain = "", .code = 0, .description = ""});
  EXPECT_EQ(error.domain(), "");
  EXPECT_EQ(error.code(), 0);
  EXPECT_EQ(error.description(), "");
}

TEST(ErrorReportTest, AFailureWithoutAReportIsStillAFailure) {
  const auto error = errorOf(std::nullopt);
  EXPECT_EQ(error.domain(), "TamoPlatform");
  EXPECT_EQ(error.code(), 1);
  EXPECT_EQ(error.description(), "The operation failed without an error.");
}

TEST(ErrorReportTest, MissingTextsArePlaceholdersBesideTheCode) {
  const auto error = errorOf(ErrorReport{.domain = std::nullopt, .code = 12, .description = std::nullopt});
  EXPECT_EQ(error.domain(), "TamoPlatform");
  EXPECT_EQ(error.code(), 12);
  EXPECT_EQ(error.description(), "The operation failed without a description.");
}

TEST(ErrorReportTest, AReportOfNothingHasTheCodeNought) {
  EXPECT_EQ(errorOf(ErrorReport{}).code(), 0);
}

TEST(ErrorReportTest, AnErrorCaughtAsAnyExceptionSaysItsDescription) {
  const auto error = errorOf(ErrorReport{.domain = "D", .code = 3, .description = "Not today"});
  const std::exception& caught = error;
  EXPECT_STREQ(caught.what(), "Not today");
}

}  // namespace
}  // namespace tamo::platform
