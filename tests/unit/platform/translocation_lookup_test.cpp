#include "platform/translocation_lookup.hpp"

#include <gtest/gtest.h>
#include <stdexcept>
#include <vector>

namespace tamo::platform {
namespace {

using Texts = std::vector<std::string>;

/// A loader that notes each call. Its library and its function are addresses of members, or null.
class TranslocationLookupTest : public ::testing::Test {
 protected:
  std::optional<std::string> lookUp(const TranslocationQuestion& answer) {
    const TranslocationQuestion ask = [&](void* asked) {
      EXPECT_EQ(asked, &functionPlace);
      calls.emplace_back("ask");
      return answer(asked);
    };
    return translocatedFrom(loader, ask);
  }

  Texts calls;
  char libraryPlace = 0;
  char functionPlace = 0;
  void* library = &libraryPlace;
  void* function = &functionPlace;
  const LibraryLoader loader{.open =
                                 [this](const char* path, int mode) {
                                   calls.push_back("open " + std::string(path) + " " + std::to_string(mode));
                                   return library;
                                 },
                             .find =
                                 [this](void* from, const char* symbol) {
                                   EXPECT_EQ(from, library);
                                   calls.push_back("find " + std::string(symbol));
                                   return function;
                                 },
                             .close =
                                 [this](void* closed) {
                                   EXPECT_EQ(closed, library);
                                   calls.emplace_back("close");
                                 }};
  const std::string opening = "open /System/Library/Frameworks/Security.framework/Security 1";
  const std::string finding = "find SecTranslocateCreateOriginalPathForURL";
};

TEST_F(TranslocationLookupTest, TheAnswerIsGivenAfterTheLibraryIsClosed) {
  const auto answer = lookUp([](void*) { return "/Users/u/Downloads/Tamo.app"; });
  EXPECT_EQ(answer, "/Users/u/Downloads/Tamo.app");
  EXPECT_EQ(calls, (Texts{opening, finding, "ask", "close"}));
}

TEST_F(TranslocationLookupTest, NoAnswerIsAbsentAndStillCloses) {
  EXPECT_EQ(lookUp([](void*) { return std::nullopt; }), std::nullopt);
  EXPECT_EQ(calls, (Texts{opening, finding, "ask", "close"}));
}

TEST_F(TranslocationLookupTest, AMissingFunctionIsNotAskedAndStillCloses) {
  function = nullptr;
  EXPECT_EQ(lookUp([](void*) { return "/x"; }), std::nullopt);
  EXPECT_EQ(calls, (Texts{opening, finding, "close"}));
}

TEST_F(TranslocationLookupTest, ALibraryThatDidNotOpenIsNotClosed) {
  library = nullptr;
  EXPECT_EQ(lookUp([](void*) { return "/x"; }), std::nullopt);
  EXPECT_EQ(calls, Texts{opening});
}

TEST_F(TranslocationLookupTest, AQuestionThatRaisesStillCloses) {
  const TranslocationQuestion raises = [](void*) -> std::optional<std::string> {
    throw std::runtime_error("no memory");
  };
  EXPECT_THROW(static_cast<void>(lookUp(raises)), std::runtime_error);
  EXPECT_EQ(calls, (Texts{opening, finding, "ask", "close"}));
}

}  // namespace
}  // namespace tamo::platform
