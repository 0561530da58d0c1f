#include <ctime>
#include <fstream>
#include <iostream>
#include <sys/ioctl.h>
#include <unistd.h>

#include "platform/posix/posix_files.hpp"
#include "stage/common/stage_census.hpp"
#include "stage/common/stage_error.hpp"
#include "stage/control/stage_commands.hpp"
#include "stage/control/stage_layout.hpp"
#include "stage/picture/picture_of.hpp"
#include "stage/picture/picture_svg.hpp"
#include "stage/picture/picture_text.hpp"

namespace tamo::stage {
namespace {

/// By the journal's own clock, so that now can be compared with its moments.
Present presentOf(const StageRoot& root) {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  Present present{.now = std::int64_t{now.tv_sec} * 1'000'000 + now.tv_nsec / 1000};
  for (const auto& process : processesOfStage(root.directory()))
    present.living.insert(process.pid);
  return present;
}

/// Why there is nothing to draw is one line, whatever lies in the journal's place.
Picture drawnOf(const StageRoot& root) {
  const auto path = root.control("journal");
  // The processes first: one that ends between the two looks has noted its end.
  const auto present = presentOf(root);
  const auto bytes = platform::posix::readWhole(path);
  if (!bytes) throw StageError("no journal can be read at " + path);
  if (bytes->empty())
    throw StageError("the journal " + path + " is empty: nothing has happened that could be drawn");
  const auto reading = readJournal(*bytes);
  if (reading.moments.empty()) throw StageError(path + " is no journal of a stage");
  auto picture = pictureOf(reading, present);
  if (!picture) throw StageError("no action has begun on " + root.directory() + " so far");
  return *std::move(picture);
}

/// What the terminal has, up to the usual width; that where nobody looks on.
std::size_t columnsOfOutput() {
  winsize size{};
  if (::isatty(STDOUT_FILENO) == 0 || ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
    return usualText;
  return std::min<std::size_t>(size.ws_col, usualText);
}

int picture(StageArguments& arguments) {
  const auto root = stageAt(arguments.take("stage"));
  const auto file = arguments.takeAny();
  arguments.finish();
  // A name without that ending is more likely a slip than a wish for an SVG under another name.
  if (file && !file->ends_with(".svg")) throw UsageError("\"" + *file + "\" is no name of an SVG file");
  const auto drawn = drawnOf(root);
  if (file) {
    if (!platform::posix::writeAtomically(*file, svgOf(drawn))) throw StageError("cannot write " + *file);
    return 0;
  }
  const auto columns = columnsOfOutput();
  if (columns < narrowestText)
    throw StageError("a terminal of " + std::to_string(columns) + " columns is too narrow; name a FILE.svg");
  std::cout << textOf(drawn, columns);
  return 0;
}

}  // namespace

std::vector<StageCommand> pictureCommands() {
  return {{"picture", "R [FILE.svg]", "draw what happened since the last action began", picture}};
}

}  // namespace tamo::stage
