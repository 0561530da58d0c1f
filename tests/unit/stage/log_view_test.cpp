#include "stage/control/log_view.hpp"

#include <fstream>
#include <gtest/gtest.h>

#include "temporary_stage.hpp"

namespace tamo::stage {
namespace {

constexpr auto loggedLine =
    "2026-01-02T03:04:05.678Z\t12\terror\tsub\tcat\tsync <private>\t{public:sync} {private}";

TEST(LogViewTest, ALineIsShownWithItsLevelOrWithItsMarks) {
  EXPECT_EQ(viewedLine(loggedLine, LogView::Plain), "error sync <private>");
  EXPECT_EQ(viewedLine(loggedLine, LogView::Marks), "{public:sync} {private}");
}

TEST(LogViewTest, ALineOfAnotherShapeIsShownAsItIs) {
  EXPECT_EQ(viewedLine("only\tthree\tcolumns", LogView::Plain), "only\tthree\tcolumns");
}

TEST(LogViewTest, AGrowingFileIsReadLineByLine) {
  const TemporaryStage stage;
  LogReader reader(stage.root.control("log"));
  EXPECT_TRUE(reader.newLines().empty());
  std::ofstream file(stage.root.control("log"));
  file << "one\ntwo\nhal" << std::flush;
  EXPECT_EQ(reader.newLines(), (std::vector<std::string>{"one", "two"}));
  file << "f\n" << std::flush;
  EXPECT_EQ(reader.newLines(), std::vector<std::string>{"half"});
  EXPECT_TRUE(reader.newLines().empty());
}

}  // namespace
}  // namespace tamo::stage
