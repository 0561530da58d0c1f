#include "mutation/mutants.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mutation/schemata.hpp"

namespace tamo::mutation {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

/// "rule: source with the change", on one line.
std::vector<std::string> changed(std::string_view source) {
  const auto words = tokens(source);
  std::vector<std::string> all;
  for (const auto& mutant : mutants(words, structure(words))) {
    const auto text = withOne(source, mutant);
    all.push_back(std::string(mutant.rule) + ": " + written(tokens(text), {0, tokens(text).size()}));
  }
  return all;
}

/// The changes of one rule to a function's body.
std::vector<std::string> changedBody(std::string_view rule, const std::string& body,
                                     const std::string& head = "void f() ") {
  std::vector<std::string> all;
  const auto start = std::string(rule) + ": " + head + "{ ";
  for (const auto& text : changed(head + "{ " + body + " }"))
    if (text.starts_with(start)) all.push_back(text.substr(start.size(), text.size() - start.size() - 2));
  return all;
}

/// Blanks say nothing here.
std::vector<std::string> dense(std::vector<std::string> texts) {
  for (auto& text : texts)
    std::erase(text, ' ');
  return texts;
}

struct Case {
  const char* rule;
  const char* body;
  std::vector<std::string> expected;
};

TEST(MutantsTest, EachRuleMakesItsChanges) {
  const std::vector<Case> cases{
      {"comparison", "x = a < b;", {"x = a <= b;", "x = a > b;"}},
      {"comparison", "x = a >= b;", {"x = a > b;", "x = a < b;"}},
      {"comparison", "x = a == b;", {"x = a != b;"}},
      {"comparison", "x = f<a>(b);", {}},
      {"and, or", "x = a && b;", {"x = a || b;"}},
      {"and, or", "auto&& x = a;", {}},
      {"not dropped", "x = !a;", {"x = a;"}},
      {"truth", "x = true;", {"x = false;"}},
      {"number", "x = 5s;", {"x = 0s;", "x = 4s;", "x = 6s;"}},
      {"number", "x = 1;", {"x = 0;", "x = 2;"}},
      {"number", "x = 0;", {"x = 1;"}},
      {"number", "x = 1'000;", {"x = 0;", "x = 999;", "x = 1001;"}},
      {"text", "x = \"a\";", {"x = \"~a\";"}},
      {"arithmetic", "x = a + b;", {"x = a - b;"}},
      {"arithmetic", "x = \"a\" + b;", {}},
      {"arithmetic", "++x;", {"--x;"}},
      {"negated", "if (a || b) c();", {"if ( !(a || b) ) c();"}},
      {"negated", "if (a == b) c();", {}},
      {"negated", "x = a ? b : c;", {"x = !(a) ? b : c;"}},
      {"statement dropped", "a(); b();", {"; b();", "a(); ;"}},
      {"statement dropped", "const auto a = b();", {}},
      {"order", "a(); b();", {"b(); a();"}},
      {"order", "a(); if (b) c(); d();", {}},
      {"return dropped", "if (a) return; b();", {"if (a) ; b();"}},
      {"return dropped", "if (a) return b; return c;", {"if (a) ; return c;"}},
      {"element dropped", "x = {a, b};", {"x = { b};", "x = {a };"}},
  };
  for (const auto& each : cases)
    EXPECT_EQ(dense(changedBody(each.rule, each.body)), dense(each.expected))
        << each.rule << ": " << each.body;
}

TEST(MutantsTest, TheAnswerOfADecisionIsTurned) {
  EXPECT_THAT(changedBody("negated", "return a.has(b);", "bool f() "), ElementsAre("return !(a.has(b)) ;"));
  EXPECT_THAT(changedBody("negated", "return a.has(b);", "int f() "), IsEmpty());
}

TEST(MutantsTest, AnAnswerThatMayBeAbsentIs) {
  EXPECT_THAT(changedBody("nothing returned", "return a;", "std::optional<int> f() "),
              ElementsAre("return std::nullopt;"));
}

TEST(MutantsTest, ATableLosesEachOfItsRows) {
  EXPECT_THAT(changed("constexpr std::array names{a, b, c};"),
              UnorderedElementsAre("element dropped: constexpr std::array names{ b, c};",
                                   "element dropped: constexpr std::array names{a, c};",
                                   "element dropped: constexpr std::array names{a, b };"));
}

TEST(MutantsTest, WhatAnIncludeOrACommentSaysStays) {
  EXPECT_THAT(changed("#include \"a.hpp\"\n// 5 < 6\n"), IsEmpty());
}

TEST(MutantsTest, AFunctionWithoutABodyHasNoNumber) {
  EXPECT_THAT(changed("struct A { virtual int f(int a) const = 0; virtual void g() = 0; };"), IsEmpty());
  EXPECT_THAT(changed("struct A { int a = 0; };"), ElementsAre("number: struct A { int a = 1 ; };"));
}

TEST(MutantsTest, TheBodyOfALambdaIsChangedLikeAnyOther) {
  EXPECT_THAT(changedBody("statement dropped", "run([] { a(); });"), IsSupersetOf({"run([] { ; });", ";"}));
}

}  // namespace
}  // namespace tamo::mutation
