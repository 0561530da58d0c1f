#include "stage/picture/picture_of.hpp"

#include "stage/picture/process_rows.hpp"
#include "stage/picture/sum.hpp"
#include "stage/picture/telling.hpp"

namespace tamo::stage {
namespace {

std::string counted(std::size_t count, const std::string& one, const std::string& many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

/// A picture of a journal that is not whole is drawn all the same, and says what it lacks.
std::vector<std::string> remarksOn(const JournalReading& reading, const Scene& scene) {
  std::vector<std::string> remarks;
  if (reading.unreadable > 0)
    remarks.push_back(counted(reading.unreadable, "line of the journal is", "lines of the journal are") +
                      " none that a stage writes, and left out.");
  if (reading.cutOff) remarks.emplace_back("The journal is cut off in the middle of its last line.");
  if (reading.setBacks > 0)
    remarks.push_back("The clock went back " + counted(reading.setBacks, "time", "times") +
                      "; what came after is drawn as if it had stood still meanwhile.");
  if (scene.self().lost) remarks.emplace_back("The companion has ended without a word; nobody noted when.");
  if (!scene.self().until) remarks.emplace_back("The companion still runs.");
  return remarks;
}

}  // namespace

std::optional<Picture> pictureOf(const JournalReading& reading, const Present& present) {
  const auto scene = lastScene(reading, present);
  if (!scene) return std::nullopt;
  auto rows = processRows(*scene);
  Picture picture;
  picture.title = actionOf(*scene) + " by companion " + std::to_string(scene->self().pid) + ", " +
                  secondsText(scene->until);
  picture.until = scene->until;
  // Before the rows are given away: the signals go by their numbers.
  picture.arrows = arrowsOf(*scene, rows);
  picture.rows = std::move(rows.rows);
  picture.told = toldOf(*scene);
  picture.sum = sumOf(*scene);
  picture.remarks = remarksOn(reading, *scene);
  return picture;
}

}  // namespace tamo::stage
