#include "stage/control/property_list_text.hpp"

#include <gtest/gtest.h>

namespace tamo::stage {
namespace {

using values::PropertyList;

PropertyList sample() {
  const PropertyList::Array inner = {{.value = std::string("a < b & c > d")}, {.value = std::string()}};
  return {.value = PropertyList::Dictionary{{"array", {.value = inner}},
                                            {"flag", {.value = true}},
                                            {"number", {.value = std::int64_t{-20}}},
                                            {"text with \"é\"", {.value = std::string("line\nbreak")}}}};
}

void expectSample(const std::optional<PropertyList>& read) {
  ASSERT_TRUE(read);
  EXPECT_EQ(*read->entry("array")->array()->at(0).text(), "a < b & c > d");
  EXPECT_EQ(*read->entry("array")->array()->at(1).text(), "");
  EXPECT_TRUE(std::get<bool>(read->entry("flag")->value));
  EXPECT_EQ(exactInt64(*read->entry("number")), -20);
  EXPECT_EQ(*read->entry("text with \"é\"")->text(), "line\nbreak");
}

TEST(PropertyListTextTest, TheXmlFormIsReadAsItWasMeant) {
  expectSample(values::readPropertyList(xmlPropertyList(sample())));
}

TEST(PropertyListTextTest, TheBinaryFormIsReadAsItWasMeant) {
  const auto bytes = binaryPropertyList(sample());
  EXPECT_TRUE(bytes.starts_with("bplist00"));
  expectSample(values::readPropertyList(bytes));
}

TEST(PropertyListTextTest, AListWithADateIsNotWritten) {
  EXPECT_DEATH(static_cast<void>(xmlPropertyList({})), "writes no such property list");
}

}  // namespace
}  // namespace tamo::stage
