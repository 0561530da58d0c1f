#include "acceptance/stage/bare_stage.hpp"

#include <cstdlib>
#include <filesystem>

#include "acceptance/child.hpp"
#include "acceptance/place.hpp"
#include "stage/control/stage_layout.hpp"

namespace tamo::acceptance {
namespace {

std::string freshDirectory() {
  auto name = (std::filesystem::temp_directory_path() / "tamo-acceptance-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) throw PlaceError("no directory for a stage");
  return name;
}

}  // namespace

stage::StageRoot bareStage(const std::string& programs) {
  const auto alone = whileNothingStarts();
  return stage::layStage({.directory = freshDirectory(), .programs = programs, .bare = true});
}

}  // namespace tamo::acceptance
