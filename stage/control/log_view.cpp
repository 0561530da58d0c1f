#include "stage/control/log_view.hpp"

#include <fstream>
#include <ios>

#include "stage/common/words.hpp"

namespace tamo::stage {
namespace {

/// The columns of the stage's log (stage_log.hpp).
constexpr std::size_t kLevel = 2;
constexpr std::size_t kShown = 5;
constexpr std::size_t kMarked = 6;

}  // namespace

/// A line of another form is shown as it is: somebody else may write into the file.
std::string viewedLine(std::string_view line, LogView view) {
  const auto found = split(line, '\t');
  if (found.size() <= kMarked) return std::string(line);
  if (view == LogView::Marks) return std::string(found[kMarked]);
  return std::string(found[kLevel]) + " " + std::string(found[kShown]);
}

std::vector<std::string> LogReader::newLines() {
  std::vector<std::string> lines;
  std::ifstream file(path_, std::ios::binary);
  file.seekg(static_cast<std::streamoff>(read_));
  std::string line;
  // A line that is still being written has no break yet and waits for the next call.
  while (std::getline(file, line) && !file.eof()) {
    read_ += line.size() + 1;
    lines.push_back(line);
  }
  return lines;
}

}  // namespace tamo::stage
