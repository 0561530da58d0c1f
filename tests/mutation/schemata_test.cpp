#include "mutation/schemata.hpp"

#include <gtest/gtest.h>

namespace tamo::mutation {
namespace {

/// All mutants of a source that have slots, numbered from 1 on.
std::vector<Numbered> numbered(std::string_view source) {
  const auto words = tokens(source);
  const auto parts = structure(words);
  std::vector<Numbered> all;
  for (auto& mutant : mutants(words, parts))
    if (hasSlot(parts, mutant)) all.push_back({.id = all.size() + 1, .mutant = std::move(mutant)});
  return all;
}

std::string rendered(std::string_view source) {
  const auto text = withAll(source, numbered(source)).text;
  return written(tokens(text), {1, tokens(text).size()});
}

TEST(SchemataTest, ASourceWithoutMutantsStaysAsItIs) {
  EXPECT_EQ(withAll("int  a; // b\n", {}).text, "int  a; // b\n");
}

TEST(SchemataTest, AValueIsChosenAmongItsAlternatives) {
  EXPECT_EQ(rendered("void f() { const auto a = true; }"),
            "void f() { const auto a = ( ::tamo_mutation::is(1) ? ( false ) : (true ) ); }");
}

TEST(SchemataTest, AStatementIsChosenAmongItsAlternatives) {
  EXPECT_EQ(rendered("void f() { a(); }"), "void f() { { if (::tamo_mutation::is(1)) { ; } else {a(); } } }");
}

TEST(SchemataTest, AConditionIsMadeATruthOnBothSides) {
  EXPECT_EQ(
      rendered("void f() { while (a) g(1 + b); }").substr(0, 95),
      "void f() { while (( ::tamo_mutation::is(1) ? static_cast<bool>( !(a) ) : static_cast<bool>(a ) ");
}

TEST(SchemataTest, TwoStatementsThatChangePlacesAreChosenTogether) {
  const auto text = rendered("void f() { a(); b(); }");
  EXPECT_NE(text.find("is(2)) { b(); }"), std::string::npos) << text;
  EXPECT_NE(text.find("is(2)) { a(); }"), std::string::npos) << text;
}

TEST(SchemataTest, AConstantThatIsChosenIsAVariable) {
  EXPECT_EQ(rendered("constexpr int a = 1;").substr(0, 14), "inline int a =");
  EXPECT_EQ(rendered("inline constexpr int a = 1;").substr(0, 14), "inline int a =");
}

TEST(SchemataTest, WhatSuspendsIsNoPartOfAChoice) {
  EXPECT_TRUE(numbered("void f() { const auto a = co_await b(1); }").empty());
}

TEST(SchemataTest, EachLineOfAnAlternativeKnowsItsMutant) {
  const std::string_view source = "void f() { a(); }";
  const auto made = withAll(source, numbered(source));
  std::size_t found = 0;
  for (const auto& [line, ids] : made.owners)
    found += ids.contains(1) ? 1U : 0U;
  EXPECT_GE(found, 2U);
  EXPECT_FALSE(made.owners.contains(1));
}

}  // namespace
}  // namespace tamo::mutation
