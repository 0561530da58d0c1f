#include "acceptance/place.hpp"

namespace tamo::acceptance {

Paths pathsOf(const std::string& home, const std::string& temporary) {
  const std::string support = "/Library/Application Support/Tamo/";
  return {.dataDirectory = home + support,
          .lockFile = temporary + "studio.pell.tamo.core.job.lock",
          .moveResult =
              home + "/Library/Containers/studio.pell.Tamo/Data" + support + "move-to-applications.json",
          .trash = home + "/.Trash"};
}

}  // namespace tamo::acceptance
