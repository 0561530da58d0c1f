#include "values/property_list.hpp"

#include <gtest/gtest.h>
#include <limits>
#include <utility>

namespace tamo::values {
namespace {

using Int64Limits = std::numeric_limits<std::int64_t>;

PropertyList dictionaryWith(const std::string& key, PropertyList value) {
  PropertyList::Dictionary entries;
  entries.emplace(key, std::move(value));
  return PropertyList{std::move(entries)};
}

TEST(PropertyListTest, AnEntryIsFoundByItsExactKey) {
  const auto list = dictionaryWith("Label", PropertyList{std::string("a")});
  ASSERT_NE(list.entry("Label"), nullptr);
  EXPECT_EQ(*list.entry("Label")->text(), "a");
  EXPECT_EQ(list.entry("label"), nullptr);
}

TEST(PropertyListTest, OnlyADictionaryHasEntries) {
  EXPECT_EQ(PropertyList{std::string("Label")}.entry("Label"), nullptr);
  EXPECT_EQ(PropertyList{PropertyList::Array(1)}.entry(""), nullptr);
}

TEST(PropertyListTest, EachKindIsOnlyItself) {
  const PropertyList number{std::int64_t{5}};
  EXPECT_EQ(number.text(), nullptr);
  EXPECT_EQ(number.array(), nullptr);
  EXPECT_EQ(number.dictionary(), nullptr);
}

TEST(ExactInt64Test, AnIntegerInRangeIsItself) {
  EXPECT_EQ(exactInt64(PropertyList{std::int64_t{45}}), 45);
  EXPECT_EQ(exactInt64(PropertyList{Int64Limits::min()}), Int64Limits::min());
  EXPECT_EQ(exactInt64(PropertyList{Int64Limits::max()}), Int64Limits::max());
}

TEST(ExactInt64Test, AnIntegerAboveTheSignedRangeIsNone) {
  EXPECT_EQ(exactInt64(PropertyList{std::uint64_t{1} << 63U}), std::nullopt);
}

TEST(ExactInt64Test, ARealWithoutAFractionCounts) {
  EXPECT_EQ(exactInt64(PropertyList{5.0}), 5);
  EXPECT_EQ(exactInt64(PropertyList{-0.0}), 0);
  EXPECT_EQ(exactInt64(PropertyList{-9223372036854775808.0}), Int64Limits::min());
  EXPECT_EQ(exactInt64(PropertyList{9223372036854774784.0}), 9223372036854774784);
}

TEST(ExactInt64Test, ARealThatIsNoIntegerInRangeIsNone) {
  for (const double real :
       {5.5, 9223372036854775808.0, -9223372036854777856.0, std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(exactInt64(PropertyList{real}), std::nullopt) << real;
  }
}

TEST(ExactInt64Test, OtherKindsAreNone) {
  EXPECT_EQ(exactInt64(PropertyList{true}), std::nullopt);
  EXPECT_EQ(exactInt64(PropertyList{std::string("5")}), std::nullopt);
  EXPECT_EQ(exactInt64(PropertyList{PropertyList::Array()}), std::nullopt);
  EXPECT_EQ(exactInt64(PropertyList{PropertyList::Other()}), std::nullopt);
}

}  // namespace
}  // namespace tamo::values
