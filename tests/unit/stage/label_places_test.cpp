#include "stage/picture/label_places.hpp"

#include <gtest/gtest.h>

namespace tamo::stage {
namespace {

TEST(LabelPlacesTest, WhoComesFirstStandsWhereItShould) {
  LabelPlaces places(100, 5);
  EXPECT_EQ(places.place(20, 30), 20);
}

TEST(LabelPlacesTest, WhoWouldTouchAnotherMovesAsFarAsItMayOrHasNoPlace) {
  LabelPlaces places(100, 5);
  static_cast<void>(places.place(20, 30));
  EXPECT_EQ(places.place(40, 10), std::nullopt);
  EXPECT_EQ(places.place(40, 10, 14), std::nullopt);
  EXPECT_EQ(places.place(40, 10, 15), 55);
  EXPECT_EQ(places.place(4, 10), 4) << "ends just before the gap";
  EXPECT_EQ(places.place(84, 10), 84);
}

TEST(LabelPlacesTest, AtTheEndOfTheLineATextMovesLeft) {
  LabelPlaces places(100, 5);
  EXPECT_EQ(places.place(95, 20), 80);
  EXPECT_EQ(places.place(-3, 20), 0);
  EXPECT_EQ(places.place(10, 101), std::nullopt);
}

}  // namespace
}  // namespace tamo::stage
